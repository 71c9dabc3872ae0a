#include "platform/x11/input_method.h"

#include <cstdlib>
#include <deque>
#include <dlfcn.h>
#include <string_view>
#include <utility>
#include <vector>
#include <xcb-imdkit/encoding.h>
#include <xcb-imdkit/imclient.h>
#include <xkbcommon/xkbcommon.h>

namespace tarn::x11 {
namespace {

using platform::POINT;

// The routines of the library that are used here.
struct Library {
    decltype(&xcb_compound_text_init) compound_text_init = nullptr;
    decltype(&xcb_compound_text_to_utf8) compound_text_to_utf8 = nullptr;
    decltype(&xcb_xim_create) create = nullptr;
    decltype(&xcb_xim_set_im_callback) set_im_callback = nullptr;
    decltype(&xcb_xim_set_use_utf8_string) set_use_utf8_string = nullptr;
    decltype(&xcb_xim_set_use_compound_text) set_use_compound_text = nullptr;
    decltype(&xcb_xim_get_encoding) get_encoding = nullptr;
    decltype(&xcb_xim_open) open = nullptr;
    decltype(&xcb_xim_filter_event) filter_event = nullptr;
    decltype(&xcb_xim_create_nested_list) create_nested_list = nullptr;
    decltype(&xcb_xim_create_ic) create_ic = nullptr;
    decltype(&xcb_xim_set_ic_values) set_ic_values = nullptr;
    decltype(&xcb_xim_set_ic_focus) set_ic_focus = nullptr;
    decltype(&xcb_xim_unset_ic_focus) unset_ic_focus = nullptr;
    decltype(&xcb_xim_destroy_ic) destroy_ic = nullptr;
    decltype(&xcb_xim_forward_event) forward_event = nullptr;
};

template <class Routine>
bool find(void* module, const char* name, Routine& routine) {
    routine = reinterpret_cast<Routine>(dlsym(module, name));
    return routine != nullptr;
}

bool load(Library& library) {
    void* module = dlopen("libxcb-imdkit.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!module) return false;
    bool whole = find(module, "xcb_compound_text_init", library.compound_text_init);
    whole &= find(module, "xcb_compound_text_to_utf8", library.compound_text_to_utf8);
    whole &= find(module, "xcb_xim_create", library.create);
    whole &= find(module, "xcb_xim_set_im_callback", library.set_im_callback);
    whole &= find(module, "xcb_xim_set_use_utf8_string", library.set_use_utf8_string);
    whole &= find(module, "xcb_xim_set_use_compound_text", library.set_use_compound_text);
    whole &= find(module, "xcb_xim_get_encoding", library.get_encoding);
    whole &= find(module, "xcb_xim_open", library.open);
    whole &= find(module, "xcb_xim_filter_event", library.filter_event);
    whole &= find(module, "xcb_xim_create_nested_list", library.create_nested_list);
    whole &= find(module, "xcb_xim_create_ic", library.create_ic);
    whole &= find(module, "xcb_xim_set_ic_values", library.set_ic_values);
    whole &= find(module, "xcb_xim_set_ic_focus", library.set_ic_focus);
    whole &= find(module, "xcb_xim_unset_ic_focus", library.unset_ic_focus);
    whole &= find(module, "xcb_xim_destroy_ic", library.destroy_ic);
    whole &= find(module, "xcb_xim_forward_event", library.forward_event);
    return whole;
}

// "@im=NAME" of XMODIFIERS; empty when the user wants none.
std::string wanted_method() {
    const char* value = std::getenv("XMODIFIERS");
    std::string_view all = value ? value : "";
    std::size_t at = all.find("@im=");
    if (at == std::string_view::npos) return {};
    all.remove_prefix(at);
    all = all.substr(0, all.find('@', 1));
    if (all == "@im=" || all == "@im=none" || all == "@im=local") return {};
    return std::string(all);
}

// One for each window that has had a text caret.
struct Context {
    xcb_window_t window = 0;
    xcb_xic_t id = 0;
    bool asked = false;        // for an id
    bool wanted = false;       // something takes text
    bool focused = false;      // the window has the focus
    bool told_focus = false;   // as the method knows it
    bool over_spot = true;     // the method draws at the spot, not in a window of its own
    std::uint32_t events = 0;  // that the method wants
    xcb_point_t spot{};

    bool active() const { return wanted && focused; }
};

}  // namespace

struct InputMethod::Session {
    Library library;
    xcb_xim_t* method = nullptr;
    bool open = false;
    std::vector<Context> contexts;
    bool abandoned = false;  // the window that an answer is due for is gone
    std::deque<MethodAnswer> answers;

    Context* of_window(xcb_window_t window) {
        for (Context& context : contexts) {
            if (context.window == window) return &context;
        }
        return nullptr;
    }
    Context* of_id(xcb_xic_t id) {
        for (Context& context : contexts) {
            if (context.id == id && id != 0) return &context;
        }
        return nullptr;
    }

