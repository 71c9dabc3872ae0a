/* What is said of calls of routines that are wrong, and of programs that end at a wrong time; each
 * in a process of its own. */
#include <tarn/text_window.h>
#include <tarn/winio.h>
#include <tarn/winio_menus.h>
#include <tarn/winio_run.h>
#include <tarn/winio_windows.h>

#include "apart.h"

static int32_t number = 3, window, control;
static char name[16] = "abc";

static int32_t close_at_once(void) {
    return 0;
}
static int32_t go_on(void) {
    return 2;
}
/* A window that stands while `function` runs, and closes then. */
static void in_window(const char* codes, int32_t (*function)(void)) {
    char format[200];
    snprintf(format, sizeof format, "%%sc%%hw%%rs%%lc%s", codes);
    __winio(format, function, &window, name, 16, &control);
}

/* ---- Options and settings ahead of a window ---- */
static void winop_other_code(void) {
    __winop("%bn[x]");
    __winop("%pl[native]");
}
static void winop_no_bracket(void) {
    __winop_int("%pl[width", 1);
    __winop_flt("%pl", 1);
    __winop_clr("%pl", 1);
    __winop_str("%pl", "x");
    __winop_chr("%pl", "x");
    __winop_hdl("%pl", 1);
    __winop_fun("%pl", NULL);
}
static void winop_values(void) { /* each is an option with its value: no word but the report's */
    __winop_int("%bn[sort]", -1);
    __winop_flt("%bn[vfill]", 0.5);
    __winop_clr("%bn[colour]", 0x0000FF);
    __winop_str("%bn[text]", "Go on");
}
static void winstyle_values(void) {
    __winstyle("%ts");
}
static void winstyle_font(void) {
    __winstyle("%fn");
}
static void winstyle_full(void) {
    for (int i = 0; i < 200; ++i) __winstyle("%bg[red]%it");
}
static void winclass_late(void) {
    __winio("&");
    __winclass("%bg[red]");
}
static void winclass_settings(void) {
    __winclass("%mi[no_icon]%cu[no_cursor]%fn[No Such Font]%bg[mauve]%ts[10]%rd[x]%nc[Mine]");
}
static void winclass_argument(void) {
    __winclass("%nc@");
}
static void winclass_text(void) {
    __winclass("nc[Mine]");
}
static void options_wrong(void) {
    __quillpan_option("colours");
    __set_max_dialog_size(100, 100);
    __winio("&");
    __set_max_dialog_size(100, 100);
}

/* ---- Standard actions, as the window opens ---- */
static void act(const char* action) {
    __winio("%sc%dl", action, 0.02, close_at_once);
}
static void text_history(void) {
    act("TEXT_HISTORY");
}
static void previous_text(void) {
    act("PREVIOUS_TEXT");
}
static void printer(void) {
    act("PRINTER_SETUP");
}
static void sound(void) {
    __winio("%sc", "SOUND", "no_such_sound");
}

/* ---- Arguments that only a descriptor tells ---- */
static void corrupt_function(void) {
    __quillpan_option("_safe_cb");
    __winio__("*C*E", "%^bt[A]&", name);
}
static void undefined_values(void) {
    int32_t integers[3];
    double also;
    memset(integers, 0x80, sizeof integers);
    memset(&also, 0x80, sizeof also);
    __quillpan_option("undef");
    __winio("%rd%rf%~bt[A]%rb[B]&", &integers[0], &also, &integers[1], &integers[2]);
    __winio("%sc", close_at_once);
}
static void too_large(void) {
    __winio("%ap%ob%cb&", 700, 0);
}
static void too_tall(void) {
    __winio("%ap%ob%cb&", 0, 700);
}

/* ---- Windows and programs at the wrong time ---- */
static void winio_at_exit(void) {
    __winio("late");
}
static void exit_handler(void) {
    atexit(winio_at_exit); /* after the library's own end, which the first window brings */
    __winio("%sc", close_at_once);
    exit(0);
}
static void incomplete(void) {
    __winio("never finished&");
    exit(3);
}
static void unused_child(void) {
    __winio("%`lwchild", &number);
    exit(3);
}
static void other_language(void) {
    __winio("&");
    WINIO_h(1, "more&", (intptr_t)5);
}

