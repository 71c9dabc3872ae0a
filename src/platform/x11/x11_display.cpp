#include "platform/x11/x11_display.h"

#include <algorithm>
#include <cstdlib>
#include <poll.h>
#include <utility>
#include <xcb/randr.h>
#include <xcb/xcb_cursor.h>

#include "platform/display/geometry.h"

namespace tarn::x11 {
namespace {

X11Display* the_display = nullptr;

void leave_at_exit() {
    the_display->leave();
}

// Names of a cursor in themes, the wanted one first; the last is in the server's own font.
constexpr const char* cursor_names[][3] = {
    {"default", "left_ptr", ""},
    {"text", "xterm", ""},
    {"wait", "watch", ""},
    {"crosshair", "cross", ""},
    {"up_arrow", "sb_up_arrow", ""},
    {"all-scroll", "fleur", ""},
    {"ns-resize", "sb_v_double_arrow", ""},
    {"ew-resize", "sb_h_double_arrow", ""},
    {"nwse-resize", "size_fdiag", "bottom_right_corner"},
    {"nesw-resize", "size_bdiag", "bottom_left_corner"},
    {"pointer", "hand2", ""},
    {"not-allowed", "crossed_circle", "X_cursor"},
    {"help", "question_arrow", ""},
};
static_assert(std::size(cursor_names) == static_cast<std::size_t>(CursorShape::none));

}  // namespace

X11Display::X11Display(const DisplaySetup& setup, Connection& connection)
    : connection_(connection), lost_(setup.lost), own_scale_(setup.scale > 0.0) {
    if (const char* id = std::getenv("DESKTOP_STARTUP_ID")) {
        startup_id_ = id;
        unsetenv("DESKTOP_STARTUP_ID");  // it isn't for programs that this one starts
    }
    settings_owner_ = find_settings_owner(connection_);
    settings_ = fetch_settings(connection_, settings_owner_);
    dark_ = looks_dark(settings_);
    scale_ = own_scale_ ? setup.scale : desktop_scale(connection_, settings_.dpi);
    // Scale, monitors, managers that come and go.
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_.xcb, connection_.root(), XCB_CW_EVENT_MASK, &events);
    keyboard_.start(connection_);
    selections_.start(connection_);
    staging_.start(connection_);
    const xcb_query_extension_reply_t* randr =
        xcb_get_extension_data(connection_.xcb, &xcb_randr_id);
    if (randr && randr->present) {
        Reply<xcb_randr_query_version_reply_t> version(xcb_randr_query_version_reply(
            connection_.xcb, xcb_randr_query_version(connection_.xcb, 1, 5), nullptr));
        if (version && (version->major_version > 1 || version->minor_version >= 5)) {
            randr_event_ = randr->first_event;
            xcb_randr_select_input(connection_.xcb, connection_.root(),
                                   XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE);
        }
    }
    read_monitors();
}

Window* X11Display::find(TopLevel id) {
    for (auto& window : windows_) {
        if (window->id == id) return window.get();
    }
    return nullptr;
}

Window* X11Display::find_handle(xcb_window_t handle) {
    for (auto& window : windows_) {
        if (window->handle == handle) return window.get();
    }
    return nullptr;
}

// ---- Screen ---------------------------------------------------------------------------------

// Whoever redirects the root's children is a window manager.
bool X11Display::is_managed() const {
    Reply<xcb_get_window_attributes_reply_t> root(xcb_get_window_attributes_reply(
        connection_.xcb, xcb_get_window_attributes(connection_.xcb, connection_.root()), nullptr));
    return root && (root->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT) != 0;
}

bool X11Display::manager_supports(Atom feature) const {
    std::vector<std::uint32_t> list =
        get_property(connection_, connection_.root(), connection_[Atom::net_supported]).words();
    return std::find(list.begin(), list.end(), connection_[feature]) != list.end();
}

