/* Text windows.
 *
 * A text window is a scrolling window of lines that a program writes to as to a terminal. It keeps
 * every line (or as many as setMaxLines says) and always shows the newest; the user scrolls back,
 * selects with the mouse and copies. Windows live while the program writes, and stay on the screen
 * at its end until the user has closed them.
 *
 * A handle is a small positive number; 0 is none. A call with a handle that is none or no longer
 * one does nothing, unless its line says otherwise. All calls belong on one thread: the one that
 * made the first window.
 *
 * Within text, the escape character ("@", see __set_win_escape), "t" and one or two digits select
 * the font of that number (1 is the window's own, further ones come from __add_text_descriptor) for
 * the text behind it, also on following lines; the escape character twice shows it once. A tab goes
 * to the next multiple of eight columns. Text is UTF-8 where the locale says so when the window is
 * made (or __enable_utf8 does), otherwise it has the bytes of code page 1252.
 */
#ifndef TARN_TEXT_WINDOW_H
#define TARN_TEXT_WINDOW_H

#include <stddef.h>
#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Making windows ---- */

/* A window at x, y on the screen with its outer size, in pixels; 0 when it can't be made. */
int32_t __create_window(const char* title, int32_t x, int32_t y, int32_t width, int32_t height);
/* A window with the title "Output" over the middle of the screen. */
int32_t __create_default_window(void);
/* A text window inside `parent`, without a title; bars where the flags are not 0. Colours are
 * 0x00BBGGRR, `brush` fills the background, `popup` (0: none) is its menu on the right button. */
int32_t __create_embeded_window_x(int32_t parent, int32_t horizontal_bar, int32_t vertical_bar,
                                  int32_t x, int32_t y, int32_t width, int32_t height,
                                  int32_t brush, uint32_t background, uint32_t text, int32_t popup);
/* The window that takes default output, and another one in its place. */
void __set_default_window(int32_t window);
void __clear_window(int32_t window); /* 0: the default window */
void __destroy_window(int32_t window);

/* ---- Writing ---- */

/* `count` bytes. A line feed ends a line, a carriage return is dropped, and so are bytes behind the
 * 255th of a line. */
void __win_coua(int32_t window, const char* bytes, int32_t count);
/* The next write doesn't bring the screen up to date at its end. */
void __win_coua_f(void);
/* Like printf: no line end is added. At most 299 bytes. */
void __win_printf(int32_t window, const char* format, ...);
/* Like printf, with a line end. At most 29,999 bytes. */
void __cw_printf(int32_t window, const char* format, ...);
/* A text and a line end to the text control (%cw) that is bound to a Fortran unit. */
void __cw_write(int32_t unit, const char* text);
/* A new line that holds `text`. */
void __add_window_line(int32_t window, const char* text);
/* Brings the screen up to date, and 0 as flag keeps writes from doing it by themselves. The result
 * is the flag as it is now. */
void __update_window(int32_t window);
int32_t __set_window_update_flag(int32_t window, int32_t flag);
/* Adds a font (a font handle; 0: the default font) with its text colour; the first one added has
 * number 2. */
void __add_text_descriptor(int32_t window, int32_t font, uint32_t colour);
/* Handle 0 sets the escape of windows to come. */
void __set_win_escape(int32_t window, int32_t character);
/* How many lines are kept, at least 50; the other one for windows to come. */
void setMaxLines(int32_t window, int32_t lines);
void setAllMaxLines(int32_t lines);
void set_default_to_proportional_font(void);
void set_default_to_fixed_font(void);
void set_default_font(int32_t font);
/* Brush and colours of windows to come. */
void __set_quillpan_window_colour(int32_t brush, uint32_t text, uint32_t background);
/* The style of windows to come; the result is the one before. */
uint32_t __set_quillpan_style(uint32_t style);

/* ---- Reading ---- */

/* The next byte typed (a character has several in UTF-8); 0 when a menu command or a close came
 * instead. A window that is closed while the program waits ends the program with status 0. */
