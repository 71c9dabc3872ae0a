// Timers of windows: %dl in the format, and those that a program sets while the window is open.
#include <cstdlib>

#include "winio/callbacks.h"
#include "winio/report.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

namespace {

constexpr std::uintptr_t first_timer = 45;    // the first %dl of a window
constexpr std::uintptr_t other_timers = 100;  // the others count up from here

}  // namespace

std::uintptr_t next_timer_id() {
    std::uintptr_t& last = procedures().last_timer;
    if (last < other_timers) last = other_timers;
    return ++last;
}

void start_timers(fancy_window* window) {
    if (window->timer_callback && window->timer_ms > 0)
        SetTimer(window->hwnd, first_timer, static_cast<UINT>(window->timer_ms), nullptr);
    for (timer_entry* timer = window->timers; timer; timer = timer->next) {
        if (timer->id == 0) timer->id = next_timer_id();
        SetTimer(window->hwnd, timer->id, timer->milliseconds, nullptr);
    }
}

void window_timer(fancy_window* window, std::uintptr_t id) {
    call_back function = nullptr;
    if (id == first_timer) function = window->timer_callback;
    for (const timer_entry* timer = window->timers; timer && !function; timer = timer->next)
        if (timer->id == id) function = timer->callback;
    if (!function) return;
    HWND hwnd = window->hwnd;
    act_on_result(hwnd, call_function(function, "TIMER", hwnd, false, false));
}

void set_timer(HWND hwnd, double seconds, call_back function) {
    if (!(seconds * 1000.0 >= 1.0) || seconds > 2.0E6) {
        quillpan_error("?Invalid delay passed to SET_TIMER@.");
        return;
    }
    fancy_window* window = fancy_window_from_handle(hwnd);
    if (!window || !window->flags.open || !function) {
        quillpan_error("?Invalid hWnd passed to SET_TIMER@.");
        return;
    }
    auto* timer = new_record<timer_entry>();  // goes with the window
    timer->next = window->timers;
    window->timers = timer;
    timer->callback = function;
    timer->id = next_timer_id();
    timer->milliseconds = static_cast<std::uint32_t>(seconds * 1000.0);
    SetTimer(hwnd, timer->id, timer->milliseconds, nullptr);
}

void kill_timer(HWND hwnd, call_back function) {
    fancy_window* window = fancy_window_from_handle(hwnd);
    if (!window || !function) return;
    for (timer_entry** link = &window->timers; *link; link = &(*link)->next) {
        timer_entry* timer = *link;
        if (timer->callback != function) continue;
        KillTimer(hwnd, timer->id);
        *link = timer->next;
        std::free(timer);
        return;
    }
    if (window->timer_callback == function) {
        KillTimer(hwnd, first_timer);
        window->timer_callback = nullptr;
    }
}

void change_timer_interval(HWND hwnd, double seconds) {
    fancy_window* window = fancy_window_from_handle(hwnd);
    if (!window || !(seconds * 1000.0 >= 1.0) || seconds > 2.0E6) return;
    auto milliseconds = static_cast<std::uint32_t>(seconds * 1000.0);
    if (window->timer_callback) {
        window->timer_ms = static_cast<std::int32_t>(milliseconds);
        SetTimer(hwnd, first_timer, milliseconds, nullptr);
    } else if (window->timers) {
        window->timers->milliseconds = milliseconds;
        SetTimer(hwnd, window->timers->id, milliseconds, nullptr);
    }
}

}  // namespace tarn::winio
