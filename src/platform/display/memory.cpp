#include "platform/display/memory.h"

#include <algorithm>
#include <memory>
#include <poll.h>
#include <time.h>
#include <utility>
#include <vector>

#include "platform/display/event_queue.h"
#include "platform/display/pixel_store.h"

namespace tarn::platform {
namespace {

// What the pretend manager puts around a framed window, logical.
constexpr RECT frame_extents{1, 28, 1, 1};

DWORD now() {
    timespec at{};
    clock_gettime(CLOCK_MONOTONIC, &at);
    return static_cast<DWORD>(at.tv_sec * 1000 + at.tv_nsec / 1000000);
}

RECT moved_to(const RECT& rect, std::int32_t x, std::int32_t y) {
    return {x, y, x + rect.width(), y + rect.height()};
}

struct Window {
    TopLevel id = 0;
    TopLevelOptions options;
    RECT client;          // where it is now
    RECT restored;        // where it goes back to when it `fills` no more
    bool placed = false;  // its place was chosen
    bool mapped = false;
    TopLevel disabled_by = 0;
    WindowState state = WindowState::normal;
    WindowState shown_state = WindowState::normal;  // what it comes back to from an icon
    PixelStore pixels;
};

class MemoryDisplay final : public Display {
  public:
    MemoryDisplay(double scale, std::vector<RECT> monitors)
        : scale_(scale),
          monitors_(std::move(monitors)),
          pointer_{monitors_[0].right / 2, monitors_[0].bottom / 2} {}

    const char* name() const override { return "memory"; }
    std::span<const RECT> monitors() const override { return monitors_; }
    RECT work_area(POINT near) const override { return monitor(near); }
    double scale() const override { return scale_; }
    bool headless() const override { return true; }
    bool dark() const override { return false; }

    bool open(TopLevel id, const TopLevelOptions& options) override;
    void close(TopLevel id) override;
    void show(TopLevel id, bool visible, bool activate) override;
    void place(TopLevel id, const RECT& client) override;
    void set_state(TopLevel id, WindowState state) override;
    void set_options(TopLevel id, const TopLevelOptions& options) override;
    void set_title(TopLevel, std::string_view) override {}
    void set_icon(TopLevel, std::int32_t, std::int32_t, const std::uint32_t*) override {}
    void set_modal(TopLevel id, TopLevel disabled_by) override;
    void raise(TopLevel id) override;
    void focus(TopLevel id) override { activate(id); }

    Surface surface(TopLevel id, std::int32_t width, std::int32_t height) override;
    void present(TopLevel, std::span<const RECT>, const CaretOverlay&) override {}

    void set_cursor(TopLevel, CursorShape) override {}
    POINT pointer() const override { return pointer_; }
    void warp_pointer(POINT screen) override;
    void grab_pointer(TopLevel id) override { grab_ = id; }
    void beep() override {}

    void offer_text(bool primary, std::string_view utf8) override;
    bool request_text(bool primary, std::string& utf8) override;
    void offer_image(std::string_view) override { selections_[0] = {}; }
    bool has_text(bool primary) override { return selections_[primary].offered; }

    bool next_event(Event& event, std::int32_t timeout) override;
    void watch(std::span<const int> files) override { watched_.assign(files.begin(), files.end()); }
    void set_input_place(TopLevel, const RECT&) override {}
    void flush() override {}
    void inject(const Event& event) override;
    bool injected_waiting() const override { return queue_.injected() > 0; }

  private:
    struct Selection {
        bool offered = false;
        std::string text;
    };

    Window* find(TopLevel id);
    Event about(Event::Kind kind, const Window& window) const;
    void post(Event::Kind kind, const Window& window);
    void push(Event event, bool injected);
    void move(Window& window, const RECT& client);
    void choose_place(Window& window);
    void fill(Window& window, WindowState state);
    void activate(TopLevel id);
    void set_focus(TopLevel id);
    void focus_another(TopLevel owner);

