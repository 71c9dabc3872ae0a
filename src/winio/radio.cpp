// %rb: a switch beside its label, and with %ga one of several that exclude each other.
#include "platform/user/user.h"
#include "winio/callbacks.h"
#include "winio/codes.h"
#include "winio/layout.h"
#include "winio/procedures.h"

namespace tarn::winio {

namespace {

// The mark and the gap behind it; room for the ring of the keyboard focus beyond the label.
constexpr std::int32_t mark_pixels = 22, ring_pixels = 6;

}  // namespace

void handle_rb(code_call& call) {
    fancy_window* window = current_window();
    window_control* control = new_window_control(control_type::radio);
    control->text = get_shown_string(call, "radio button");
    read_resource_id(call, *control);
    auto* variable = user_int_pointer(call.arguments);
    control->variable = variable;
    undef_int_check(variable, "%rb", 0);
    control->flags.grave = call.grave;
    call.grave = false;
    read_grey_variable(call, *control);
    read_callback(call, *control, "should be a radio button call-back function");
    std::int32_t width = 0, height = 0;
    get_text_dimensions(control->font, control->text ? control->text : "", width, height);
    control->width = width + pixels_to_units_x(mark_pixels + ring_pixels);
    control->height = static_cast<std::int32_t>(window->text_scale * 8.0 + 0.5) + 1;
    deepen_line(control->height);
    locate(control, 0);
}

}  // namespace tarn::winio
