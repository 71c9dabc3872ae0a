/* What a program carries: pictures by the names of files beside it, and a menu of its resource
 * script, which serves a text window. Everything is written here before it is first wanted. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tarn/text_window.h>
#include <tarn/winio.h>

static const char script[] =
    "#define LEAVE 102\n"
    "logo BITMAP \"disk.bmp\"\n"
    "Main MENU BEGIN\n"
    "  POPUP \"&File\" BEGIN POPUP \"&More\" BEGIN MENUITEM \"&Deep\", 104 END\n"
    "    MENUITEM \"&Save\\tCtrl+S\", 101\n"
    "    MENUITEM SEPARATOR\n"
    "    MENUITEM \"&Leave\", LEAVE END\n"
    "  MENUITEM \"&Help\", 103, GRAYED\n"
    "END\n";

static void write_file(const char* name, const void* bytes, size_t length) {
    FILE* to = fopen(name, "wb");
    if (to == NULL || fwrite(bytes, 1, length, to) != length || fclose(to) != 0) abort();
}

static void put(unsigned char* at, unsigned value, int bytes) {
    for (; bytes-- > 0; value >>= 8) *at++ = (unsigned char)value;
}

enum {
    side = 16,
    bitmap_bytes = 54 + side * side * 3,
    icon_bytes = 62 + side * side * 4 + side * 4
};
static unsigned char bitmap[bitmap_bytes], icon[icon_bytes];

static void header(unsigned char* at, unsigned height, unsigned bits) {
    put(at, 40, 4), put(at + 4, side, 4), put(at + 8, height, 4);
    put(at + 12, 1, 2), put(at + 14, bits, 2);
}

/* A blue square in light grey, and a red one in nothing. */
static void write_pictures(void) {
    memcpy(bitmap, "BM", 2);
    put(bitmap + 2, bitmap_bytes, 4), put(bitmap + 10, 54, 4);
    header(bitmap + 14, side, 24);
    put(icon + 2, 1, 2), put(icon + 4, 1, 2);
    icon[6] = icon[7] = side;
    put(icon + 10, 1, 2), put(icon + 12, 32, 2), put(icon + 14, icon_bytes - 22, 4);
    put(icon + 18, 22, 4);
    header(icon + 22, 2 * side, 32);
    for (int i = 0; i < side * side; ++i) {
        const int inside = i % side >= 4 && i % side < 12 && i / side >= 4 && i / side < 12;
        put(bitmap + 54 + 3 * i, inside ? 0x2040C0 : 0xC0C0C0, 3);
        put(icon + 62 + 4 * i, inside ? 0xFFC02020 : 0, 4);
    }
    write_file("disk.bmp", bitmap, sizeof bitmap);
    write_file("save.ico", icon, sizeof icon);
}

static int32_t text;
static int32_t chosen(int32_t window, int32_t message, uintptr_t word, intptr_t value) {
    (void)value;
    printf("chosen %u%s\n", (unsigned)(word & 0xFFFF),
           window == text && message == 0x111 ? "" : "?");
    return 0;
}

static void measure(const char* label, int32_t from) {
    int32_t width = 0, height = 0;
    const int32_t made = __make_button_image(from, 1, 0, 0, label, &width, &height, 1, 0);
    printf("%s: %s, %s\n", label ? label : "no label", made != 0 ? "made" : "not made",
           width == side + 5 && height == side + 5 ? "as the picture" : "larger");
}

int main(void) {
    write_file("program.rc", script, sizeof script - 1);
    write_pictures();
    const int32_t disk = __create_bitmap(bitmap);
    measure(NULL, disk);
    measure("Label", disk);
    int32_t width = 50, height = 40;
    if (__make_button_image(0, 2, 1, 1, "Two\nlines", &width, &height, 1, 1) != 0) abort();
    printf("at least %s\n", width >= 50 && height >= 40 ? "what was asked" : "less");

    text = __create_window("Log", 10, 10, 300, 200);
    __attach_menu(text, "MAIN", chosen);
    printf("result %d\n", __winio("%ca[Pictures]%mi[save]%^bb[save/&Save]%bm[logo]%ic[save]%nl"
                                  "%bi[disk]%bt[Disk]%`bm%bn[text=Go,icon=save]",
                                  "CONTINUE", disk));
    return 0; /* the text window stays until its user has closed it, with its menu */
}
