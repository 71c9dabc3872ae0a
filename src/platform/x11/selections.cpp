#include "platform/x11/selections.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <xcb/xfixes.h>

namespace tarn::x11 {
namespace {

// One property write; more goes in pieces of this.
constexpr std::size_t piece = std::size_t{1} << 18;
// What another program may put into our memory.
constexpr std::size_t most_received = std::size_t{1} << 28;

std::size_t piece_size(const Connection& connection) {
    return std::min(piece, connection.longest_request - 256);
}

int hex_digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::string lines_from_outside(std::string_view bytes, bool latin1) {
    std::string text;
    text.reserve(bytes.size());
    // Some owners count the terminating zero in.
    while (!bytes.empty() && bytes.back() == '\0') bytes.remove_suffix(1);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        auto c = static_cast<unsigned char>(bytes[i]);
        if (c == '\r') {
            if (i + 1 == bytes.size() || bytes[i + 1] != '\n') text.push_back('\n');
        } else if (latin1 && c >= 0x80) {
            text.push_back(static_cast<char>(0xC0 | c >> 6));
            text.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else {
            text.push_back(static_cast<char>(c));
        }
    }
    return text;
}

std::string latin1_from_utf8(std::string_view utf8) {
    std::string text;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        auto c = static_cast<unsigned char>(utf8[i]);
        if (c < 0x80) {
            text.push_back(static_cast<char>(c));
        } else if ((c == 0xC2 || c == 0xC3) && i + 1 < utf8.size() &&
                   (static_cast<unsigned char>(utf8[i + 1]) & 0xC0) == 0x80) {
            text.push_back(static_cast<char>(c << 6 | (utf8[++i] & 0x3F)));
        } else if ((c & 0xC0) != 0x80) {
            text.push_back('?');
        }
    }
    return text;
}

std::string paths_from_uris(std::string_view list) {
    std::string paths;
    while (!list.empty()) {
        std::size_t end = list.find_first_of("\r\n");
        std::string_view line = list.substr(0, end);
        list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
        constexpr std::string_view scheme = "file:";
        if (line.substr(0, scheme.size()) != scheme) continue;
        line.remove_prefix(scheme.size());
        // With a host, which is this one, or without: file:///a, file://host/a, file:/a.
        if (line.substr(0, 2) == "//") line.remove_prefix(std::min(line.find('/', 2), line.size()));
        if (line.empty() || line[0] != '/') continue;
        std::string path;
        for (std::size_t i = 0; i < line.size(); ++i) {
            int high = -1, low = -1;
            if (line[i] == '%' && i + 2 < line.size()) {
                high = hex_digit(line[i + 1]);
                low = hex_digit(line[i + 2]);
            }
            if (high >= 0 && low >= 0) i += 2;
            path.push_back(high >= 0 && low >= 0 ? static_cast<char>(high << 4 | low) : line[i]);
        }
        // No path has a zero in it, and one with a line feed can't stand in the list.
        if (path.find_first_of(std::string_view("\0\n", 2)) != std::string::npos) continue;
        if (!paths.empty()) paths.push_back('\n');
        paths += path;
    }
    return paths;
}

void Selections::start(const Connection& connection) {
    const xcb_query_extension_reply_t* fixes =
        xcb_get_extension_data(connection.xcb, &xcb_xfixes_id);
    if (!fixes || !fixes->present) return;
    Reply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        connection.xcb, xcb_xfixes_query_version(connection.xcb, 1, 0), nullptr));
    if (!version) return;
    fixes_event_ = fixes->first_event;
    for (xcb_atom_t selection : {connection[Atom::clipboard], xcb_atom_t{XCB_ATOM_PRIMARY}})
        xcb_xfixes_select_selection_input(connection.xcb, connection.helper, selection,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
}

// ---- Offering -------------------------------------------------------------------------------

void Selections::own(const Connection& connection, bool primary) {
    Offer& offer = offers_[primary];
    offer.owned = true;
    offer.since = connection.time;
    // A program may offer something long after the user's last event here, and others since.
    offer.claim =
        xcb_set_selection_owner(
            connection.xcb, connection.helper,
            primary ? xcb_atom_t{XCB_ATOM_PRIMARY} : connection[Atom::clipboard], XCB_CURRENT_TIME)
            .sequence;
}

void Selections::offer_text(const Connection& connection, bool primary, std::string_view utf8) {
    offers_[primary] = {};
    offers_[primary].text = utf8;
    own(connection, primary);
}

void Selections::offer_image(const Connection& connection, std::string_view png) {
    offers_[0] = {};
    offers_[0].png = png;
    own(connection, false);
}

