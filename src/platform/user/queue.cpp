// The queue: posted messages, input, painting, timers, and the waits.
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <time.h>
#include <unistd.h>

#include "platform/user/state.h"

namespace tarn::platform {

void (*unanswered_wait)(const char* what) = nullptr;
std::int32_t (*script_step)(bool waiting) = nullptr;

namespace {

constexpr std::int64_t poll_us = 2000;      // a program that polls looks at the display so often
constexpr std::size_t most_posted = 10000;  // as on the platform: more are refused
constexpr UINT shortest_timer = 10;
constexpr std::int64_t longest_silence_s = 60;
constexpr int status_nobody = 70;

}  // namespace

std::int64_t clock_us() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<std::int64_t>(t.tv_sec) * 1000000 + t.tv_nsec / 1000;
}

DWORD GetTickCount() {
    return static_cast<DWORD>(clock_us() / 1000);
}

void frame_done() {
    Queue& q = state().queue;
    q.last_frame = clock_us();
    const std::int64_t cost = q.last_frame - q.frame_start;
    q.next_frame = q.last_frame + std::min(9 * cost, frame_us);
}

// ---- Timers ------------------------------------------------------------------------------------
namespace {

void arm(Timer timer) {
    auto& timers = state().queue.timers;
    auto at = timers.begin();
    while (at != timers.end() && at->due <= timer.due) ++at;
    timers.insert(at, timer);
}

std::int64_t periods_from(std::int64_t now, const Timer& timer) {
    return now + static_cast<std::int64_t>(timer.period) * 1000;
}

// The first timer that is due and belongs to `hwnd` (0: any); -1: none.
std::ptrdiff_t due_timer(HWND hwnd, std::int64_t now) {
    const auto& timers = state().queue.timers;
    for (std::size_t i = 0; i < timers.size() && timers[i].due <= now; ++i)
        if (hwnd == HWND{} || timers[i].hwnd == hwnd || timers[i].internal)
            return static_cast<std::ptrdiff_t>(i);
    return -1;
}

// Takes it off and arms it anew: times that were missed don't pile up.
Timer fire(std::ptrdiff_t which, std::int64_t now) {
    auto& timers = state().queue.timers;
    Timer timer = timers[static_cast<std::size_t>(which)];
    timers.erase(timers.begin() + which);
    Timer next = timer;
    next.due += static_cast<std::int64_t>(timer.period) * 1000;
    if (next.due <= now) next.due = periods_from(now, timer);
    arm(next);
    return timer;
}

}  // namespace

void start_timer(HWND hwnd, std::uintptr_t id, UINT period, TIMERPROC procedure, bool internal) {
    stop_timer(hwnd, id, internal);
    Timer timer{hwnd, id, std::clamp(period, shortest_timer, 0x7FFFFFFFu), 0, procedure, internal};
    timer.due = periods_from(clock_us(), timer);
    arm(timer);
    if (Window* const window = find(hwnd)) window->has_timers = true;
}

void stop_timer(HWND hwnd, std::uintptr_t id, bool internal) {
    std::erase_if(state().queue.timers, [&](const Timer& t) {
        return t.hwnd == hwnd && t.id == id && t.internal == internal;
    });
}

void stop_timers_of(HWND hwnd) {
    std::erase_if(state().queue.timers, [&](const Timer& t) { return t.hwnd == hwnd; });
}

std::uintptr_t SetTimer(HWND hwnd, std::uintptr_t id, UINT milliseconds, TIMERPROC procedure) {
    if (hwnd != HWND{} && find(hwnd) == nullptr) return 0;
    if (hwnd == HWND{}) id = state().queue.next_timer_id++;
    start_timer(hwnd, id, milliseconds, procedure, false);
    return id != 0 ? id : 1;
}

bool KillTimer(HWND hwnd, std::uintptr_t id) {
    const std::size_t before = state().queue.timers.size();
    stop_timer(hwnd, id, false);
    return state().queue.timers.size() != before;
}

// ---- Sending and posting -----------------------------------------------------------------------
LRESULT call(Window& window, UINT message, WPARAM wparam, LPARAM lparam) {
    Pinned w(&window);
    return w->procedure(w->handle, message, wparam, lparam);
}

LRESULT call(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    Window* const window = find(hwnd);
    return window != nullptr ? call(*window, message, wparam, lparam) : 0;
}

