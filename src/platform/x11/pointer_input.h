// The pointer by the X Input extension, where the server has it: it tells how far a wheel or a
// touch pad has scrolled, by parts of a notch.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include "platform/x11/connection.h"

namespace tarn::x11 {

// A number of a device that scrolling changes.
struct ScrollAxis {
    std::uint16_t device = 0, number = 0;
    bool horizontal = false;
    double increment = 1.0;  // of a notch, down or to the right
    double value = 0.0;
    bool known = false;  // the value
    double rest = 0.0;   // of a unit that was not told yet
};

struct Scroll {
    std::int32_t delta = 0;  // 120 a notch, up and left positive
    bool horizontal = false;
};

class ScrollAxes {
  public:
    void clear() { axes_.clear(); }
    void add(const ScrollAxis& axis) { axes_.push_back(axis); }
    bool empty() const { return axes_.empty(); }
    // Whether the device tells its scrolling, so that its wheel's buttons tell it twice.
    bool scrolls(std::uint16_t device, bool horizontal) const;
    // A device's number has this value now.
    std::optional<Scroll> changed(std::uint16_t device, std::uint16_t number, double value);

  private:
    std::vector<ScrollAxis> axes_;
};

class PointerInput {
  public:
    // Asks for the extension; at the first call and no other.
    void start(const Connection& connection);
    bool started() const { return opcode_ != 0; }
    // The window's pointer events come by the extension from now on.
    void select(const Connection& connection, xcb_window_t window) const;
    // Others may have scrolled since: the devices' values are read again.
    void entered(const Connection& connection);

    // The kind (XCB_INPUT_...) of an event of the extension; 0 for others.
    std::uint16_t kind_of(const xcb_generic_event_t& event) const;
    // Devices came, went or changed.
    void devices_changed(const Connection& connection);
    // What a motion scrolled, each axis for itself.
    std::vector<Scroll> scrolled(const xcb_input_motion_event_t& motion);
    bool is_told_twice(const xcb_input_button_press_event_t& button) const;

  private:
    std::uint8_t opcode_ = 0;
    bool tried_ = false;
    ScrollAxes axes_;
};

// The bits of a core event's state.
std::uint16_t core_state(const xcb_input_button_press_event_t& event);

}  // namespace tarn::x11