    double scale_;
    std::vector<RECT> monitors_;
    POINT pointer_;
    TopLevel focused_ = 0, grab_ = 0;
    std::vector<std::unique_ptr<Window>> windows_;  // from the lowest to the topmost
    EventQueue queue_;
    std::vector<int> watched_;
    Selection selections_[2];  // clipboard, PRIMARY
};

Window* MemoryDisplay::find(TopLevel id) {
    for (auto& window : windows_) {
        if (window->id == id) return window.get();
    }
    return nullptr;
}

// ---- Events ---------------------------------------------------------------------------------

Event MemoryDisplay::about(Event::Kind kind, const Window& window) const {
    Event event;
    event.kind = kind;
    event.window = window.id;
    event.rect = window.client;
    event.state = window.state;
    event.screen = pointer_;
    event.scale = scale_;
    if (kind == Event::Kind::expose)
        event.rect = {0, 0, window.client.width(), window.client.height()};
    return event;
}

void MemoryDisplay::post(Event::Kind kind, const Window& window) {
    push(about(kind, window), false);
}

void MemoryDisplay::push(Event event, bool injected) {
    if (event.time == 0) event.time = now();
    queue_.push(std::move(event), injected);
}

bool MemoryDisplay::next_event(Event& event, std::int32_t timeout) {
    if (queue_.take(event)) return true;
    // Nobody but the program itself makes events here, so none comes while it sleeps.
    std::vector<pollfd> files;
    for (int file : watched_) files.push_back({file, POLLIN, 0});
    if (timeout != 0) poll(files.data(), files.size(), timeout);
    return false;
}

void MemoryDisplay::inject(const Event& event) {
    Window* window = find(event.window);
    switch (event.kind) {
        case Event::Kind::button_down:
            pointer_ = event.screen;
            activate(event.window);
            break;
        case Event::Kind::button_up:
        case Event::Kind::pointer_move:
        case Event::Kind::wheel:
        case Event::Kind::drop_files:
            pointer_ = event.screen;
            break;
        case Event::Kind::configure:
            if (window) window->client = event.rect;
            break;
        case Event::Kind::state:
            set_state(event.window, event.state);
            return;
        default:
            break;
    }
    push(event, true);
}

// ---- The manager ----------------------------------------------------------------------------

bool MemoryDisplay::open(TopLevel id, const TopLevelOptions& options) {
    if (find(id)) return false;
    auto window = std::make_unique<Window>();
    window->id = id;
    window->options = options;
    window->client = options.client;
    window->placed = options.position_given;
    windows_.push_back(std::move(window));
    return true;
}

void MemoryDisplay::close(TopLevel id) {
    auto gone = std::find_if(windows_.begin(), windows_.end(),
                             [id](const auto& window) { return window->id == id; });
    if (gone == windows_.end()) return;
    TopLevel owner = (*gone)->options.owner;
    windows_.erase(gone);
    queue_.drop(id);
    if (grab_ == id) grab_ = 0;
    for (auto& window : windows_) {
        if (window->disabled_by == id) window->disabled_by = 0;
    }
    if (focused_ == id) {
        focused_ = 0;
        focus_another(owner);
    }
}

// Inside its monitor with all of its frame, by its wish or else centred over its owner.
void MemoryDisplay::choose_place(Window& window) {
    RECT client = window.client;
    if (!window.placed) {
        RECT around = monitors_[0];
        Window* owner = find(window.options.owner);
        if (owner && owner->mapped) around = owner->client;
        client = moved_to(client, (around.left + around.right - client.width()) / 2,
                          (around.top + around.bottom - client.height()) / 2);
    }
    RECT frame = window.options.framed ? frame_extents : RECT{};
    RECT area = monitor(middle_of(client));
    window.client = moved_inside(client, {area.left + frame.left, area.top + frame.top,
                                          area.right - frame.right, area.bottom - frame.bottom});
    window.placed = true;
}

void MemoryDisplay::show(TopLevel id, bool visible, bool activate_it) {
    Window* window = find(id);
    if (!window) return;
    if (visible == window->mapped) {
        if (visible && activate_it) activate(id);
        return;
    }
    window->mapped = visible;
    if (!visible) {
        if (focused_ == id) {
            TopLevel owner = window->options.owner;
            set_focus(0);
            focus_another(owner);
        }
        return;
    }
    if (window->options.role != Role::popup && window->shown_state == WindowState::normal)
        choose_place(*window);
    post(Event::Kind::configure, *window);
    if (window->state != WindowState::minimized) post(Event::Kind::expose, *window);
    raise(id);
    if (activate_it) activate(id);
}

void MemoryDisplay::place(TopLevel id, const RECT& client) {
    Window* window = find(id);
    if (!window) return;
    RECT granted = client;
    auto bounded = [](std::int32_t wish, std::int32_t least, std::int32_t most) {
        if (most > 0) wish = std::min(wish, most);
        return std::max({wish, least, 1});
    };
    const TopLevelOptions& options = window->options;
    granted.right = granted.left + bounded(client.width(), options.minimum.cx, options.maximum.cx);
    granted.bottom = granted.top + bounded(client.height(), options.minimum.cy, options.maximum.cy);
    window->placed = true;
    if (window->shown_state != WindowState::normal) {
        // It keeps filling the screen; the wish is for later.
        window->restored = granted;
        post(Event::Kind::configure, *window);
    } else {
        move(*window, granted);
    }
}

void MemoryDisplay::move(Window& window, const RECT& client) {
    bool resized =
        client.width() != window.client.width() || client.height() != window.client.height();
    window.client = client;
    post(Event::Kind::configure, window);
    if (resized && window.mapped) post(Event::Kind::expose, window);
}

void MemoryDisplay::set_state(TopLevel id, WindowState state) {
    Window* window = find(id);
    if (!window || window->state == state) return;
    WindowState before = window->state;
    window->state = state;
    post(Event::Kind::state, *window);
    if (state == WindowState::minimized) {
        if (focused_ == id) {
            set_focus(0);
            focus_another(window->options.owner);
        }
        return;
    }
    if (state != window->shown_state) fill(*window, state);
    if (before == WindowState::minimized && window->mapped) {
        post(Event::Kind::expose, *window);
        activate(id);
    }
}

// Takes a window to another state that it can be seen in.
void MemoryDisplay::fill(Window& window, WindowState state) {
    if (window.shown_state == WindowState::normal) {
        if (window.mapped && !window.placed) choose_place(window);
        window.restored = window.client;
    }
    window.shown_state = state;
    if (state == WindowState::normal) {
        move(window, window.restored);
    } else if (state == WindowState::full_screen) {
        move(window, monitor(middle_of(window.client)));
    } else {
        RECT frame = window.options.framed ? frame_extents : RECT{};
        RECT area = monitor(middle_of(window.client));
        move(window, {area.left + frame.left, area.top + frame.top, area.right - frame.right,
                      area.bottom - frame.bottom});
    }
}

void MemoryDisplay::set_options(TopLevel id, const TopLevelOptions& options) {
    if (Window* window = find(id)) window->options = options;
}

void MemoryDisplay::set_modal(TopLevel id, TopLevel disabled_by) {
    Window* window = find(id);
    if (!window) return;
    window->disabled_by = disabled_by;
    if (disabled_by != 0 && focused_ == id) activate(disabled_by);
}

void MemoryDisplay::raise(TopLevel id) {
    for (std::size_t i = 0; i < windows_.size(); ++i) {
        if (windows_[i]->id != id) continue;
        auto at = windows_.begin() + static_cast<std::ptrdiff_t>(i);
        std::rotate(at, at + 1, windows_.end());
        return;
    }
}

// Gives a window the focus, or the modal window in front of it.
void MemoryDisplay::activate(TopLevel id) {
    Window* window = find(id);
    for (std::size_t steps = 0; window && window->disabled_by && steps < windows_.size(); ++steps) {
        Window* modal = find(window->disabled_by);
        if (!modal || !modal->mapped) break;
        window = modal;
    }
    if (!window || !window->mapped || !window->options.accepts_focus ||
        window->options.role == Role::popup)
        return;
    id = window->id;
    if (window->state == WindowState::minimized) {
        window->state = window->shown_state;
        post(Event::Kind::state, *window);
        post(Event::Kind::expose, *window);
    }
    set_focus(id);
    raise(id);
}

void MemoryDisplay::set_focus(TopLevel id) {
    if (focused_ == id) return;
    if (Window* old = find(focused_)) post(Event::Kind::focus_out, *old);
    focused_ = id;
    if (Window* fresh = find(id)) post(Event::Kind::focus_in, *fresh);
}

// The focused window went away: its owner comes next, else the topmost one that can.
void MemoryDisplay::focus_another(TopLevel owner) {
    auto fits = [](const Window& window) {
        return window.mapped && window.state != WindowState::minimized &&
               window.options.accepts_focus && window.options.role != Role::popup;
    };
    if (Window* window = find(owner); window && fits(*window)) {
        activate(owner);
        return;
    }
    for (std::size_t i = windows_.size(); i-- > 0;) {
        if (!fits(*windows_[i])) continue;
        activate(windows_[i]->id);
        return;
    }
}

// ---- Pictures, pointer, selections ----------------------------------------------------------

Surface MemoryDisplay::surface(TopLevel id, std::int32_t width, std::int32_t height) {
    if (Window* window = find(id)) return window->pixels.fit(width, height, scale_);
    Surface none;
    none.scale = scale_;
    return none;
}

void MemoryDisplay::warp_pointer(POINT screen) {
    RECT area = monitor(screen);
    pointer_ = {std::clamp(screen.x, area.left, area.right - 1),
                std::clamp(screen.y, area.top, area.bottom - 1)};
    Window* under = find(grab_);
    for (std::size_t i = windows_.size(); !under && i-- > 0;) {
        Window& window = *windows_[i];
        if (window.mapped && window.state != WindowState::minimized &&
            window.client.contains(pointer_))
            under = &window;
    }
    if (!under) return;
    Event event = about(Event::Kind::pointer_move, *under);
    event.point = {pointer_.x - under->client.left, pointer_.y - under->client.top};
    push(std::move(event), false);
}

void MemoryDisplay::offer_text(bool primary, std::string_view utf8) {
    selections_[primary] = {true, std::string(utf8)};
}

bool MemoryDisplay::request_text(bool primary, std::string& utf8) {
    if (!selections_[primary].offered) return false;
    utf8 = selections_[primary].text;
    return true;
}

}  // namespace

Display* make_memory_display(double scale, std::vector<RECT> monitors) {
    return new MemoryDisplay(scale, std::move(monitors));
}

}  // namespace tarn::platform
