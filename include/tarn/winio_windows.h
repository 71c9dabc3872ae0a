/* Windows made by `winio` while they are open: keys, timers, monitors, waiting, limits of boxes.
 *
 * A handle is the number of a window or of a control. Everything here belongs to the thread that
 * made the first window. */
#ifndef TARN_WINIO_WINDOWS_H
#define TARN_WINIO_WINDOWS_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Waiting and ending ---- */

/* Serves what has happened in the program's windows and returns. */
void __temporary_yield(void);
/* Waits while the variable, a window's of %lw or %cv, is negative: until the window has closed. */
void __wait_for_window_to_close(const int32_t* variable);
/* Destroys all windows that `winio` has made. */
void __close_all_windows(void);
/* Waits until all windows have closed, and ends the program with status 0. */
void __do_winio(void);

/* ---- Messages and monitors ---- */

/* The function sees each message before everybody else, and takes it away by returning true. The
 * record that it is given holds the window, the message and its two words. A null one ends it. */
struct tarn_message {
    int32_t window;
    uint32_t message;
    uintptr_t word;
    intptr_t value;
};
void __register_message_interception(int32_t (*function)(struct tarn_message* message));
/* What the system is answered after a %mg or %wm call-back that kept a message. */
void __set_mg_return_value(intptr_t value);

/* Functions called when the program has nothing to do after input; when the pointer comes to
 * another window; when the keyboard does; and on each key, which then isn't queued. At most 32 of a
 * kind. The parameters CURSOR_WINDOW, FOCUSSED_WINDOW and KEYBOARD_KEY say more. */
void __add_idle_monitor(void (*function)(void));
void __remove_idle_monitor(void (*function)(void));
void __add_cursor_monitor(void (*function)(void));
void __remove_cursor_monitor(void (*function)(void));
void __add_focus_monitor(void (*function)(void));
void __remove_focus_monitor(void (*function)(void));
void __add_keyboard_monitor(void (*function)(void));
void __remove_keyboard_monitor(void (*function)(void));

/* ---- Keys ----
 *
 * A key is a character, with 0x200 where Ctrl was held; or, for a key that types nothing, its scan
 * code | 0x100, + 25 with Shift, and | 0x400 in place of 0x100 with Ctrl. F11 is 389, F12 is 390.
 * At most 200 keys wait. */
int32_t __get_wkey(void);     /* waits for a key */
int32_t __get_wkey1(void);    /* 0: none is waiting */
int32_t __wkey_waiting(void); /* how many */
void __feed_wkeyboard(int32_t key, int32_t unused);
void __flush_wkeyboard(void);
/* The same for Fortran. */
int32_t GET_WKEY_h(void) TARN_LINK_NAME("GET_WKEY#");
int32_t GET_WKEY1_h(void) TARN_LINK_NAME("GET_WKEY1#");
int32_t WKEY_WAITING_h(void) TARN_LINK_NAME("WKEY_WAITING#");
void FEED_WKEYBOARD_h(const int32_t* key, const int32_t* unused) TARN_LINK_NAME("FEED_WKEYBOARD#");
void FLUSH_WKEYBOARD_h(void) TARN_LINK_NAME("FLUSH_WKEYBOARD#");
/* Key 1 is F10: with `on` it is the program's, otherwise it opens the menu. */
void __trap_special_funkey(int32_t key, int32_t on);

/* ---- Timers ----
 *
 * The function is a call-back as in a format, with the reason "TIMER". */
void __set_timer(int32_t window, double seconds, int32_t (*function)(void));
void __kill_timer(int32_t window, int32_t (*function)(void));
/* Of the window's first timer. */
void __change_timer_interval(int32_t window, double seconds);

/* ---- Text between windows ----
 *
 * Sends up to 255 characters to the window of a class (%nc); its %rm call-back finds them in the
 * parameter MESSAGE_TEXT and may answer with up to 255. `reply` has room for 256. False: there is
 * no such window in this program, nor in another of the same user (they meet in XDG_RUNTIME_DIR). */
int32_t __send_text_message(const char* window_class, const char* text, char* reply);
void __reply_to_text_message(const char* text);

/* ---- Boxes ----
 *
 * The handle is a control's, from %lc. */

/* Limits of a %rd box. Equal ones make it read only, low above high takes them off. */
void __set_integer_limits(int32_t control, int32_t low, int32_t high);
/* Limits of a %rf box; taken off where high isn't above low. */
void __set_float_limits(int32_t control, double low, double high);
/* The step of a box's spin; returns what it was. A box that has no spin gets none. */
double __set_increment(int32_t control, double step);

#ifdef __cplusplus
}
#endif

#endif
