/* Sizes asked for, menus that are taller than the screen, texts longer than 16 bits count. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tarn/winio.h>
#include <tarn/winio_run.h>

/* ---- The variables of %sz ask for a size, and tell the one that the window has. */
static int width = 300, height = 200;

static int started(void) {
    printf("%d x %d\n", width, height);
    return 2;
}
static void sizes(void) {
    int button = __winio("%ca[Size]%ww[not_fixed_size]%sz%sc%bt[OK]", &width, &height, started);
    printf("size %d\n", button);
}

/* ---- The pointer scrolls a menu that is taller than the screen. */
static int chosen(void) {
    const char* item = __quillpan_string("CURRENT_MENU_ITEM");
    int number = atoi(strstr(item, "Item") + 4);
    printf("%s\n", number > 40 && number < 399 ? "an item below" : item);
    return 2;
}
static void long_menu(void) {
    static char menu[20000];
    size_t length = (size_t)sprintf(menu, "[Long[Item 0");
    for (int i = 1; i < 400; ++i) length += (size_t)sprintf(menu + length, ",Item %d", i);
    strcpy(menu + length, "]]");
    printf("menu %d\n", __winio("%ca[Menu]%sp%`mn%bt[OK]", 0, 0, menu, chosen));
}

/* ---- Typing goes on at its place, and is undone as one, also where call-backs look on. */
static int typed;

static int note(void) {
    ++typed;
    return 2;
}
static void long_text(void) {
    static char text[100000];
    memset(text, 'x', 70000);
    int button = __winio("%ca[Text]%^40.4re%bt[OK]", text, 100000, note);
    printf("text %d: %d times, %s\n", button, typed, text + 70000);
}

/* ---- A window that a scroll call-back opens takes input; one that opens while a format is being
 * read leaves that format's own window alone. */
static int position, cell = 1, page = 5, once;

static int ask(void) {
    if (!once++) printf("asked %d\n", __winio("%ca[Ask]%bt[No]%bt[Yes]"));
    return 2;
}
static int sizing(void) {
    if (strcmp(__quillpan_string("CALL_BACK_REASON"), "SIZE_ADJUST") == 0)
        printf("sizing %d\n", __winio("%ca[Sizing]%ob wide text %cb%bt[On]"));
    return 2;
}
static int leave_open(void) {
    return __winio("%ca[Never]begun &") + 3;
}
static void within(void) {
    int button = __winio("%ca[Within]%`^vs%bt[OK]", page, 50, &position, ask);
    printf("scrolled %d, %d\n", button, position);
    button =
        __winio("%ca[Outer]before%^ib%ob[scored]in%cb%bt[A]%bt[B]", "/Cell", &cell, "BEEP", sizing);
    printf("outer %d\n", button);
    button = __winio("%ca[Left]before%^ib after%bt[A]%bt[B]", "/Cell", &cell, "BEEP", leave_open);
    printf("left %d\n", button);
}

/* ---- A box that pastes into itself when it changes does so once. */
static void self_paste(void) {
    static char from[20] = "ab", text[200] = "ab";
    int button = __winio("%ca[Paste]%10rs%^20rs%bt[OK]", from, 20, text, 200, "PASTE");
    printf("paste %d %s\n", button, text);
}

/* ---- A full field makes room by whole characters; a frame is content with an enhanced menu. */
static double number = 1.5;

static void full_field(void) {
    __enable_utf8(1);
    int button = __winio("%ca[Full]%co[check_on_focus_loss]%rf[fmt=8.3f]%bt[OK]", &number);
    __enable_utf8(0);
    button += __winio("%ca[Frame]%`mn%fr%bt[OK]", "[File[Open]]", chosen, 200, 100);
    printf("full %d %g\n", button, number);
}

/* ---- A click into a text window whose form closes because of it. */
static int closes(void) {
    return 0;
}
static void click_closes(void) {
    static int value = 1;
    int button =
        __winio("%ca[Leaving]%wt%co[check_on_focus_loss]%^rd\n%20.4cw", &value, closes, (void*)0);
    printf("leaving %d %d\n", button, value);
}

int main(void) {
    sizes();
    click_closes();
    full_field();
    long_text();
    within();
    self_paste();
    long_menu();
    return 0;
}