void X11Display::read_monitors() {
    real_monitors_.clear();
    if (randr_event_ != 0) {
        Reply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
            connection_.xcb, xcb_randr_get_monitors(connection_.xcb, connection_.root(), 1),
            nullptr));
        if (reply) {
            for (auto each = xcb_randr_get_monitors_monitors_iterator(reply.get()); each.rem;
                 xcb_randr_monitor_info_next(&each)) {
                const xcb_randr_monitor_info_t& info = *each.data;
                RECT area{info.x, info.y, info.x + info.width, info.y + info.height};
                if (area.empty()) continue;
                auto place = info.primary ? real_monitors_.begin() : real_monitors_.end();
                real_monitors_.insert(place, area);
            }
        }
    }
    if (real_monitors_.empty()) {
        Reply<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(
            connection_.xcb, xcb_get_geometry(connection_.xcb, connection_.root()), nullptr));
        RECT whole{0, 0, connection_.screen->width_in_pixels, connection_.screen->height_in_pixels};
        if (root) whole = {0, 0, root->width, root->height};
        real_monitors_.push_back(whole);
    }
    scale_monitors();
}

void X11Display::scale_monitors() {
    monitors_.clear();
    for (const RECT& real : real_monitors_) monitors_.push_back(logical_rect(real));
}

// Windows stay where they are, but that place may count from another corner now.
void X11Display::monitors_changed() {
    POINT before{real_monitors_[0].left, real_monitors_[0].top};
    read_monitors();
    if (before == POINT{real_monitors_[0].left, real_monitors_[0].top}) return;
    for (auto& window : windows_) window->configured = true;
}

RECT X11Display::real_monitor(POINT real) const {
    return real_monitors_[monitor_at(real_monitors_, real)];
}

// The manager tells one area for all monitors together.
RECT X11Display::real_work_area(POINT real) const {
    RECT area = real_monitor(real);
    xcb_window_t root = connection_.root();
    std::vector<std::uint32_t> areas =
        get_property(connection_, root, connection_[Atom::net_workarea]).words();
    std::vector<std::uint32_t> desktop =
        get_property(connection_, root, connection_[Atom::net_current_desktop]).words();
    std::size_t at = desktop.empty() ? 0 : std::size_t{desktop[0]} * 4;
    if (at + 4 > areas.size()) return area;
    auto number = [&](std::size_t i) { return static_cast<std::int32_t>(areas[at + i] & 0xFFFFF); };
    RECT inside{std::max(area.left, number(0)), std::max(area.top, number(1)),
                std::min(area.right, number(0) + number(2)),
                std::min(area.bottom, number(1) + number(3))};
    return inside.empty() ? area : inside;
}

RECT X11Display::work_area(POINT near) const {
    return logical_rect(real_work_area(real_point(near)));
}

// Logical places count from the corner of the primary monitor.
RECT X11Display::logical_rect(const RECT& real) const {
    const RECT& origin = real_monitors_[0];
    return {logical_edge(real.left - origin.left, scale_),
            logical_edge(real.top - origin.top, scale_),
            logical_edge(real.right - origin.left, scale_),
            logical_edge(real.bottom - origin.top, scale_)};
}

POINT X11Display::real_point(POINT logical) const {
    const RECT& origin = real_monitors_[0];
    return {origin.left + real_edge(logical.x, scale_), origin.top + real_edge(logical.y, scale_)};
}

POINT X11Display::logical_point(POINT real) const {
    const RECT& origin = real_monitors_[0];
    return {logical_pixel(real.x - origin.left, scale_),
            logical_pixel(real.y - origin.top, scale_)};
}

// Where a window's client area is, logical. What was asked for and granted comes back unchanged.
RECT X11Display::client(const Window& window) const {
    const RECT &real = window.real, &asked = window.asked;
    const RECT& origin = real_monitors_[0];
    auto edge = [&](std::int32_t at, std::int32_t wish) {
        return real_edge(wish, scale_) == at ? wish : logical_edge(at, scale_);
    };
    RECT result{edge(real.left - origin.left, asked.left), edge(real.top - origin.top, asked.top),
                0, 0};
    result.right = result.left + logical_length(real.width(), asked.width(), scale_);
    result.bottom = result.top + logical_length(real.height(), asked.height(), scale_);
    return result;
}

// A surface of a logical size begins at its own corner, so sizes map by themselves.
RECT X11Display::real_rect(const RECT& logical) const {
    constexpr std::int32_t far = 32000;
    POINT corner = real_point({logical.left, logical.top});
    RECT real;
    real.left = std::clamp(corner.x, -far, far);
    real.top = std::clamp(corner.y, -far, far);
    real.right = real.left + std::clamp(real_edge(logical.width(), scale_), 1, far);
    real.bottom = real.top + std::clamp(real_edge(logical.height(), scale_), 1, far);
    return real;
}

// ---- Pictures -------------------------------------------------------------------------------

