/* Controls and codes of the window around them: scroll bars, a text array, pictures, blocks of
 * buttons, dropped files, windows that follow the pointer or end with it. */
#include <stdio.h>
#include <string.h>
#include <tarn/winio.h>
#include <tarn/winio_run.h>

static const char* reason(void) {
    return __quillpan_string("CALL_BACK_REASON");
}

/* ---- Scroll bars: the window's, told at their end, and a control's, told at each change. */
static int across, page = 10, range = 100, position;

static int window_bar(void) {
    printf("%s %d\n", reason(), across);
    return 2;
}
static int control_bar(void) {
    printf("%s at %d\n", reason(), position);
    return 2;
}
static int hide_bar(void) {
    page = range;
    __window_update(&page);
    return 2;
}
static void bars(void) {
    static char text[40] = "text";
    int button = __winio("%ca[Bars]%^vs%`^vx%20rs\n\n\n\n%^bt[&Hide]%bt[OK]", 10, 80, &across,
                         window_bar, &page, &range, &position, control_bar, text, 40, hide_bar);
    printf("bars %d\n", button);
}

/* ---- A text array: cells with attributes, keys, the mouse. */
static char cells[60], attributes[60];

static int array_event(void) {
    int column = (int)__quillpan_info("TEXT_ARRAY_X"),
        key = (int)__quillpan_info("TEXT_ARRAY_CHAR");
    printf("%s column %d key %d\n", reason(), column,
           strcmp(reason(), "CHARACTER_INPUT") ? 0 : key);
    return 2;
}
static void array(void) {
    memset(cells, '.', sizeof cells);
    memset(attributes, 1, 20);
    int button = __winio("%ca[Array]%^20.3tx%ty[red]%tc[white]%ty[blue]\n\n\n\n%bt[OK]", cells,
                         attributes, 20, 3, array_event);
    memset(attributes, 0, sizeof attributes);
    button += __winio("%ca[Mouse]%^20.3tx[full_mouse_input,full_char_input]\n\n\n\n%bt[OK]", cells,
                      attributes, 20, 3, array_event);
    printf("array %d\n", button);
}

/* ---- Pictures and blocks of buttons. */
static int states[] = {1, 3}, lamp;

static int pressed(void) {
    printf("%s %d\n", reason(), (int)__quillpan_info("BUTTON_NUMBER"));
    return 2;
}
static int block(void) {
    int* widths = (int*)__quillpan_info("IB_WIDTHS");
    if (strcmp(reason(), "SIZE_ADJUST") == 0) widths[__quillpan_info("IB_COLUMNS") - 1] = 90;
    printf("%s\n", reason());
    return 2;
}
static void write_bitmap(const char* name) {
    unsigned char file[54 + 16 * 16 * 3] = {
        'B', 'M', [10] = 54, [14] = 40, [18] = 16, [22] = 16, [26] = 1, [28] = 24};
    memset(file + 54, 0xC0, sizeof file - 54);
    memset(file + 54 + 200, 0x20, 300);
    FILE* out = fopen(name, "wb");
    fwrite(file, 1, sizeof file, out);
    fclose(out);
}
static void pictures(void) {
    write_bitmap("lamp.bmp");
    int button = __winio("%ca[Pictures]%^ic[warnIcon]%^bm[lamp.bmp]%si!\n\n\n&", pressed, pressed);
    button = __winio("%^2.1tb%^2.1ib[mouse_hover]\n\n\n%bb[lamp/&Save]", "lamp", "lamp", "lamp",
                     &lamp, pressed, "lamp", "lamp", "lamp", &lamp, pressed, "lamp/Up", &states[0],
                     pressed, "lamp/Grey", &states[1], pressed, block);
    printf("pictures %d, lamp %d, state %d\n", button, lamp, states[0]);
}

/* ---- The window and the pointer. */
static int dropped(void) {
    printf("%s %d of %d: %s\n", reason(), (int)__quillpan_info("DROPPED_CURRENT"),
           (int)__quillpan_info("DROPPED_COUNT"), __quillpan_string("DROPPED_FILE"));
    return 2;
}
static int chosen(void) {
    printf("%s %s\n", reason(), __quillpan_string("CURRENT_MENU_ITEM"));
    return 2;
}
static int drag(void) {
    printf("dragged %d\n", __winio("%ca[Drag]%ww[no_caption,no_edge]%dgA thing", 4, 4));
    return 2;
}
static int saver(void) {
    printf("saver %d\n", __winio("%ca[Saver]%sv%gdAll is quiet"));
    return 2;
}
static void pointer(void) {
    static char text[20] = "text";
    int button = __winio("%ca[Pointer]%dr%pm[&One,&Two]%cm[&Own]%10rs%dc[IDC_HAND]%cu[nowhere]",
                         dropped, chosen, chosen, chosen, text, 20);
    printf("pointer %d\n", button);
}
static void pointer_windows(void) {
    printf("windows %d\n", __winio("%ca[Windows]%^bt[&Drag]%^bt[&Saver]%bt[OK]", drag, saver));
}

int main(void) {
    bars();
    array();
    pictures();
    pointer();
    pointer_windows();
    return 0;
}
