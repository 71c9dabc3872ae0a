/* Keys of %ac, as a user strikes them: each says its name, and nothing else happens. */
#include <stdio.h>
#include <tarn/winio.h>

#define KEY(number, name)              \
    static int32_t key##number(void) { \
        puts(name);                    \
        return 2;                      \
    }
KEY(0, "F12")
KEY(1, "Ctrl+Shift+F5")
KEY(2, "Alt+A")
KEY(3, "Ctrl+Shift+A")
KEY(4, "Alt+Ctrl+X")
KEY(5, "del")
KEY(6, "Ctrl+pgdn")
KEY(7, "enter")
KEY(8, "Ctrl+tab")
KEY(9, "Ctrl+1")
KEY(10, "Ctrl++")
KEY(11, "Ctrl+-")
KEY(12, "Ctrl+,")
KEY(13, "Ctrl+?")
KEY(14, "Ctrl+[")
KEY(15, "F10")
KEY(16, "Shift+tab")
KEY(17, "Alt+enter")
KEY(18, "Ctrl+backspace")

int main(void) {
    static const struct {
        const char* name;
        int32_t (*function)(void);
    } keys[] = {
        {"F12", key0},
        {"Ctrl+Shift+F5", key1},
        {"Alt+A", key2},
        {"Ctrl+Shift+A", key3},
        {"Alt+Ctrl+X", key4},
        {"del", key5},
        {"Ctrl+pgdn", key6},
        {"enter", key7},
        {"Ctrl+tab", key8},
        {"Ctrl+1", key9},
        {"Ctrl++", key10},
        {"Ctrl+-", key11},
        {"Ctrl+,", key12},
        {"Ctrl+?", key13},
        {"Ctrl+[", key14},
        {"F10", key15},
        {"Shift+tab", key16},
        {"Alt+enter", key17},
        {"Ctrl+backspace", key18},
    };
    static int32_t number = 1;
    __winio("%ca[Keys]%bt[OK]%rd&", &number);
    for (unsigned i = 0; i < sizeof keys / sizeof keys[0]; ++i)
        __winio("%ac@&", keys[i].name, keys[i].function);
    printf("result %d, number %d\n", __winio(""), number);
    return 0;
}
