/* What a program does with format windows that are open: tell them that a variable has changed,
 * ask in a call-back why it was called, and set the library's switches.
 *
 * A call-back is a function of no arguments. Its result says what happens next:
 *     0         the window closes
 *     1         the whole window is brought up to date with the variables
 *     2 ...     nothing further
 *     negative  the window closes, and the call that made it returns the absolute value
 */
#ifndef TARN_WINIO_RUN_H
#define TARN_WINIO_RUN_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The program has changed the variable at this address (null: anything): every control, caption and
 * scroll bar that shows it follows, and the screen catches up. Storing 0 or above in the control
 * variable of an open window and calling this closes the window. The second form serves Fortran: it
 * first takes the variable's CHARACTER copies over. */
void __window_update(void* variable);
void __window_update_f(void* variable);
void WINDOW_UPDATE_h(void* variable) TARN_LINK_NAME("WINDOW_UPDATE#");
/* The same, but boxes show the value as it stands, beyond their limits too. */
void __control_update(void* variable);
void CONTROL_UPDATE_h(void* variable) TARN_LINK_NAME("CONTROL_UPDATE#");

/* While a call-back runs its window takes no commands. This lets one more be entered, in the
 * current window or in the window with that handle. */
void __permit_another_callback(void);
void __permit_callback_in_window(int32_t handle);

/* Named parameters, without regard to case: "CALL_BACK_REASON", "CURRENT_CONTROL",
 * "GRAPHICS_MOUSE_X" ... In the call-back of a box, a list or a switch, "THIS" is its value. A name
 * that isn't known, or of another kind, is reported.
 * The overall call-back of a %ib is called once before its window is made, with the reason
 * "SIZE_ADJUST": "IB_WIDTHS" and "IB_HEIGHTS" are then the addresses of the "IB_COLUMNS" widths and
 * the "IB_ROWS" heights, ints in pixels, and may be changed. */
intptr_t __quillpan_info(const char* name);
double __quillpan_float(const char* name);
/* Never null. The text stays until the parameter gets another one. */
const char* __quillpan_string(const char* name);
/* Copies it, cut to size - 1 bytes, and terminates it. */
void __quillpan_string1(char* buffer, const char* name, int32_t size);
/* A new name makes a parameter of the program's own. "RF_EXP_LIMIT", a float, is the magnitude
 * below which boxes show numbers with an exponent. */
void __set_quillpan_info(const char* name, intptr_t value);
void __set_quillpan_float(const char* name, double value);
void __set_quillpan_string(const char* name, const char* text);
/* Fortran: the name loses its trailing blanks; a text result is filled with blanks. */
intptr_t QUILLPAN_INFO_h(const char* name, intptr_t length) TARN_LINK_NAME("QUILLPAN_INFO#");
void QUILLPAN_STRING_h(char* result, intptr_t result_length, const char* name, intptr_t length)
    TARN_LINK_NAME("QUILLPAN_STRING#");
/* Where the mouse was in the drawing or picture of the last event, and its buttons and keys. */
void GET_MOUSE_INFO_h(int32_t* x, int32_t* y, int32_t* flags) TARN_LINK_NAME("GET_MOUSE_INFO#");

/* Process-wide switches; a leading `_` turns one off: rgb_colours utf8 old_resize alt_open_save
 * undef safe_cb gdi+images no_pl_dy_limit. Further: hide_error, show_error or fatal_error (how
 * drawing reacts to errors), rs_read_only, limit_errors, overwrite_prompt. */
void __quillpan_option(const char* text);

/* Windows can be sized unless they ask otherwise, and a pivot needs no control that can be: as
 * programs of old expect. Otherwise a window keeps its size until something in it can grow. */
void __set_old_resize_mechanism(void);
/* The largest window, in layout units (a quarter of a character across, an eighth down). It must
 * come before the first window. */
void __set_max_dialog_size(int32_t width, int32_t height);

#ifdef __cplusplus
}
#endif

#endif