int32_t __win_getchar(int32_t window);
/* A line into 256 bytes, without its end. A menu command ends it with "@menu N". */
void __win_getline(int32_t window, char* buffer);

/* ---- Text back, clipboard ---- */

/* All lines, each with CR LF, and a terminator. With flag 0 nothing is copied; the result is the
 * size in both cases, 0 for no window. */
int32_t __get_quillpan_text(int32_t window, char* buffer, int32_t flag);
/* The selected text in storage that the caller frees; null for none. With `query` not 0 it is an
 * empty text. */
char* __get_selected_quillpan_text(int32_t window, int32_t query);
void __cancel_selection(int32_t window); /* 0: the default window */
/* Adds "Copy to Cli&pboard" to the system menu, or takes it off again. */
void __allow_clipping(int32_t window, int32_t flag);
void __clip_window_data(int32_t window);

/* ---- Drawing behind the text ---- */

/* A device context on a picture of the client area, over which the text is drawn; 0 for none. */
int32_t __get_graphics_dc(int32_t window);
int32_t __get_graphics_bitmap(int32_t window);

/* ---- Messages and menus ---- */

/* The function gets window, message, wparam, lparam; its result 0 ends the message's handling. */
void __add_window_callback(int32_t window, uint32_t message,
                           int32_t (*function)(int32_t, int32_t, uintptr_t, intptr_t));
/* The same with all four by reference. */
void __add_fortran_window_callback(int32_t window, uint32_t message,
                                   int32_t (*function)(int32_t*, int32_t*, uintptr_t*, intptr_t*));
void __add_window_menu(int32_t window, int32_t menu);

/* ---- The message pump ---- */

/* mode 0 runs until the program is told to end, 1 does what is waiting, 2 as 1 but returns when the
 * program is told to end, 3 waits for something to do and does it. */
void __yield_program_control(int32_t mode);
/* Mode 1: for long computations. */
void __temporary_yield(void);
void __register_message_loop_hook(void (*function)(void));
void __register_modeless_dialog_box(int32_t dialog);
void __unregister_modeless_dialog_box(int32_t dialog);
/* Messages above the limit wait; 0 is none. The result is the limit before. */
int32_t set_quillpan_message_upper_limit(int32_t limit);
/* Sleeps while windows live; the second one sleeps without looking at them. */
void __sleep_at(const float* seconds);
void __new_sleep_at(const float* seconds);

/* A bitmap from the image of a BMP file in storage, whose header tells its length; 0 when it can't
 * be read. Without the "BM" at its start it ends the program. */
int32_t __create_bitmap(const void* file_image);
/* A cursor and an icon from the images of their files, which tell their lengths too. Without the
 * mark of a cursor file at its start the first ends the program; 0 is no picture that can be read.
 */
int32_t __create_cursor(const void* file_image);
int32_t __create_icon(const void* file_image);

/* A menu of the program's for a text window: its name, or a number below 65536 in the place of the
 * address. It stands in PROGRAM.rc beside the program, as a resource compiler reads it:
 *     MAIN MENU BEGIN POPUP "&File" BEGIN MENUITEM "&Save\tCtrl+S", 101  MENUITEM SEPARATOR
 *     MENUITEM "E&xit", 102, GRAYED END END
 * (#define and #include "file" count.) The function gets each choice: window, message, the item's
 * number in the word's lower half. Without such a menu there is a report.
 *
 * A dialog of the program's: there is nothing to read its controls with, so that one is reported as
 * not available and the result is -1. */
void __attach_menu(int32_t window, const char* resource,
                   int32_t (*function)(int32_t, int32_t, uintptr_t, intptr_t));
void __attach_fortran_menu(int32_t window, const char* resource,
                           int32_t (*function)(int32_t*, int32_t*, uintptr_t*, intptr_t*));
intptr_t __make_dialog_box(int32_t owner, const char* resource,
                           intptr_t (*procedure)(int32_t, uint32_t, uintptr_t, intptr_t));

/* 0x740306. */
int32_t __quillpan_version(void);

#ifdef __cplusplus
}
#endif

#endif
