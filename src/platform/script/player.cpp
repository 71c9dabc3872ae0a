// Plays the lines of a script one by one, each when the queue is idle.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/dialogs/dialogs.h"
#include "platform/display/display.h"
#include "platform/kernel/console.h"
#include "platform/script/input.h"
#include "platform/script/parser.h"
#include "platform/script/pictures.h"
#include "platform/script/script.h"
#include "platform/script/targets.h"
#include "platform/user/menus.h"
#include "platform/user/user.h"

namespace tarn::platform {

void (*end_after_script)(int status) = nullptr;

namespace {

constexpr std::int32_t look_again = 10;  // milliseconds until a line is tried again
constexpr std::size_t largest_script = std::size_t{16} << 20;

struct Player {
    bool started = false;
    std::string path;
    std::vector<ScriptLine> lines;
    std::size_t next = 0;
    HWND chosen{};        // by `window`; 0: the active one
    bool trying = false;  // the next line was tried before
    DWORD tried_since = 0;
    DWORD patience = 10000;  // milliseconds
    HWND held{};             // the window over which `hold` keeps the button down
    POINT held_at;           // in its client area: a window manager may move the window meanwhile
    DWORD held_since = 0;    // when the program had seen the press
    bool press_seen = false;
    bool polling = false;  // the program has looked for events, and not waited for them since
    DWORD polling_since = 0;
    std::string picture_folder;
    std::int32_t pictures = 0;
    std::string tree_path;
    bool tree_begun = false;
};
Player& player() {
    static Player* all = new Player;  // used until the process ends
    return *all;
}

[[noreturn]] void end_program(const std::string& message) {
    player().next = player().lines.size();
    write_error_output(message + "\n");
    if (end_after_script) end_after_script(status_script_failed);
    std::fflush(nullptr);
    _exit(status_script_failed);
}

std::string place_of(const std::string& path, std::int32_t number, const std::string& source) {
    return path + ":" + std::to_string(number) + ": " + source + ": ";
}

// ---- Reading the environment ----------------------------------------------------------------

bool read_file(const std::string& path, std::string& text) {
    std::FILE* file = std::fopen(path.c_str(), "rbe");
    if (!file) return false;
    char buffer[16384];
    while (std::size_t got = std::fread(buffer, 1, sizeof buffer, file)) {
        text.append(buffer, got);
        if (text.size() > largest_script) break;
    }
    bool sound = std::ferror(file) == 0;
    std::fclose(file);
    if (text.size() <= largest_script) return sound;
    errno = EFBIG;
    return false;
}

void read_script(const char* path) {
    Player& p = player();
    p.path = path;
    std::string text;
    if (!read_file(p.path, text))
        end_program("TARN_EVENTS=" + p.path + " can't be read: " + std::strerror(errno));
    ScriptMistake mistake;
    if (!parse_script(text, p.lines, mistake))
        end_program(place_of(p.path, mistake.line, mistake.source) + mistake.what);
}

DWORD patience() {
    constexpr double default_seconds = 10.0, most_seconds = 3600.0;
    const char* value = std::getenv("TARN_TIMEOUT");
    if (!value || !*value) return static_cast<DWORD>(default_seconds * 1000);
    char* end = nullptr;
    double seconds = std::strtod(value, &end);
    if (*end != '\0' || !(seconds >= 0.0) || seconds > most_seconds) seconds = default_seconds;
    return static_cast<DWORD>(seconds * 1000);
}

// ---- Pictures and trees of every window -----------------------------------------------------

void save_numbered_picture(HWND top) {
    Player& p = player();
    if (p.picture_folder.empty() || !is_main_window(top)) return;
    if (mkdir(p.picture_folder.c_str(), 0777) != 0 && errno != EEXIST) {
        write_error_output("Warning: TARN_SCREENSHOT=" + p.picture_folder + ": " +
                           std::strerror(errno) + "\n");
        p.picture_folder.clear();
        return;
    }
    char number[16];
    std::snprintf(number, sizeof number, "%02d-", ++p.pictures);
    std::string why_not;
    std::string path = p.picture_folder + "/" + number + file_name_of(window_text(top)) + ".png";
    if (save_picture(top, path, why_not)) return;
    --p.pictures;
    // A window that was never shown has none.
    if (window_surface(top)) write_error_output("Warning: " + why_not + "\n");
}

void settled(HWND top) {
    Player& p = player();
    save_numbered_picture(top);
    if (p.tree_path.empty() || !IsWindow(top) || !is_main_window(top)) return;
    std::string why_not;
    if (!write_tree(top, p.tree_path, p.tree_begun, why_not)) {
        write_error_output("Warning: TARN_TREE: " + why_not + "\n");
        p.tree_path.clear();
    }
    p.tree_begun = true;
}

void going(HWND top) {
    save_numbered_picture(top);
}

// ---- Lines ----------------------------------------------------------------------------------

// What became of a line: it is done; it made events; it must be tried again, in so many
// milliseconds, and `why_not` says why.
struct Outcome {
    enum class Kind : std::uint8_t { done, events, again } kind = Kind::done;
    std::int32_t wait = look_again;
    bool in_vain = true;  // waiting for what a line expects, not by its own wish
};
constexpr Outcome done{};
constexpr Outcome events{Outcome::Kind::events};
constexpr Outcome again{Outcome::Kind::again};

bool fail(std::string& why_not, std::string reason) {
    why_not = std::move(reason);
    return false;
}

// The window that lines mean.
HWND window_now(std::string& why_not) {
    Player& p = player();
    // A chosen window that a question has disabled leaves the lines to the question.
    if (p.chosen && !IsWindow(p.chosen)) p.chosen = HWND{};
    HWND top = p.chosen && IsWindowEnabled(p.chosen) ? p.chosen : current_window();
    if (!top) why_not = list_of_windows();
    return top;
}

// Its keys come from the display once it is active.
bool is_ready_for_keys(HWND top, std::string& why_not) {
    if (GetActiveWindow() == top) return true;
    display().focus(static_cast<TopLevel>(top));
    return fail(why_not, "the window " + quoted(window_text(top)) + " doesn't get the focus");
}

bool locate(HWND top, const Target& target, ScriptControl& control, std::string& why_not) {
    std::vector<ScriptControl> all = controls_of(top);
    const ScriptControl* found = find_control(top, all, target, why_not);
    if (found) control = *found;
    return found != nullptr;
}

bool is_enabled(HWND top, HWND hwnd) {
    for (; hwnd; hwnd = hwnd == top ? HWND{} : GetParent(hwnd)) {
        if (!IsWindowEnabled(hwnd)) return false;
    }
    return true;
}

// The point on the screen that a target means; a control must be there for its user.
bool find_point(HWND top, const Target& target, bool disabled_too, POINT& screen,
                std::string& why_not) {
    if (target.kind == Target::Kind::point) {
        screen = target.offset;
        return ClientToScreen(top, screen);
    }
    ScriptControl control;
    if (!locate(top, target, control, why_not)) return false;
    if (!control.facts.visible) return fail(why_not, "it is hidden");
    if (!disabled_too && !is_enabled(top, control.hwnd)) return fail(why_not, "it is disabled");
    RECT rect;
    if (!GetWindowRect(control.hwnd, rect)) return fail(why_not, "it is gone");
    screen = {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
    if (target.has_offset) screen = {rect.left + target.offset.x, rect.top + target.offset.y};
    return true;
}

// Played three times: once to press, once when the program has seen that, which is when the time
// begins, and once when it is over, to let go.
Outcome play_hold(HWND top, POINT at) {
    Player& p = player();
    p.held = top;
    p.held_at = at;
    ScreenToClient(top, p.held_at);
    p.press_seen = false;
    begin_hold(top, at);
    return {Outcome::Kind::again, 0, false};
}

Outcome go_on_holding(const ScriptLine& line) {
    Player& p = player();
    if (!std::exchange(p.press_seen, true)) p.held_since = GetTickCount();
    const DWORD held = GetTickCount() - p.held_since;
    const auto wanted = static_cast<DWORD>(line.first);
    if (held < wanted)
        return {Outcome::Kind::again, static_cast<std::int32_t>(wanted - held), false};
    const HWND top = std::exchange(p.held, HWND{});
    POINT at = p.held_at;
    if (ClientToScreen(top, at)) end_hold(top, at);
    return events;
}

Outcome play_pointer(HWND top, const ScriptLine& line, std::string& why_not) {
    POINT at, to;
    // The pointer rests on what is grey too: a tip tells why it is.
    const bool disabled_too = line.command == Command::hover;
    if (!find_point(top, line.target, disabled_too, at, why_not)) return again;
    if (line.command == Command::drag && !find_point(top, line.other, false, to, why_not))
        return again;
    switch (line.command) {
        case Command::double_click:
            click(top, at, MouseButton::left, 2);
            break;
        case Command::right_click:
            click(top, at, MouseButton::right, 1);
            break;
        case Command::middle_click:
            click(top, at, MouseButton::middle, 1);
            break;
        case Command::hold:
            return play_hold(top, at);
        case Command::drag:
            drag(top, at, to);
            break;
        case Command::wheel:
            turn_wheel(top, at, line.first);
            break;
        case Command::hover:
            move_pointer(top, at);
            break;
        case Command::drop:
            drop_files(top, at, line.texts);
            break;
        default:
            click(top, at, MouseButton::left, 1);
    }
    return events;
}

Outcome play_keys(HWND top, const ScriptLine& line, std::string& why_not) {
    if (!is_ready_for_keys(top, why_not)) return again;
    switch (line.command) {
        case Command::type:
            type_text(top, line.texts[0]);
            break;
        case Command::press:
            press_key(top, line.key);
            break;
        case Command::release:
            release_key(top, line.key);
            break;
        default:
            for (std::int32_t i = 0; i < line.first; ++i) strike_key(top, line.key);
    }
    return events;
}

bool shows_text(HWND top, const std::string& text) {
    if (window_text(top) == text) return true;
    for (const ScriptControl& control : controls_of(top)) {
        if (!control.facts.visible) continue;
        if (control.facts.name == text || control.facts.value == text ||
            window_text(control.hwnd) == text ||
            (control_label && control_label(control.hwnd) == text))
            return true;
    }
    for (HWND popup : popups_over(top))  // a tip
        if (window_text(popup) == text) return true;
    return false;
}

Outcome play_expectation(HWND top, const ScriptLine& line, std::string& why_not) {
    if (line.command == Command::expect_text && line.target.kind == Target::Kind::none) {
        if (shows_text(top, line.texts[0])) return done;
        why_not = "the window shows no such text:\n" + tree_of(top);
        return again;
    }
    ScriptControl control;
    if (!locate(top, line.target, control, why_not)) return again;
    const ControlFacts& facts = control.facts;
    bool enabled = is_enabled(top, control.hwnd);
    std::string text;
    switch (line.command) {
        case Command::expect_value:
            text = facts.value;
            break;
        case Command::expect_text:
            text = window_text(control.hwnd);
            if (text == line.texts[0] || plain_label(text) == line.texts[0]) return done;
            break;
        case Command::expect_checked:
        case Command::expect_not_checked:
            why_not = facts.checked ? "it is checked" : "it isn't checked";
            return facts.checked == (line.command == Command::expect_checked) ? done : again;
        case Command::expect_focused:
            if (facts.focused) return done;
            why_not = "it hasn't the focus";
            for (const ScriptControl& each : controls_of(top)) {
                if (each.facts.focused) why_not += "; " + quoted(each.facts.name) + " has it";
            }
            return again;
        default:
            why_not = enabled ? "it is enabled" : "it is disabled";
            return enabled == (line.command == Command::expect_enabled) ? done : again;
    }
    if (text == line.texts[0]) return done;
    why_not = "it is " + quoted(text);
    return again;
}

// The menu whose item has this text, from a menu bar downwards.
bool find_item(HWND top, HMENU menu, const std::vector<std::string>& path, UINT& id,
               std::string& why_not) {
    for (std::size_t level = 0; level < path.size(); ++level) {
        std::int32_t count = GetMenuItemCount(menu), found = -1;
        std::string list;
        for (std::int32_t i = 0; i < count && found < 0; ++i) {
            std::string text(menu_text(menu, i));
            text = plain_label(text.substr(0, text.find('\t')));
            if (text == plain_label(path[level])) found = i;
            if (!text.empty()) list += (list.empty() ? "" : ", ") + quoted(text);
        }
        if (found < 0)
            return fail(why_not, "no item is called " + quoted(path[level]) + "; there " +
                                     (list.empty() ? "is nothing" : "are " + list));
        UINT flags = GetMenuState(menu, static_cast<UINT>(found), MF_BYPOSITION);
        if ((flags & (MF_GRAYED | MF_DISABLED)) != 0)
            return fail(why_not, quoted(path[level]) + " is disabled");
        HMENU below = GetSubMenu(menu, found);
        bool last = level + 1 == path.size();
        if (last != (below == HMENU{}))
            return fail(why_not,
                        quoted(path[level]) + (last ? " is a menu, not an item" : " is no menu"));
        if (last) {
            id = GetMenuItemID(menu, found);
        } else {
            // As when it is opened: programs bring their items up to date now.
            send_message(top, WM_INITMENUPOPUP, static_cast<WPARAM>(below), MAKELPARAM(found, 0));
            menu = below;
        }
    }
    return true;
}

Outcome play_menu(HWND top, const ScriptLine& line, std::string& why_not) {
    HMENU bar = GetMenu(top);
    if (!bar) {
        why_not = "the window " + quoted(window_text(top)) + " has no menu";
        return again;
    }
    UINT id = 0;
    send_message(top, WM_INITMENU, static_cast<WPARAM>(bar), 0);
    if (!find_item(top, bar, line.texts, id, why_not)) return again;
    PostMessageA(top, WM_COMMAND, MAKEWPARAM(static_cast<std::int32_t>(id), 0), 0);
    return events;
}

Outcome play_place(HWND top, const ScriptLine& line, std::string& why_not) {
    RECT rect;
    if (!window_surface_rect(top, rect)) return again;
    if (line.command == Command::resize) {
        if ((GetWindowLong(top, GWL_STYLE) & WS_THICKFRAME) == 0) {
            why_not = "the window can't be resized";
            return again;
        }
        rect.right = rect.left + line.first;
        rect.bottom = rect.top + line.second;
    } else {
        rect = {line.first, line.second, line.first + rect.width(), line.second + rect.height()};
    }
    display().place(static_cast<TopLevel>(top), rect);
    return events;
}

Outcome play_file(HWND top, const ScriptLine& line, std::string& why_not) {
    bool picture = line.command == Command::screenshot;
    bool written = picture ? save_picture(top, line.texts[0], why_not)
                           : write_tree(top, line.texts[0], false, why_not);
    return written ? done : again;
}

Outcome play_wait(const ScriptLine& line) {
    Player& p = player();
    DWORD waited = p.trying ? GetTickCount() - p.tried_since : 0;
    auto wanted = static_cast<DWORD>(line.first);
    if (waited >= wanted) return done;
    return {Outcome::Kind::again, static_cast<std::int32_t>(wanted - waited), false};
}

// Lines that need no window of their own.
bool play_without_window(const ScriptLine& line, Outcome& outcome, std::string& why_not) {
    Player& p = player();
    HWND found{};
    switch (line.command) {
        case Command::wait_idle:
            outcome = done;  // a line is played when it is
            return true;
        case Command::wait:
            outcome = play_wait(line);
            return true;
        case Command::hold:
            if (p.held == HWND{}) return false;
            outcome = go_on_holding(line);
            return true;
        case Command::expect_window:
        case Command::expect_no_window:
        case Command::window:
            if (!line.texts.empty()) found = find_window(line.texts[0]);
            break;
        default:
            return false;
    }
    bool wanted = line.command != Command::expect_no_window && !line.texts.empty();
    outcome = (found != HWND{}) == wanted ? done : again;
    why_not = list_of_windows();
    if (line.command == Command::window) p.chosen = found;
    return true;
}

Outcome play(const ScriptLine& line, std::string& why_not) {
    Outcome outcome;
    if (play_without_window(line, outcome, why_not)) return outcome;
    HWND top = window_now(why_not);
    if (!top) return again;
    switch (line.command) {
        case Command::click:
        case Command::double_click:
        case Command::right_click:
        case Command::middle_click:
        case Command::hold:
        case Command::drag:
        case Command::wheel:
        case Command::hover:
        case Command::drop:
            return play_pointer(top, line, why_not);
        case Command::type:
        case Command::key:
        case Command::press:
        case Command::release:
            return play_keys(top, line, why_not);
        case Command::focus: {
            ScriptControl control;
            if (!is_ready_for_keys(top, why_not) || !locate(top, line.target, control, why_not))
                return again;
            if (!control.facts.visible || !is_enabled(top, control.hwnd)) {
                why_not = control.facts.visible ? "it is disabled" : "it is hidden";
                return again;
            }
            SetFocus(control.hwnd);
            return events;
        }
        case Command::menu:
            return play_menu(top, line, why_not);
        case Command::resize:
        case Command::move:
            return play_place(top, line, why_not);
        case Command::screenshot:
        case Command::tree:
            return play_file(top, line, why_not);
        case Command::close: {
            Event event;
            event.kind = Event::Kind::close;
            event.window = static_cast<TopLevel>(top);
            inject_event(event);
            return events;
        }
        default:
            return play_expectation(top, line, why_not);
    }
}

// A call-back that writes to a text window looks for events in passing, while its own window takes
// no commands: a click would be lost. Only a program that goes on polling gets its lines that way.
bool in_passing(bool waiting) {
    Player& p = player();
    const DWORD now = GetTickCount();
    if (!waiting && !p.polling) p.polling_since = now;
    p.polling = !waiting;
    return p.polling && now - p.polling_since < static_cast<DWORD>(look_again);
}

// Asked when the queue is idle. A line that calls the program (focus, a picture) may open a
// question that asks again before it returns: it counts as done from its beginning.
std::int32_t step(bool waiting) {
    Player& p = player();
    if (in_passing(waiting)) return p.next < p.lines.size() ? look_again : -1;
    p.polling = false;  // the next line of one who polls has to wait as long
    while (p.next < p.lines.size()) {
        std::size_t at = p.next++;
        std::string why_not;
        Outcome outcome = play(p.lines[at], why_not);
        if (outcome.kind == Outcome::Kind::again && p.next == at + 1) {
            p.next = at;
            if (!p.trying) p.tried_since = GetTickCount();
            p.trying = true;
            if (outcome.in_vain && GetTickCount() - p.tried_since >= p.patience)
                end_program(place_of(p.path, p.lines[at].number, p.lines[at].source) + why_not);
            return outcome.wait;
        }
        p.trying = false;
        // On a desktop what was asked of others takes its time.
        if (outcome.kind == Outcome::Kind::events) return display().headless() ? 0 : look_again;
    }
    return -1;
}

}  // namespace

void start_script() {
    Player& p = player();
    if (p.started) return;
    p.started = true;
    p.patience = patience();
    if (const char* folder = std::getenv("TARN_SCREENSHOT")) p.picture_folder = folder;
    if (const char* path = std::getenv("TARN_TREE")) p.tree_path = path;
    if (!p.picture_folder.empty() || !p.tree_path.empty()) {
        window_settled = settled;
        window_going = going;
    }
    const char* path = std::getenv("TARN_EVENTS");
    if (!path || !*path) return;
    read_script(path);
    if (p.lines.empty()) return;
    script_step = step;
    somebody_answers = script_active;
}

bool script_active() {
    return player().next < player().lines.size();
}

}  // namespace tarn::platform
