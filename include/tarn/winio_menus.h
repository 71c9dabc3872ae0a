/* Menus and accelerator keys of open windows. In a format they are %mn, %pm, %cm, %sm and %ac (see
 * tarn/winio.h). */
#ifndef TARN_WINIO_MENUS_H
#define TARN_WINIO_MENUS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Adds an item at the end of a menu whose handle a `*` in a menu list gave. `text` null is a
 * separator; a tab in it parts off the shortcut that is shown at the right. `grey` (null: none) is a
 * variable that greys the item while it is 0, `check` one that checks it while it isn't. The result
 * is the item, for __remove_menu_item. A menu that no open window has is reported. */
int32_t __add_menu_item(int32_t menu, const char* text, int32_t* grey, int32_t* check,
                        int32_t (*callback)(void));
void __remove_menu_item(int32_t item);
/* For menus from dialog resources: deletes the item with that ID, or with mode not 0 the one before
 * it. */
void __delete_menu_item(int32_t resource_id, int32_t mode);
/* For the same: puts an item with that ID before the item `before_id`, or, where the two are one,
 * in its place; ID 0 is a separator. A tab in `text` parts off the name of a key that chooses the
 * item; a name that is no key is reported. */
void __insert_menu_item(const char* text, int32_t id, int32_t before_id);

/* New definitions for the enhanced menu and popup menu of a window (0: the current one). A window
 * that was made without one is reported; a definition that can't be read leaves the old one. */
void __replace_enhanced_menu(int32_t window, const char* text);
void __replace_enhanced_popup_menu(int32_t window, const char* text);

/* Shows the current window's popup menu at the pointer; how it stands to that place: 4 centred, 8
 * to the left of it, 16 vertically centred, 32 above it. */
void __display_popup_menu(void);
void __align_popup_menu(int32_t flags);

/* A key of a window: "F5", "Ctrl+S", "Alt+Shift+PgUp" ... The function runs with the reason
 * "ACCELERATOR"; another one for the same key takes its place, null removes it. A name that is no
 * key is reported. */
void __add_accelerator(int32_t window, const char* name, int32_t (*callback)(void));
/* The same with the key as a number: its character or virtual key, and 0x100 with Alt, 0x200 with
 * Ctrl, 0x400 with Shift. */
void __add_accelerator1(int32_t window, int32_t key, int32_t (*callback)(void));
void __remove_accelerator(int32_t window, const char* name);
/* Runs what the key would, in the current window, with the reason "SEND_ACCELERATOR". */
void __send_accelerator(const char* name);

#ifdef __cplusplus
}
#endif

#endif
