// Link-name entries of menus and accelerators.
#include "frame/link_name.h"
#include "platform/user/menus.h"
#include "tarn/winio_menus.h"
#include "winio/menus.h"

using namespace tarn::winio;
using tarn::platform::HMENU;
using tarn::platform::HWND;

extern "C" {

TARN_EXPORT std::int32_t __add_menu_item(std::int32_t menu, const char* text, std::int32_t* grey,
                                         std::int32_t* check, std::int32_t (*callback)()) {
    return add_menu_item(HMENU{menu}, text, grey, check, callback);
}
TARN_EXPORT void __remove_menu_item(std::int32_t item) {
    remove_menu_item(item);
}
TARN_EXPORT void __delete_menu_item(std::int32_t resource_id, std::int32_t mode) {
    delete_menu_item(resource_id, mode);
}
TARN_EXPORT void __insert_menu_item(const char* text, std::int32_t id, std::int32_t before_id) {
    insert_menu_item(text, id, before_id);
}
TARN_EXPORT void __replace_enhanced_menu(std::int32_t window, const char* text) {
    replace_enhanced_menu(window, text);
}
TARN_EXPORT void __replace_enhanced_popup_menu(std::int32_t window, const char* text) {
    replace_enhanced_popup_menu(window, text);
}
TARN_EXPORT void __display_popup_menu() {
    if (fancy_window* window = current_window()) display_popup_menu1(window, window->hwnd, 0, true);
}
TARN_EXPORT void __align_popup_menu(std::int32_t flags) {
    popup_alignment() = static_cast<std::uint32_t>(flags) & 0x3C;
}
TARN_EXPORT void __add_accelerator(std::int32_t window, const char* name,
                                   std::int32_t (*callback)()) {
    add_accelerator(HWND{window}, name, callback);
}
TARN_EXPORT void __add_accelerator1(std::int32_t window, std::int32_t key,
                                    std::int32_t (*callback)()) {
    add_accelerator(HWND{window}, key, callback);
}
TARN_EXPORT void __remove_accelerator(std::int32_t window, const char* name) {
    remove_accelerator(HWND{window}, name);
}
TARN_EXPORT void __send_accelerator(const char* name) {
    send_accelerator(name);
}

}  // extern "C"