/* ---- Windows that are open ---- */
static int32_t wrong_timers(void) {
    __set_timer(window, 0, go_on);
    __set_timer(window, -1, go_on);
    __set_timer(99999, 1, go_on);
    __kill_timer(window, go_on);
    __change_timer_interval(99999, 1);
    return 0;
}
static int32_t wrong_keys(void) {
    __add_accelerator(window, "Ctrl+Nothing", go_on);
    __remove_accelerator(window, "F99");
    __send_accelerator("F5");
    __add_accelerator(99999, "F5", go_on);
    return 0;
}
static int32_t wrong_menu(void) {
    __remove_menu_item(77);
    __delete_menu_item(77, 0);
    __insert_menu_item("text", 1, 77);
    __add_menu_item(77, "text", NULL, NULL, go_on);
    return 0;
}
static int32_t no_enhanced_menu(void) {
    __replace_enhanced_menu(0, "[A]");
    return 0;
}
static int32_t no_enhanced_popup(void) {
    __replace_enhanced_popup_menu(window, "[A]");
    return 0;
}
static int32_t no_reply_awaited(void) {
    __reply_to_text_message("text");
    return 0;
}
static int32_t menu_of_control(void) {
    __winio("%nw&", control);
    __winio("%mn[A]", "EXIT");
    return 0;
}
static int32_t code_after_nw(void) {
    __winio("%nw%rd", window, &number);
    return 0;
}
static int32_t unknown_parameters(void) {
    __quillpan_float("no_such_name");
    return 0;
}
static int32_t unhandled_handles(void) { /* of nothing: no word, and nothing happens */
    __set_integer_limits(99999, 1, 2);
    __set_increment(99999, 1);
    __win_printf(99999, "text");
    __clear_window(99999);
    __destroy_window(99999);
    __display_popup_menu();
    return 0;
}

/* ---- Files in storage ---- */
static void bitmap_wrong(void) {
    __create_bitmap("no bitmap");
}
static void cursor_wrong(void) {
    __create_cursor("no cursor");
}
static void icon_wrong(void) { /* 0, and no word */
    if (__create_icon("no icon") != 0) abort();
}
static void menu_missing(void) {
    const int32_t text = __create_window("Text", 0, 0, 200, 200);
    __attach_menu(text, "no_menu", NULL);
    if (__make_dialog_box(text, (const char*)7, NULL) != -1) abort();
    __destroy_window(text);
}

struct trial {
    const char* title;
    void (*alone)(void);
    int32_t (*inside)(void);
    const char* codes;
};
#define ALONE(function) \
    { #function, function, NULL, NULL }
#define INSIDE(function) \
    { #function, NULL, function, "" }
static const struct trial trials[] = {
    ALONE(winop_other_code),
    ALONE(winop_no_bracket),
    ALONE(winop_values),
    ALONE(winstyle_values),
    ALONE(winstyle_font),
    ALONE(winstyle_full),
    ALONE(winclass_late),
    ALONE(winclass_settings),
    ALONE(winclass_argument),
    ALONE(winclass_text),
    ALONE(options_wrong),
    ALONE(text_history),
    ALONE(previous_text),
    ALONE(printer),
    ALONE(sound),
    ALONE(corrupt_function),
    ALONE(undefined_values),
    ALONE(too_large),
    ALONE(too_tall),
    ALONE(exit_handler),
    ALONE(incomplete),
    ALONE(unused_child),
    ALONE(other_language),
    INSIDE(wrong_timers),
    INSIDE(wrong_keys),
    INSIDE(wrong_menu),
    INSIDE(no_enhanced_menu),
    INSIDE(no_enhanced_popup),
    INSIDE(no_reply_awaited),
    INSIDE(menu_of_control),
    INSIDE(code_after_nw),
    INSIDE(unknown_parameters),
    INSIDE(unhandled_handles),
    ALONE(bitmap_wrong),
    ALONE(cursor_wrong),
    ALONE(icon_wrong),
    ALONE(menu_missing),
};

static void run_trial(const void* given) {
    const struct trial* trial = given;
    if (trial->alone != NULL)
        trial->alone();
    else
        in_window(trial->codes, trial->inside);
}

int main(void) {
    for (size_t i = 0; i < sizeof trials / sizeof trials[0]; ++i)
        run_apart(trials[i].title, run_trial, &trials[i]);
    return 0;
}