Surface X11Display::surface(TopLevel id, std::int32_t width, std::int32_t height) {
    Window* window = find(id);
    if (window) return window->pixels.fit(width, height, scale_);
    Surface none;
    none.scale = scale_;
    return none;
}

void X11Display::present(TopLevel id, std::span<const RECT> rects, const CaretOverlay& caret) {
    Window* window = find(id);
    if (!window || !window->shown) return;
    RECT caret_real;
    if (caret.visible) {
        caret_real = {real_edge(caret.rect.left, scale_), real_edge(caret.rect.top, scale_),
                      real_edge(caret.rect.right, scale_), real_edge(caret.rect.bottom, scale_)};
    }
    const Surface& shown = window->pixels.surface();
    for (const RECT& rect : rects)
        staging_.put(connection_, window->handle, shown, rect, caret_real);
}

void X11Display::set_input_place(TopLevel id, const RECT& caret) {
    Window* window = find(id);
    if (!window) return;
    if (caret.empty()) return input_method_.leave(window->handle);
    input_method_.place(connection_, window->handle,
                        {real_edge(caret.left, scale_), real_edge(caret.bottom, scale_)});
}

void X11Display::flush() {
    xcb_flush(connection_.xcb);
}

// ---- Pointer --------------------------------------------------------------------------------

xcb_cursor_t X11Display::cursor(CursorShape shape) {
    auto index = static_cast<std::size_t>(shape);
    xcb_cursor_t& made = cursors_[index];
    if (made != XCB_NONE) return made;
    if (shape == CursorShape::none) {
        xcb_pixmap_t empty = xcb_generate_id(connection_.xcb);
        made = xcb_generate_id(connection_.xcb);
        xcb_create_pixmap(connection_.xcb, 1, empty, connection_.root(), 1, 1);
        xcb_gcontext_t context = xcb_generate_id(connection_.xcb);
        const std::uint32_t colour = 0;
        xcb_create_gc(connection_.xcb, context, empty, XCB_GC_FOREGROUND, &colour);
        const xcb_rectangle_t all{0, 0, 1, 1};
        xcb_poly_fill_rectangle(connection_.xcb, empty, context, 1, &all);
        xcb_create_cursor(connection_.xcb, made, empty, empty, 0, 0, 0, 0, 0, 0, 0, 0);
        xcb_free_gc(connection_.xcb, context);
        xcb_free_pixmap(connection_.xcb, empty);
        return made;
    }
    xcb_cursor_context_t* context = nullptr;
    if (xcb_cursor_context_new(connection_.xcb, connection_.screen, &context) < 0) return XCB_NONE;
    for (const char* name : cursor_names[index]) {
        if (*name && made == XCB_NONE) made = xcb_cursor_load_cursor(context, name);
    }
    xcb_cursor_context_free(context);
    return made;
}

void X11Display::set_cursor(TopLevel id, CursorShape shape) {
    Window* window = find(id);
    if (!window || window->cursor == shape) return;
    window->cursor = shape;
    const std::uint32_t value = cursor(shape);
    xcb_change_window_attributes(connection_.xcb, window->handle, XCB_CW_CURSOR, &value);
    xcb_flush(connection_.xcb);
}

POINT X11Display::pointer() const {
    if (pointer_injected_) return injected_pointer_;
    Reply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        connection_.xcb, xcb_query_pointer(connection_.xcb, connection_.root()), nullptr));
    if (!reply) return {};
    return logical_point({reply->root_x, reply->root_y});
}

void X11Display::warp_pointer(POINT screen) {
    pointer_injected_ = false;
    POINT real = real_point(screen);
    xcb_warp_pointer(connection_.xcb, XCB_NONE, connection_.root(), 0, 0, 0, 0,
                     static_cast<std::int16_t>(real.x), static_cast<std::int16_t>(real.y));
    xcb_flush(connection_.xcb);
}

