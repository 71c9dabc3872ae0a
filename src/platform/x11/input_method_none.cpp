// Where the library was built without the headers of the input method protocol.
#include "platform/x11/input_method.h"

namespace tarn::x11 {

struct InputMethod::Session {};

InputMethod::InputMethod() = default;
InputMethod::~InputMethod() = default;
void InputMethod::place(const Connection&, xcb_window_t, platform::POINT) {}
void InputMethod::leave(xcb_window_t) {}
void InputMethod::focus(xcb_window_t, bool) {}
void InputMethod::forget(xcb_window_t) {}
bool InputMethod::filter(xcb_generic_event_t&) {
    return false;
}
bool InputMethod::take_key(const xcb_key_press_event_t&) {
    return false;
}
bool InputMethod::next_answer(MethodAnswer&) {
    return false;
}

}  // namespace tarn::x11
