#include "platform/x11/pointer_input.h"

#include <cmath>
#include <cstddef>

namespace tarn::x11 {
namespace {

double number(const xcb_input_fp3232_t& fixed) {
    return fixed.integral + fixed.frac / 4294967296.0;
}

// The classes of a device, for `axes`: which numbers scroll, and what they are.
void read_axes(const xcb_input_xi_device_info_t& device, ScrollAxes& axes) {
    for (auto each = xcb_input_xi_device_info_classes_iterator(&device); each.rem;
         xcb_input_device_class_next(&each)) {
        if (each.data->type != XCB_INPUT_DEVICE_CLASS_TYPE_SCROLL) continue;
        const auto& scroll = reinterpret_cast<const xcb_input_scroll_class_t&>(*each.data);
        ScrollAxis axis;
        axis.device = device.deviceid;
        axis.number = scroll.number;
        axis.horizontal = scroll.scroll_type == XCB_INPUT_SCROLL_TYPE_HORIZONTAL;
        axis.increment = number(scroll.increment);
        if (axis.increment == 0.0) continue;
        for (auto other = xcb_input_xi_device_info_classes_iterator(&device); other.rem;
             xcb_input_device_class_next(&other)) {
            const auto& valuator = reinterpret_cast<const xcb_input_valuator_class_t&>(*other.data);
            if (other.data->type != XCB_INPUT_DEVICE_CLASS_TYPE_VALUATOR ||
                valuator.number != axis.number)
                continue;
            axis.value = number(valuator.value);
            axis.known = true;
        }
        axes.add(axis);
    }
}

}  // namespace

bool ScrollAxes::scrolls(std::uint16_t device, bool horizontal) const {
    for (const ScrollAxis& axis : axes_) {
        if (axis.device == device && axis.horizontal == horizontal) return true;
    }
    return false;
}

std::optional<Scroll> ScrollAxes::changed(std::uint16_t device, std::uint16_t number,
                                          double value) {
    constexpr double notch = 120.0, most = 100.0 * notch;
    for (ScrollAxis& axis : axes_) {
        if (axis.device != device || axis.number != number) continue;
        double moved = axis.known ? (axis.value - value) / axis.increment * notch : 0.0;
        axis.value = value;
        axis.known = true;
        if (!(std::fabs(moved) <= most)) moved = 0.0;  // a device that began to count anew
        if ((axis.rest < 0.0) != (moved < 0.0)) axis.rest = 0.0;
        axis.rest += moved;
        double whole = std::trunc(axis.rest);
        axis.rest -= whole;
        return Scroll{static_cast<std::int32_t>(whole), axis.horizontal};
    }
    return std::nullopt;
}

void PointerInput::start(const Connection& connection) {
    if (tried_) return;
    tried_ = true;
    const xcb_query_extension_reply_t* extension =
        xcb_get_extension_data(connection.xcb, &xcb_input_id);
    if (!extension || !extension->present) return;
    Reply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        connection.xcb, xcb_input_xi_query_version(connection.xcb, 2, 2), nullptr));
    bool scrolls = version && (version->major_version > 2 ||
                               (version->major_version == 2 && version->minor_version >= 1));
    if (!scrolls) return;
    opcode_ = extension->major_opcode;
    struct {
        xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL, 1};
        std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_HIERARCHY;
    } wanted;
    xcb_input_xi_select_events(connection.xcb, connection.root(), 1, &wanted.head);
    devices_changed(connection);
}

void PointerInput::select(const Connection& connection, xcb_window_t window) const {
    if (opcode_ == 0) return;
    struct {
        xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL_MASTER, 1};
        std::uint32_t events =
            XCB_INPUT_XI_EVENT_MASK_MOTION | XCB_INPUT_XI_EVENT_MASK_BUTTON_PRESS |
            XCB_INPUT_XI_EVENT_MASK_BUTTON_RELEASE | XCB_INPUT_XI_EVENT_MASK_DEVICE_CHANGED;
    } wanted;
    xcb_input_xi_select_events(connection.xcb, window, 1, &wanted.head);
}

void PointerInput::entered(const Connection& connection) {
    if (opcode_ != 0 && !axes_.empty()) devices_changed(connection);
}

std::uint16_t PointerInput::kind_of(const xcb_generic_event_t& event) const {
    if ((event.response_type & 0x7F) != XCB_GE_GENERIC || opcode_ == 0) return 0;
    const auto& general = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    return general.extension == opcode_ ? general.event_type : std::uint16_t{0};
}

void PointerInput::devices_changed(const Connection& connection) {
    axes_.clear();
    Reply<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(
        connection.xcb, xcb_input_xi_query_device(connection.xcb, XCB_INPUT_DEVICE_ALL), nullptr));
    if (!reply) return;
    for (auto each = xcb_input_xi_query_device_infos_iterator(reply.get()); each.rem;
         xcb_input_xi_device_info_next(&each)) {
        if (each.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_POINTER ||
            each.data->type == XCB_INPUT_DEVICE_TYPE_FLOATING_SLAVE)
            read_axes(*each.data, axes_);
    }
}

std::vector<Scroll> PointerInput::scrolled(const xcb_input_motion_event_t& motion) {
    std::vector<Scroll> all;
    if (axes_.empty()) return all;
    const std::uint32_t* mask = xcb_input_button_press_valuator_mask(&motion);
    const xcb_input_fp3232_t* values = xcb_input_button_press_axisvalues(&motion);
    int left = xcb_input_button_press_axisvalues_length(&motion);
    for (std::uint16_t i = 0; i < motion.valuators_len * 32 && left > 0; ++i) {
        if ((mask[i / 32] >> i % 32 & 1) == 0) continue;
        auto scroll = axes_.changed(motion.sourceid, i, number(*values));
        if (scroll && scroll->delta != 0) all.push_back(*scroll);
        ++values;
        --left;
    }
    return all;
}

bool PointerInput::is_told_twice(const xcb_input_button_press_event_t& button) const {
    constexpr std::uint32_t wheel_up = 4, wheel_left = 6, wheel_right = 7;
    if (button.detail < wheel_up || button.detail > wheel_right) return false;
    return (button.flags & XCB_INPUT_POINTER_EVENT_FLAGS_POINTER_EMULATED) != 0 &&
           axes_.scrolls(button.sourceid, button.detail >= wheel_left);
}

std::uint16_t core_state(const xcb_input_button_press_event_t& event) {
    std::uint32_t state = event.mods.effective & 0xFF;
    state |= static_cast<std::uint32_t>(event.group.effective & 3) << 13;
    if (event.buttons_len > 0) {
        // Button 1 has bit 1 here and bit 8 there.
        std::uint32_t buttons = xcb_input_button_press_button_mask(&event)[0];
        state |= (buttons & 0x3E) << 7;
    }
    return static_cast<std::uint16_t>(state);
}

}  // namespace tarn::x11