bool Selections::is_text(const Connection& connection, xcb_atom_t target) const {
    return target == connection[Atom::utf8_string] || target == connection[Atom::text_plain_utf8] ||
           target == connection[Atom::text_plain] || target == connection[Atom::text] ||
           target == XCB_ATOM_STRING;
}

// Puts one form of the offer into another program's property. False: it has no such form.
bool Selections::convert(const Connection& connection, const Offer& offer, xcb_window_t to,
                         xcb_atom_t target, xcb_atom_t property) {
    if (target == connection[Atom::targets]) {
        std::vector<std::uint32_t> forms{connection[Atom::targets], connection[Atom::timestamp],
                                         connection[Atom::multiple]};
        if (!offer.png.empty()) {
            forms.push_back(connection[Atom::image_png]);
        } else {
            forms.insert(forms.end(),
                         {connection[Atom::utf8_string], connection[Atom::text_plain_utf8],
                          XCB_ATOM_STRING, connection[Atom::text], connection[Atom::text_plain]});
        }
        set_words(connection, to, property, XCB_ATOM_ATOM, forms.data(), forms.size());
        return true;
    }
    if (target == connection[Atom::timestamp]) {
        set_words(connection, to, property, XCB_ATOM_INTEGER, &offer.since, 1);
        return true;
    }
    if (!offer.png.empty()) {
        if (target != connection[Atom::image_png]) return false;
        send(connection, to, property, target, offer.png);
        return true;
    }
    if (!is_text(connection, target)) return false;
    if (target == XCB_ATOM_STRING) {
        send(connection, to, property, target, latin1_from_utf8(offer.text));
    } else {
        xcb_atom_t type = target == connection[Atom::text] ? connection[Atom::utf8_string] : target;
        send(connection, to, property, type, offer.text);
    }
    return true;
}

// A list of pairs, target and property; the properties of forms that don't exist are cleared in
// the list.
void Selections::convert_several(const Connection& connection, const Offer& offer, xcb_window_t to,
                                 xcb_atom_t property) {
    std::vector<std::uint32_t> pairs = get_property(connection, to, property, 4096).words();
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
        bool nested = pairs[i] == connection[Atom::multiple];
        if (nested || !convert(connection, offer, to, pairs[i], pairs[i + 1]))
            pairs[i + 1] = XCB_NONE;
    }
    set_words(connection, to, property, connection[Atom::atom_pair], pairs.data(), pairs.size());
}

void Selections::answer_request(const Connection& connection,
                                const xcb_selection_request_event_t& request) {
    bool primary = request.selection == XCB_ATOM_PRIMARY;
    const Offer& offer = offers_[primary];
    // Old programs name no property.
    xcb_atom_t property = request.property != XCB_NONE ? request.property : request.target;
    bool known_selection = primary || request.selection == connection[Atom::clipboard];
    bool granted = known_selection && offer.owned;
    if (granted && request.target == connection[Atom::multiple]) {
        granted = request.property != XCB_NONE;
        if (granted) convert_several(connection, offer, request.requestor, property);
    } else if (granted) {
        granted = convert(connection, offer, request.requestor, request.target, property);
    }
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = granted ? property : xcb_atom_t{XCB_NONE};
    xcb_send_event(connection.xcb, 0, request.requestor, 0, reinterpret_cast<const char*>(&notice));
    xcb_flush(connection.xcb);
}

void Selections::send(const Connection& connection, xcb_window_t to, xcb_atom_t property,
                      xcb_atom_t type, std::string bytes) {
    if (bytes.size() <= piece_size(connection)) {
        set_bytes(connection, to, property, type, bytes);
        return;
    }
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection.xcb, to, XCB_CW_EVENT_MASK, &events);
    auto size = static_cast<std::uint32_t>(bytes.size());
    set_words(connection, to, property, connection[Atom::incr], &size, 1);
    transfers_.push_back({to, property, type, std::move(bytes)});
}

// The other side has taken a piece: the next one, or an empty one at the end.
bool Selections::continue_transfer(const Connection& connection,
                                   const xcb_property_notify_event_t& event) {
    if (event.state != XCB_PROPERTY_DELETE) return false;
    auto at = std::find_if(transfers_.begin(), transfers_.end(), [&](const Transfer& transfer) {
        return transfer.to == event.window && transfer.property == event.atom;
    });
    if (at == transfers_.end()) return false;
    std::string_view rest = std::string_view(at->bytes).substr(at->sent);
    rest = rest.substr(0, piece_size(connection));
    set_bytes(connection, at->to, at->property, at->type, rest);
    at->sent += rest.size();
    if (rest.empty()) transfers_.erase(at);
    xcb_flush(connection.xcb);
    return true;
}