void X11Display::grab_pointer(TopLevel id) {
    constexpr std::uint16_t events = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                     XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
                                     XCB_EVENT_MASK_LEAVE_WINDOW;
    grab_ = id;
    grab_due_ = false;
    Window* window = find(id);
    if (!window) {
        xcb_ungrab_pointer(connection_.xcb, XCB_CURRENT_TIME);
        xcb_flush(connection_.xcb);
        return;
    }
    Reply<xcb_grab_pointer_reply_t> reply(xcb_grab_pointer_reply(
        connection_.xcb,
        xcb_grab_pointer(connection_.xcb, 0, window->handle, events, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
        nullptr));
    grab_due_ = !reply || reply->status != XCB_GRAB_STATUS_SUCCESS;
}

void X11Display::beep() {
    xcb_bell(connection_.xcb, 0);
    xcb_flush(connection_.xcb);
}

// ---- Selections -----------------------------------------------------------------------------

// Events of all kinds are taken in while an answer is waited for; nobody is called.
void X11Display::wait_for_answer(std::int32_t patience) {
    std::size_t seen = selections_.progress();
    for (std::int32_t waited = 0; selections_.waiting() && waited < patience;) {
        drain();
        if (xcb_connection_has_error(connection_.xcb)) return;
        if (selections_.progress() != seen) {
            seen = selections_.progress();
            waited = 0;
            continue;
        }
        constexpr std::int32_t step = 20;
        pollfd socket{xcb_get_file_descriptor(connection_.xcb), POLLIN, 0};
        if (poll(&socket, 1, step) == 0) waited += step;
    }
}

Property X11Display::fetch(xcb_atom_t selection, xcb_atom_t target, std::int32_t patience,
                           xcb_timestamp_t time) {
    selections_.ask(connection_, selection, target, time);
    wait_for_answer(patience);
    bool complete = !selections_.waiting();
    Property answer = selections_.answer();
    return complete ? std::move(answer) : Property{};
}

void X11Display::offer_text(bool primary, std::string_view utf8) {
    selections_.offer_text(connection_, primary, utf8);
    xcb_flush(connection_.xcb);
}

void X11Display::offer_image(std::string_view png) {
    selections_.offer_image(connection_, png);
    xcb_flush(connection_.xcb);
}

bool X11Display::request_text(bool primary, std::string& utf8) {
    constexpr std::int32_t patience = 1000;  // milliseconds in which nothing comes
    if (selections_.owned(primary)) {
        if (selections_.has_image(primary)) return false;
        utf8 = selections_.text(primary);
        return true;
    }
    xcb_atom_t selection = primary ? xcb_atom_t{XCB_ATOM_PRIMARY} : connection_[Atom::clipboard];
    for (xcb_atom_t target : {connection_[Atom::utf8_string], connection_[Atom::text_plain_utf8],
                              xcb_atom_t{XCB_ATOM_STRING}}) {
        Property answer = fetch(selection, target, patience);
        if (answer.type == XCB_NONE || answer.format != 8) continue;
        utf8 = lines_from_outside(answer.bytes, answer.type == XCB_ATOM_STRING);
        return true;
    }
    return false;
}

bool X11Display::has_text(bool primary) {
    constexpr std::int32_t patience = 300;
    if (selections_.owned(primary)) return !selections_.has_image(primary);
    auto& known = selections_.known[primary];
    drain();  // another owner may have been announced
    if (known.valid) return known.text;
    xcb_atom_t selection = primary ? xcb_atom_t{XCB_ATOM_PRIMARY} : connection_[Atom::clipboard];
    known = {selections_.tells_owners(), false};
    Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection_.xcb, xcb_get_selection_owner(connection_.xcb, selection), nullptr));
    if (!owner || owner->owner == XCB_NONE) return false;
    std::vector<std::uint32_t> forms =
        fetch(selection, connection_[Atom::targets], patience).words();
    bool text = std::any_of(forms.begin(), forms.end(), [&](xcb_atom_t form) {
        return form == connection_[Atom::utf8_string] ||
               form == connection_[Atom::text_plain_utf8] || form == XCB_ATOM_STRING;
    });
    return known.text = text;
}

void X11Display::leave() {
    constexpr std::int32_t patience = 500;
    if (gone_ || std::exchange(left_, true) || xcb_connection_has_error(connection_.xcb)) return;
    if (selections_.hand_over(connection_)) wait_for_answer(patience);
    xcb_flush(connection_.xcb);
}

}  // namespace tarn::x11

extern "C" __attribute__((visibility("default"))) tarn::platform::Display* tarn_x11_display(
    const tarn::platform::DisplaySetup& setup, std::string& why_not) {
    using namespace tarn::x11;
    Connection connection;
    if (!connect(connection, why_not)) return nullptr;
    the_display = new X11Display(setup, connection);
    std::atexit(leave_at_exit);
    return the_display;
}