LRESULT SendMessageA(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return send_text_message(hwnd, message, wparam, lparam, Encoding::page);
}

LRESULT SendMessageW(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return send_text_message(hwnd, message, wparam, lparam, Encoding::wide);
}

LRESULT send_message(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    return send_text_message(hwnd, message, wparam, lparam, Encoding::utf8);
}

LRESULT CallWindowProcA(WNDPROC procedure, HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    Pinned w(hwnd);
    return procedure != nullptr && w ? procedure(hwnd, message, wparam, lparam) : 0;
}

bool PostMessageA(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    Queue& q = state().queue;
    if ((hwnd != HWND{} && find(hwnd) == nullptr) || q.posted.size() >= most_posted) return false;
    q.posted.push_back({hwnd, message, wparam, lparam, GetTickCount(), state().input.pointer});
    return true;
}

void PostQuitMessage(std::int32_t code) {
    state().queue.quit = true;
    state().queue.quit_code = code;
}

void queue_input(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam, std::string_view text) {
    state().queue.input.push_back(
        {{hwnd, message, wparam, lparam, GetTickCount(), state().input.pointer},
         std::string(text)});
}

// ---- Events of the display ---------------------------------------------------------------------
namespace {

void enqueue(Event&& event) {
    Queue& q = state().queue;
    q.silent_since = 0;
    if (!q.events.empty() && event.kind == Event::Kind::pointer_move) {
        Event& last = q.events.back();
        if (last.kind == event.kind && last.window == event.window) {
            last = std::move(event);
            return;
        }
    }
    if (event.kind == Event::Kind::configure)
        std::erase_if(q.events, [&](const Event& e) {
            return e.kind == event.kind && e.window == event.window;
        });
    q.events.push_back(std::move(event));
}

// A wait on the display ends when one of them can be read.
void watched_files_changed() {
    std::vector<int> files;
    for (const Watch& watch : state().queue.watches)
        if (!watch.told) files.push_back(watch.file);
    display().watch(files);
}

// A file is told of once, until somebody has looked at it.
void look_at_watched_files() {
    for (Watch& watch : state().queue.watches) {
        pollfd file{watch.file, POLLIN, 0};
        if (watch.told || poll(&file, 1, 0) <= 0) continue;
        watch.told = true;
        PostMessageA(watch.hwnd, watch.message, 0, 0);
        watched_files_changed();
    }
}

void pull_events(bool at_once) {
    if (!display_open()) return;
    Queue& q = state().queue;
    const std::int64_t now = clock_us();
    if (!at_once && now - q.last_poll < poll_us && !injected_events_waiting()) return;
    q.last_poll = now;
    if (!q.watches.empty()) look_at_watched_files();
    Event event;
    // A flood of them must not keep a program from its own work.
    for (int i = 0; i < 256 && display().next_event(event, 0); ++i) enqueue(std::move(event));
}

bool take_next_event() {
    Queue& q = state().queue;
    if (q.events.empty()) pull_events(false);
    if (q.events.empty()) return false;
    const Event event = std::move(q.events.front());
    q.events.pop_front();
    take_event(event);
    return true;
}

// ---- Taking messages ---------------------------------------------------------------------------
struct Filter {
    HWND hwnd;
    UINT first, last;