    bool start(const Connection& connection, const std::string& name);
    void make(Context& context);
    void made(xcb_xic_t id);
    void tell_focus(Context& context);
    void tell_spot(const Context& context);
    void lost();
    void commit(xcb_xic_t id, std::uint32_t flag, std::string_view text, xcb_keysym_t keysym);
    void give_back(xcb_xic_t id, const xcb_key_press_event_t& key);
};

// ---- What the method says -------------------------------------------------------------------
namespace {

template <class Session>
const xcb_xim_im_callback& callbacks() {
    static const xcb_xim_im_callback all = [] {
        xcb_xim_im_callback made{};
        made.set_event_mask = [](xcb_xim_t*, xcb_xic_t ic, std::uint32_t events, std::uint32_t,
                                 void* session) {
            if (Context* context = static_cast<Session*>(session)->of_id(ic))
                context->events = events;
        };
        made.forward_event = [](xcb_xim_t*, xcb_xic_t ic, xcb_key_press_event_t* key,
                                void* session) {
            if (key) static_cast<Session*>(session)->give_back(ic, *key);
        };
        made.commit_string = [](xcb_xim_t*, xcb_xic_t ic, std::uint32_t flag, char* text,
                                std::uint32_t length, std::uint32_t* keysyms, std::size_t count,
                                void* session) {
            static_cast<Session*>(session)->commit(
                ic, flag, text ? std::string_view(text, length) : std::string_view(),
                keysyms && count > 0 ? keysyms[0] : 0);
        };
        made.disconnected = [](xcb_xim_t*, void* session) {
            static_cast<Session*>(session)->lost();
        };
        return made;
    }();
    return all;
}

}  // namespace

bool InputMethod::Session::start(const Connection& connection, const std::string& name) {
    if (!load(library)) return false;
    library.compound_text_init();
    method = library.create(connection.xcb, connection.screen_number, name.c_str());
    if (!method) return false;
    library.set_use_utf8_string(method, true);
    library.set_use_compound_text(method, true);
    library.set_im_callback(method, &callbacks<Session>(), this);
    // It may come later, or come back: the library waits for it.
    return library.open(
        method,
        [](xcb_xim_t*, void* user) {
            auto* session = static_cast<Session*>(user);
            session->open = true;
            for (Context& context : session->contexts) session->make(context);
        },
        true, this);
}

void InputMethod::Session::make(Context& context) {
    if (!open || abandoned || context.id != 0 || context.asked) return;
    // Answers come in the order of the questions, one question at a time.
    for (const Context& other : contexts) {
        if (other.asked) return;
    }
    context.asked = true;
    std::uint32_t style = context.over_spot ? XCB_IM_PreeditPosition | XCB_IM_StatusNothing
                                            : XCB_IM_PreeditNothing | XCB_IM_StatusNothing;
    auto answered = [](xcb_xim_t*, xcb_xic_t ic, void* session) {
        static_cast<Session*>(session)->made(ic);
    };
    bool sent = false;
    if (context.over_spot) {
        xcb_xim_nested_list place =
            library.create_nested_list(method, XCB_XIM_XNSpotLocation, &context.spot, nullptr);
        sent = library.create_ic(method, answered, this, XCB_XIM_XNInputStyle, &style,
                                 XCB_XIM_XNClientWindow, &context.window, XCB_XIM_XNFocusWindow,
                                 &context.window, XCB_XIM_XNPreeditAttributes, &place, nullptr);
        std::free(place.data);
    } else {
        sent = library.create_ic(method, answered, this, XCB_XIM_XNInputStyle, &style,
                                 XCB_XIM_XNClientWindow, &context.window, XCB_XIM_XNFocusWindow,
                                 &context.window, nullptr);
    }
    context.asked = sent;
}

void InputMethod::Session::made(xcb_xic_t id) {
    if (std::exchange(abandoned, false) && id != 0)
        library.destroy_ic(method, id, nullptr, nullptr);
    for (Context& context : contexts) {
        if (!context.asked) continue;
        context.asked = false;
        context.id = id;
        if (id != 0) {
            context.events = XCB_EVENT_MASK_KEY_PRESS;
            tell_focus(context);
            tell_spot(context);
        } else if (context.over_spot) {
            context.over_spot = false;  // refused: in the method's own way, then
            make(context);
        }
        break;
    }
    for (Context& context : contexts) {
        if (context.id == 0 && context.over_spot) make(context);
    }
}

void InputMethod::Session::tell_focus(Context& context) {
    if (context.id == 0 || context.told_focus == context.active()) return;
    context.told_focus = context.active();
    if (context.told_focus) {
        library.set_ic_focus(method, context.id);
    } else {
        library.unset_ic_focus(method, context.id);
    }
}

void InputMethod::Session::tell_spot(const Context& context) {
    if (context.id == 0 || !context.over_spot) return;
    xcb_point_t spot = context.spot;
    xcb_xim_nested_list place =
        library.create_nested_list(method, XCB_XIM_XNSpotLocation, &spot, nullptr);
    library.set_ic_values(method, context.id, nullptr, nullptr, XCB_XIM_XNPreeditAttributes, &place,
                          nullptr);
    std::free(place.data);
}

void InputMethod::Session::lost() {
    open = abandoned = false;
    for (Context& context : contexts) {
        context.id = 0;
        context.asked = context.told_focus = false;
        context.over_spot = true;
    }
}

void InputMethod::Session::commit(xcb_xic_t id, std::uint32_t flag, std::string_view text,
                                  xcb_keysym_t keysym) {
    Context* context = of_id(id);
    if (!context) return;
    MethodAnswer answer;
    answer.window = context->window;
    if ((flag & XCB_XIM_LOOKUP_CHARS) != 0) {
        if (library.get_encoding(method) == XCB_XIM_UTF8_STRING) {
            answer.text = text;
        } else {
            std::size_t length = 0;
            Reply<char> utf8(library.compound_text_to_utf8(text.data(), text.size(), &length));
            if (utf8) answer.text.assign(utf8.get(), length);
        }
    } else if ((flag & XCB_XIM_LOOKUP_KEYSYM) != 0) {
        char buffer[8] = {};
        if (xkb_keysym_to_utf8(keysym, buffer, sizeof buffer) > 1) answer.text = buffer;
    }
    if (!answer.text.empty()) answers.push_back(std::move(answer));
}

void InputMethod::Session::give_back(xcb_xic_t id, const xcb_key_press_event_t& key) {
    Context* context = of_id(id);
    int kind = key.response_type & 0x7F;
    if (!context || (kind != XCB_KEY_PRESS && kind != XCB_KEY_RELEASE)) return;
    MethodAnswer answer;
    answer.window = context->window;
    answer.is_key = true;
    answer.key = key;
    answer.key.event = context->window;
    answers.push_back(std::move(answer));
}

// ---- What the display says ------------------------------------------------------------------

InputMethod::InputMethod() = default;
// Lives as long as the process, as does the connection.
InputMethod::~InputMethod() {
    static_cast<void>(session_.release());
}

void InputMethod::place(const Connection& connection, xcb_window_t window, POINT spot) {
    if (!tried_) {
        tried_ = true;
        std::string name = wanted_method();
        if (name.empty()) return;
        session_ = std::make_unique<Session>();
        if (!session_->start(connection, name)) session_.reset();
    }
    if (!session_) return;
    Context* context = session_->of_window(window);
    if (!context) {
        context = &session_->contexts.emplace_back();
        context->window = window;
        context->focused = true;  // a caret is shown where the focus is
    }
    context->wanted = true;
    xcb_point_t at{static_cast<std::int16_t>(spot.x), static_cast<std::int16_t>(spot.y)};
    bool moved = at.x != context->spot.x || at.y != context->spot.y;
    context->spot = at;
    session_->make(*context);
    session_->tell_focus(*context);
    if (moved) session_->tell_spot(*context);
}

void InputMethod::leave(xcb_window_t window) {
    Context* context = session_ ? session_->of_window(window) : nullptr;
    if (!context) return;
    context->wanted = false;
    session_->tell_focus(*context);
}

void InputMethod::focus(xcb_window_t window, bool in) {
    Context* context = session_ ? session_->of_window(window) : nullptr;
    if (!context) return;
    context->focused = in;
    session_->tell_focus(*context);
}

void InputMethod::forget(xcb_window_t window) {
    Context* context = session_ ? session_->of_window(window) : nullptr;
    if (!context) return;
    if (context->id != 0)
        session_->library.destroy_ic(session_->method, context->id, nullptr, nullptr);
    session_->abandoned |= context->asked;
    session_->contexts.erase(session_->contexts.begin() + (context - session_->contexts.data()));
}

bool InputMethod::filter(xcb_generic_event_t& event) {
    return session_ && session_->library.filter_event(session_->method, &event);
}

bool InputMethod::take_key(const xcb_key_press_event_t& key) {
    Context* context = session_ ? session_->of_window(key.event) : nullptr;
    if (!context || context->id == 0 || !context->active()) return false;
    bool press = (key.response_type & 0x7F) == XCB_KEY_PRESS;
    std::uint32_t wanted = press ? XCB_EVENT_MASK_KEY_PRESS : XCB_EVENT_MASK_KEY_RELEASE;
    if ((context->events & wanted) == 0) return false;
    xcb_key_press_event_t sent = key;
    return session_->library.forward_event(session_->method, context->id, &sent);
}

bool InputMethod::next_answer(MethodAnswer& answer) {
    if (!session_ || session_->answers.empty()) return false;
    answer = std::move(session_->answers.front());
    session_->answers.pop_front();
    return true;
}

}  // namespace tarn::x11
