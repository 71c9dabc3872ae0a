#include "frame/link_name.h"
#include "winio/callbacks.h"
#include "winio/layout.h"

using namespace tarn::winio;

extern "C" {

TARN_EXPORT void __window_update(void* variable) {
    window_update(variable);
}
TARN_EXPORT void __window_update_f(void* variable) {
    window_update_f(variable);
}
TARN_EXPORT void __control_update(void* variable) {
    control_update(variable);
}
TARN_EXPORT void WINDOW_UPDATE_h(void* variable) LINK_NAME("WINDOW_UPDATE#");
void WINDOW_UPDATE_h(void* variable) {
    window_update_f(variable);
}
TARN_EXPORT void CONTROL_UPDATE_h(void* variable) LINK_NAME("CONTROL_UPDATE#");
void CONTROL_UPDATE_h(void* variable) {
    control_update(variable);
}

TARN_EXPORT void __permit_another_callback() {
    if (fancy_window* window = current_window()) window->flags.permit = true;
}
TARN_EXPORT void __permit_callback_in_window(std::int32_t handle) {
    if (fancy_window* window = fancy_window_from_handle(HWND{handle})) window->flags.permit = true;
}

TARN_EXPORT void __set_old_resize_mechanism() {
    records().old_resize = true;
}
TARN_EXPORT void __set_max_dialog_size(std::int32_t width, std::int32_t height) {
    set_max_dialog_size(width, height);
}
}