    bool all() const { return first == 0 && last == 0; }
    bool takes(UINT message) const { return all() || (message >= first && message <= last); }
    // Keys and the pointer. Messages of the frame are below 0xFF, yet they are input too: a program
    // that asks for nothing above that wants to be left alone.
    bool takes_input() const { return all() || last >= WM_KEYDOWN; }
    bool fits(const MSG& m) const {
        if (!takes(m.message)) return false;
        return hwnd == HWND{} || m.hwnd == hwnd || IsChild(hwnd, m.hwnd);
    }
};

bool take_posted(MSG& message, const Filter& filter, bool remove) {
    auto& posted = state().queue.posted;
    for (std::size_t i = 0; i < posted.size(); ++i) {
        const MSG& m = posted[i];
        if (m.hwnd != HWND{} && find(m.hwnd) == nullptr) {
            posted.erase(posted.begin() + static_cast<std::ptrdiff_t>(i--));
            continue;
        }
        if (!filter.fits(m)) continue;
        message = m;
        if (remove) posted.erase(posted.begin() + static_cast<std::ptrdiff_t>(i));
        return true;
    }
    return false;
}

bool is_key(UINT message) {
    return message >= WM_KEYDOWN && message <= WM_UNICHAR;
}

bool take_input(MSG& message, const Filter& filter, bool remove) {
    Input& in = state().input;
    auto& input = state().queue.input;
    for (std::size_t i = 0; i < input.size(); ++i) {
        MSG& m = input[i].msg;
        // A key belongs to whoever has the focus when it is taken.
        if (is_key(m.message)) m.hwnd = in.focus != HWND{} ? in.focus : in.active;
        if (find(m.hwnd) == nullptr) {
            input.erase(input.begin() + static_cast<std::ptrdiff_t>(i--));
            continue;
        }
        if (!filter.fits(m)) continue;
        message = m;
        if (!remove) return true;
        if (is_key(m.message)) {
            in.recent_keys[in.next_recent++ % std::size(in.recent_keys)] = std::move(input[i]);
        }
        input.erase(input.begin() + static_cast<std::ptrdiff_t>(i));
        return true;
    }
    return false;
}

// Painting comes when nothing else waits: at once when the program waits too. For one that polls
// it comes at once as well, but takes no more than a tenth of its time; and a window that marks
// itself while it paints comes with the next frame.
bool frame_open(std::int64_t now) {
    Queue& q = state().queue;
    if (q.in_frame) {
        if (q.frame_left > 0) return true;
        if (q.fresh_marks) {
            q.fresh_marks = false;
            q.frame_left = state().dirty_windows;
            return true;
        }
        q.in_frame = false;
        frame_done();
        return false;
    }
    const bool due = q.fresh_marks ? q.idle || now >= q.next_frame : now - q.last_frame >= frame_us;
    if (!due) return false;
    q.in_frame = true;
    q.frame_start = now;
    q.fresh_marks = false;
    q.frame_left = state().dirty_windows;
    return true;
}

bool take_paint(MSG& message, const Filter& filter, std::int64_t now) {
    while (anything_dirty() && frame_open(now)) {
        Window* const window = next_to_paint();
        if (window == nullptr) break;
        if (window->update.empty()) {  // only its frame
            paint_frame_if_marked(*window);
            continue;
        }
        MSG m{window->handle, WM_PAINT, 0, 0, GetTickCount(), state().input.pointer};
        if (!filter.fits(m)) return false;
        --state().queue.frame_left;
        message = m;
        return true;
    }
    return false;
}

bool take_timer(MSG& message, const Filter& filter, bool remove, std::int64_t now) {
    for (;;) {
        const std::ptrdiff_t which = due_timer(filter.hwnd, now);
        if (which < 0) return false;
        auto& timers = state().queue.timers;
        const Timer& next = timers[static_cast<std::size_t>(which)];
        if (!next.internal && !filter.takes(WM_TIMER)) return false;
        const Timer timer = remove || next.internal ? fire(which, now) : next;
        if (timer.internal) {
            timer.procedure(timer.hwnd, WM_TIMER, timer.id, GetTickCount());
            continue;
        }
        message = {timer.hwnd,     WM_TIMER,
                   timer.id,       reinterpret_cast<LPARAM>(timer.procedure),
                   GetTickCount(), state().input.pointer};
        return true;
    }
}

void tell_settled() {
    if (!state().queue.unsettled) return;
    state().queue.unsettled = false;
    if (window_settled == nullptr) return;
    for (HWND hwnd = first_window(); hwnd != HWND{}; hwnd = next_top_level(hwnd)) {
        Window* const window = find(hwnd);
        if (window->top->settled || !window->top->shown) continue;
        window->top->settled = true;
        window_settled(hwnd);
        if (find(hwnd) == nullptr) {  // the rest at the next time
            state().queue.unsettled = true;
            return;
        }
    }
}

// The queue ran empty: what was drawn is shown. True: there is something to do after all.
bool at_rest(bool waiting, std::int32_t& script_wait) {
    Queue& q = state().queue;
    present_all();
    tell_settled();
    script_wait = -1;
    if (script_step != nullptr) script_wait = script_step(waiting);
    if (script_wait == 0) pull_events(true);
    return script_wait == 0 || !q.posted.empty() || !q.events.empty() ||
           (anything_dirty() && q.fresh_marks);
}

}  // namespace