// ---- Asking ---------------------------------------------------------------------------------

void Selections::ask(const Connection& connection, xcb_atom_t selection, xcb_atom_t target,
                     xcb_timestamp_t time) {
    answer_ = {};
    waiting_ = true;
    in_pieces_ = false;
    asked_selection_ = selection;
    asked_target_ = target;
    xcb_delete_property(connection.xcb, connection.helper, connection[Atom::incoming]);
    xcb_convert_selection(connection.xcb, connection.helper, selection, target,
                          connection[Atom::incoming], time);
    xcb_flush(connection.xcb);
}

Property Selections::answer() {
    waiting_ = in_pieces_ = false;
    return std::exchange(answer_, {});
}

void Selections::receive(const Connection& connection, const xcb_selection_notify_event_t& event) {
    if (!waiting_ || in_pieces_ || event.selection != asked_selection_ ||
        event.target != asked_target_)
        return;
    ++progress_;
    if (event.property == XCB_NONE) {
        waiting_ = false;
        return;
    }
    answer_ =
        get_property(connection, connection.helper, connection[Atom::incoming], most_received);
    in_pieces_ = answer_.type == connection[Atom::incr];
    waiting_ = in_pieces_;
    if (in_pieces_) answer_ = {};
    // Deleting it also asks for the first piece.
    xcb_delete_property(connection.xcb, connection.helper, connection[Atom::incoming]);
    xcb_flush(connection.xcb);
}

void Selections::receive_piece(const Connection& connection) {
    Property next =
        get_property(connection, connection.helper, connection[Atom::incoming], most_received);
    xcb_delete_property(connection.xcb, connection.helper, connection[Atom::incoming]);
    xcb_flush(connection.xcb);
    ++progress_;
    answer_.type = next.type;
    answer_.format = next.format;
    if (next.bytes.empty() || answer_.bytes.size() + next.bytes.size() > most_received) {
        waiting_ = in_pieces_ = false;
        return;
    }
    answer_.bytes += next.bytes;
}

bool Selections::hand_over(const Connection& connection) {
    constexpr std::size_t small = std::size_t{1} << 20;
    const Offer& offer = offers_[0];
    if (!offer.owned || !offer.png.empty() || offer.text.empty() || offer.text.size() > small)
        return false;
    Reply<xcb_get_selection_owner_reply_t> manager(xcb_get_selection_owner_reply(
        connection.xcb,
        xcb_get_selection_owner(connection.xcb, connection[Atom::clipboard_manager]), nullptr));
    if (!manager || manager->owner == XCB_NONE) return false;
    ask(connection, connection[Atom::clipboard_manager], connection[Atom::save_targets]);
    return true;
}

// ---- Events ---------------------------------------------------------------------------------

bool Selections::handle(const Connection& connection, const xcb_generic_event_t& event,
                        Lost& lost) {
    int kind = event.response_type & 0x7F;
    switch (kind) {
        case XCB_SELECTION_REQUEST:
            answer_request(connection,
                           reinterpret_cast<const xcb_selection_request_event_t&>(event));
            return true;
        case XCB_SELECTION_NOTIFY:
            receive(connection, reinterpret_cast<const xcb_selection_notify_event_t&>(event));
            return true;
        case XCB_SELECTION_CLEAR: {
            const auto& clear = reinterpret_cast<const xcb_selection_clear_event_t&>(event);
            bool primary = clear.selection == XCB_ATOM_PRIMARY;
            if (!primary && clear.selection != connection[Atom::clipboard]) return true;
            if (!offers_[primary].owned) return true;
            // Sent before the server heard that we own it again?
            if (static_cast<std::int32_t>(event.full_sequence - offers_[primary].claim) < 0)
                return true;
            offers_[primary] = {};
            lost = primary ? Lost::primary : Lost::clipboard;
            return true;
        }
        case XCB_PROPERTY_NOTIFY: {
            const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            if (change.window == connection.helper) {
                if (in_pieces_ && change.atom == connection[Atom::incoming] &&
                    change.state == XCB_PROPERTY_NEW_VALUE)
                    receive_piece(connection);
                return true;
            }
            return continue_transfer(connection, change);
        }
        case XCB_DESTROY_NOTIFY: {
            xcb_window_t gone = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
            return std::erase_if(transfers_, [gone](const Transfer& transfer) {
                       return transfer.to == gone;
                   }) > 0;
        }
        default:
            break;
    }
    if (fixes_event_ == 0 || kind != fixes_event_) return false;
    const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    known[change.selection == XCB_ATOM_PRIMARY].valid = false;
    return true;
}

}  // namespace tarn::x11
