// Clipboard and PRIMARY, both ways. Long contents travel in pieces (INCR) in both directions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

#include "platform/base/surface.h"
#include "platform/x11/connection.h"

namespace tarn::x11 {

// Lines in UTF-8 with LF, from whatever ends and encoding they have.
std::string lines_from_outside(std::string_view bytes, bool latin1);
// What a program that knows no UTF-8 gets; '?' for what Latin-1 lacks.
std::string latin1_from_utf8(std::string_view utf8);
// The paths of a list of file addresses, separated by line feeds; other addresses are left out.
std::string paths_from_uris(std::string_view list);

class Selections {
  public:
    void start(const Connection& connection);

    void offer_text(const Connection& connection, bool primary, std::string_view utf8);
    void offer_image(const Connection& connection, std::string_view png);
    bool owned(bool primary) const { return offers_[primary].owned; }
    bool has_image(bool primary) const { return !offers_[primary].png.empty(); }
    const std::string& text(bool primary) const { return offers_[primary].text; }

    // Asks the owner of a selection; the answer comes with events.
    void ask(const Connection& connection, xcb_atom_t selection, xcb_atom_t target,
             xcb_timestamp_t time = XCB_CURRENT_TIME);
    bool waiting() const { return waiting_; }
    // Counts what came of the answer, so that a slow but living owner is waited for.
    std::size_t progress() const { return progress_; }
    // The answer, empty of type when there was none; ends the waiting.
    Property answer();

    // False: the event isn't a selection's. `lost`: another program owns one now.
    enum class Lost : std::uint8_t { none, clipboard, primary };
    bool handle(const Connection& connection, const xcb_generic_event_t& event, Lost& lost);

    // `known` is kept valid by the server's word on new owners.
    bool tells_owners() const { return fixes_event_ != 0; }
    // What the present owner offers, from the last look while nobody else became owner.
    struct Known {
        bool valid = false, text = false;
    };
    Known known[2];

    // Asks a clipboard manager to take the clipboard over; false when there is nothing to take
    // over or nobody who would. The answer is one to `ask`.
    bool hand_over(const Connection& connection);

  private:
    struct Offer {
        bool owned = false;
        xcb_timestamp_t since = XCB_CURRENT_TIME;
        unsigned claim = 0;  // number of the request that made us the owner
        std::string text;
        std::string png;  // a picture in place of a text
    };
    // A long content on its way to another program.
    struct Transfer {
        xcb_window_t to;
        xcb_atom_t property, type;
        std::string bytes;
        std::size_t sent = 0;
    };

    void own(const Connection& connection, bool primary);
    void answer_request(const Connection& connection, const xcb_selection_request_event_t& request);
    bool convert(const Connection& connection, const Offer& offer, xcb_window_t to,
                 xcb_atom_t target, xcb_atom_t property);
    void convert_several(const Connection& connection, const Offer& offer, xcb_window_t to,
                         xcb_atom_t property);
    void send(const Connection& connection, xcb_window_t to, xcb_atom_t property, xcb_atom_t type,
              std::string bytes);
    bool continue_transfer(const Connection& connection, const xcb_property_notify_event_t& event);
    void receive(const Connection& connection, const xcb_selection_notify_event_t& event);
    void receive_piece(const Connection& connection);
    bool is_text(const Connection& connection, xcb_atom_t target) const;

    Offer offers_[2];  // clipboard, PRIMARY
    std::vector<Transfer> transfers_;
    std::uint8_t fixes_event_ = 0;
    bool waiting_ = false, in_pieces_ = false;
    xcb_atom_t asked_selection_ = 0, asked_target_ = 0;
    Property answer_;
    std::size_t progress_ = 0;
};

}  // namespace tarn::x11