// Each showing takes an interval out of the time that has been saved up since the last ones.
bool may_show_now() {
    constexpr std::int64_t interval_us = 2000, burst = 100;
    Queue& q = state().queue;
    const std::int64_t now = clock_us();
    q.shown_until = std::max(q.shown_until, now - burst * interval_us);
    if (q.shown_until + interval_us > now) return false;
    q.shown_until += interval_us;
    return true;
}

void present_now() {
    present_all();
}

// A window that marks itself while it paints comes with the next frame.
void paint_now() {
    if (state().queue.paint_depth > 0 || !anything_dirty() || !may_show_now()) return;
    for (HWND hwnd = first_window(); hwnd != HWND{} && anything_dirty();
         hwnd = next_top_level(hwnd)) {
        UpdateWindow(hwnd);
        if (find(hwnd) == nullptr) break;
    }
    present_all();
}

// No message is dispatched meanwhile: the events wait for the pump.
void await_first_sight(HWND hwnd) {
    constexpr std::int64_t patience_us = 500'000;
    const auto seen = [hwnd](const Event& e) {
        return e.kind == Event::Kind::expose && e.window == static_cast<TopLevel>(hwnd);
    };
    Window* const window = find(hwnd);
    if (window == nullptr || !window->top || !window->top->shown ||
        window->top->state == WindowState::minimized)
        return;
    const auto& events = state().queue.events;
    const std::int64_t end = clock_us() + patience_us;
    while (std::none_of(events.begin(), events.end(), seen)) {
        const std::int64_t left = end - clock_us();
        if (left <= 0) return;
        Event event;
        if (display().next_event(event, static_cast<std::int32_t>(left / 1000) + 1))
            enqueue(std::move(event));
    }
    const RECT area = surface_rect(*window);
    add_damage(*window, {0, 0, area.width(), area.height()});
    present_all();
}

bool PeekMessageA(MSG& message, HWND hwnd, UINT first, UINT last, UINT remove) {
    Queue& q = state().queue;
    const Filter filter{hwnd, first, last};
    const bool take = (remove & PM_REMOVE) != 0;
    for (;;) {
        if (!q.posted.empty() && take_posted(message, filter, take)) return true;
        if (q.quit && q.posted.empty()) {
            message = {{}, WM_QUIT, static_cast<WPARAM>(q.quit_code), 0, GetTickCount(), {}};
            if (take) q.quit = false;
            return true;
        }
        if (!q.input.empty() && filter.takes_input() && take_input(message, filter, take))
            return true;
        if (!filter.takes_input() || !take_next_event()) break;
    }
    const std::int64_t now = clock_us();
    if (anything_dirty() && filter.takes(WM_PAINT) && take_paint(message, filter, now)) return true;
    if (!q.timers.empty() && take_timer(message, filter, take, now)) return true;
    if (anything_dirty() || !filter.all() || hwnd != HWND{}) {
        if (anything_to_present() && now >= q.next_frame) present_all();
        return false;
    }
    if (anything_to_present() && !q.idle && now < q.next_frame) return false;
    const bool waited = q.idle;
    q.idle = false;
    // A wait has asked the script already.
    std::int32_t script_wait = 0;
    if (!waited && at_rest(false, script_wait)) return PeekMessageA(message, hwnd, 0, 0, remove);
    if (waited) present_all();
    return false;
}

namespace {

// Nobody is there and nothing can ever come.
[[noreturn]] void give_up_waiting() {
    std::string what = "a message";
    if (const Window* const window = find(state().input.active))
        what = "the window \"" + window->title + "\"";
    if (unanswered_wait != nullptr) unanswered_wait(what.c_str());
    std::fprintf(stderr, "Nobody is there to answer %s\n", what.c_str());
    std::fflush(nullptr);
    _exit(status_nobody);
}

std::int64_t silence_limit_us() {
    std::int64_t seconds = longest_silence_s;
    if (const char* const text = std::getenv("TARN_TIMEOUT")) {
        char* end = nullptr;
        const double given = std::strtod(text, &end);
        if (end != text && given >= 0 && given < static_cast<double>(seconds))
            return static_cast<std::int64_t>(given * 1e6);
    }
    return seconds * 1000000;
}

bool program_timer_armed() {
    for (const Timer& t : state().queue.timers)
        if (!t.internal) return true;
    return false;
}

// How long a wait on a display that nobody watches may still go on, in microseconds.
std::int64_t silence_left(std::int64_t now) {
    Queue& q = state().queue;
    if (!program_timer_armed() && q.watches.empty()) give_up_waiting();
    if (q.silent_since == 0) q.silent_since = now;
    const std::int64_t left = q.silent_since + silence_limit_us() - now;
    if (left <= 0) give_up_waiting();
    return left;
}

void run_internal_timers(std::int64_t now) {
    for (;;) {
        const auto& timers = state().queue.timers;
        if (timers.empty() || timers.front().due > now || !timers.front().internal) return;
        const Timer timer = fire(0, now);
        timer.procedure(timer.hwnd, WM_TIMER, timer.id, GetTickCount());
    }
}

}  // namespace

bool WaitMessage() {
    Queue& q = state().queue;
    for (;;) {
        q.idle = true;
        pull_events(true);
        if (!q.posted.empty() || q.quit || !q.input.empty() || !q.events.empty()) return true;
        std::int64_t now = clock_us();
        std::int64_t limit = -1;  // microseconds
        const auto at_most = [&](std::int64_t us) {
            limit =
                limit < 0 ? std::max<std::int64_t>(us, 0) : std::clamp(us, std::int64_t{0}, limit);
        };
        if (anything_dirty()) {
            if (q.fresh_marks || now - q.last_frame >= frame_us) return true;
            at_most(q.last_frame + frame_us - now);
        }
        run_internal_timers(now);
        std::int32_t script_wait = -1;
        if (at_rest(true, script_wait)) continue;
        now = clock_us();
        if (!q.timers.empty()) {
            if (q.timers.front().due <= now) return true;
            at_most(q.timers.front().due - now);
        }
        if (script_wait > 0) {
            at_most(std::int64_t{script_wait} * 1000);
            q.silent_since = 0;
        } else if (display().headless() && !anything_dirty()) {
            at_most(silence_left(now));
        }
        Event event;
        const std::int64_t ms = limit < 0 ? -1 : (limit + 999) / 1000;
        if (display().next_event(
                event, static_cast<std::int32_t>(std::min<std::int64_t>(ms, 0x7FFFFFFF)))) {
            enqueue(std::move(event));
            return true;
        }
    }
}

bool queue_is_idle() {
    const Queue& q = state().queue;
    pull_events(true);
    return q.posted.empty() && q.input.empty() && q.events.empty() && !anything_dirty() &&
           !q.quit && !(display_open() && injected_events_waiting());
}

bool modal_loop(HWND owner, bool (*take)(MSG&, void*), bool (*done)(void*), void* context) {
    MSG message;
    while (!done(context)) {
        if (owner != HWND{} && find(owner) == nullptr) return false;
        if (!PeekMessageA(message, HWND{}, 0, 0, PM_REMOVE)) {
            WaitMessage();
            continue;
        }
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<std::int32_t>(message.wParam));
            return false;
        }
        if (take != nullptr && take(message, context)) continue;
        TranslateMessage(message);
        DispatchMessageA(message);
    }
    return owner == HWND{} || find(owner) != nullptr;
}

// ---- Files of other programs ------------------------------------------------------------------
void WatchFile(HWND hwnd, int file, UINT message) {
    state().queue.watches.push_back({hwnd, file, message, false});
    watched_files_changed();
}

void WatchAgain(int file) {
    for (Watch& watch : state().queue.watches)
        if (watch.file == file) watch.told = false;
    watched_files_changed();
}

void UnwatchFile(int file) {
    std::erase_if(state().queue.watches, [file](const Watch& w) { return w.file == file; });
    watched_files_changed();
}

LRESULT DispatchMessageA(const MSG& message) {
    if (message.message == WM_TIMER && message.lParam != 0) {
        // Only what SetTimer was given is called, not what a program posts.
        const auto procedure = reinterpret_cast<TIMERPROC>(message.lParam);
        for (const Timer& t : state().queue.timers) {
            if (t.procedure != procedure) continue;
            procedure(message.hwnd, WM_TIMER, message.wParam, GetTickCount());
            break;
        }
        return 0;
    }
    Window* const window = find(message.hwnd);
    if (window == nullptr) return 0;
    if (message.message == WM_PAINT) return send_paint(*window);
    return call(*window, message.message, message.wParam, message.lParam);
}

}  // namespace tarn::platform
