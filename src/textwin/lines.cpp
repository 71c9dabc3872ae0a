// The store of lines and what writing does to it.
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "failure/failure.h"
#include "textwin/window_info.h"

namespace tarn::textwin {

namespace {

constexpr int out_of_storage = 199;
constexpr std::uint64_t poll_interval = 2'000'000;

window_line* allocate_line(std::size_t text_bytes) {
    return static_cast<window_line*>(std::calloc(1, sizeof(window_line) + text_bytes + 1));
}

// Room for a finished line. A window that gives up its oldest lines tries once more without one.
window_line* allocate_finished(window_info& window, std::size_t length) {
    window_line* line = allocate_line(length);
    if (line == nullptr && window.maximum_lines == -1) {
        remove_excess_lines(window, false);
        line = allocate_line(length);
    }
    if (line == nullptr) failure::fail(out_of_storage);
    return line;
}

// A place in the text of one record, which another one takes over.
void move_place(window_line*& at, const char*& character, const window_line& from,
                window_line& to) {
    if (at != &from) return;
    at = &to;
    character = to.text() + (character - from.text());
}

// The working line's text moves into a record of its exact length, which takes its place.
void finish_working_line(window_info& window) {
    window_line* working = window.last;
    window_line* line = allocate_finished(window, window.working_length);
    std::memcpy(line->text(), working->text(), window.working_length + 1);
    line->next = working;
    line->previous = working->previous;
    line->start = working->start;
    line->end = working->end;
    line->right_edge = working->right_edge;
    line->height = working->height;
    if (line->previous != nullptr) line->previous->next = line;
    working->previous = line;
    if (window.first == working) window.first = line;
    if (window.bottom == working) window.bottom = line;
    if (window.top == working) window.top = line;
    move_place(window.selected_first, window.selected_first_character, *working, *line);
    move_place(window.selected_last, window.selected_last_character, *working, *line);
    move_place(window.anchor_line, window.anchor_character, *working, *line);
}

// What doesn't fit is dropped, and a character goes as a whole.
void append_byte(window_info& window, char byte) {
    if (window.working_length + character_length(window, byte) > line_limit)
        window.line_full = true;
    if (!window.line_full) window.last->text()[window.working_length++] = byte;
}

void start_working_text(window_info& window, const char* text, std::size_t length) {
    window_line* working = window.last;
    window.working_length = 0;
    window.line_full = false;
    for (std::size_t i = 0; i < length; ++i) append_byte(window, text[i]);
    working->text()[window.working_length] = 0;
    working->right_edge = 0;
    scan_line(window, *working);
}

}  // namespace

std::uint64_t now_nanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000U +
           static_cast<std::uint64_t>(now.tv_nsec);
}

text_descriptor* descriptor_of(const window_info& window, std::int32_t number) {
    text_descriptor* found = number > 0 ? window.descriptors : nullptr;
    for (; found != nullptr && number > 1; --number) found = found->next;
    return found;
}

std::int32_t font_escape(const window_info& window, const char* text, std::int32_t& number) {
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    if (text[0] != window.escape || (text[1] != 't' && text[1] != 'T') || !digit(text[2])) return 0;
    number = text[2] - '0';
    if (!digit(text[3])) return 3;
    number = number * 10 + text[3] - '0';
    return 4;
}

// A line is as high as the tallest font in it, and a change of font carries over to the next.
void scan_line(window_info& window, window_line& line) {
    line.start = line.previous != nullptr ? line.previous->end : window.descriptors;
    text_descriptor* in_force = line.start;
    line.height = in_force->height;
    const char* text = line.text();
    while ((text = std::strchr(text, window.escape)) != nullptr && *text != 0) {
        if (text[1] == window.escape) {
            text += 2;
            continue;
        }
        std::int32_t number = 0;
        const std::int32_t length = font_escape(window, text, number);
        if (length == 0) {
            ++text;
            continue;
        }
        text += length;
        text_descriptor* wanted = descriptor_of(window, number);
        if (wanted == nullptr) continue;
        window.escape_used = true;
        in_force = wanted;
        if (in_force->height > line.height) line.height = in_force->height;
    }
    line.end = in_force;
}

void remove_excess_lines(window_info& window, bool normal) {
    while (window.first != nullptr && window.first != window.last &&
           ((normal && window.maximum_lines > 0 && window.line_count > window.maximum_lines) ||
            (window.maximum_lines == -1 && window.line_count > default_maximum_floor && !normal))) {
        window_line* oldest = window.first;
        window.first = oldest->next;
        window.first->previous = nullptr;
        if (window.bottom == oldest)
            window.bottom = window.first;
        else
            --window.bottom_number;
        if (window.top == oldest) window.top = nullptr;
        if (window.selected_first == oldest || window.selected_last == oldest ||
            window.anchor_line == oldest)
            cancel_selection(window);
        std::free(oldest);
        --window.line_count;
        if (window.maximum_lines == -1) break;
    }
}

void add_window_line(window_info& window, const char* text, std::size_t length) {
    if (window.last != nullptr) {
        finish_working_line(window);
    } else {
        window.last = allocate_line(line_limit);
        if (window.last == nullptr) failure::fail(out_of_storage);
        window.first = window.last;
    }
    start_working_text(window, text, length);
    window.bottom = window.last;
    ++window.line_count;
    ++window.lines_added;
    remove_excess_lines(window, true);
    window.bottom_number = window.line_count;
    set_vert_scroll_bar(window, window.line_count, false);
    window.display_owed = false;
    const bool held = state().hold_display;
    state().hold_display = false;
    if (held)
        window.display_owed = true;
    else
        mark_changed(window);
}

void free_lines(window_info& window) {
    for (window_line* line = window.first; line != nullptr;) {
        window_line* next = line->next;
        std::free(line);
        line = next;
    }
    window.first = window.last = window.bottom = window.top = nullptr;
    window.selected_first = window.selected_last = window.anchor_line = nullptr;
    window.anchor = window.end = {no_selection, no_selection};
    window.line_count = window.bottom_number = 0;
    window.working_length = 0;
}

std::size_t character_length(const window_info& window, char lead) {
    const auto byte = static_cast<unsigned char>(lead);
    if (!window.utf8 || byte < 0xC0) return 1;
    return byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

std::size_t last_character(const window_info& window, const char* text, std::size_t length) {
    if (length == 0) return 0;
    --length;
    while (window.utf8 && length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        --length;
    return length;
}

void take_back_character(window_info& window) {
    if (window.last == nullptr || window.working_length == 0) return;
    char* text = window.last->text();
    window.working_length = last_character(window, text, window.working_length);
    window.line_full = false;
    text[window.working_length] = 0;
    scan_line(window, *window.last);
    mark_changed(window);
}

// What is written shows at once, since nobody knows whether the program computes for hours after
// it. Only a flood is painted every two milliseconds.
void mark_changed(window_info& window) {
    window.changed = true;
    if (!window.update_at_once) return;
    state().show_wanted = true;
    if (!platform::may_show_now()) return;
    show_output(window);
    platform::present_now();
}

void show_output(window_info& window) {
    if (!window.changed) return;
    const HDC dc = platform::GetDC(window.hwnd);
    if (dc == 0) return;
    paint_window(window, dc, true);
    platform::ReleaseDC(window.hwnd, dc);
}

void show_all_output() {
    if (!state().show_wanted) return;
    state().show_wanted = false;
    for (window_info* window = state().windows; window != nullptr; window = window->next)
        if (window->update_at_once) show_output(*window);
}

void write_bytes(window_info& window, const char* bytes, std::size_t count) {
    if (window.last == nullptr) {
        state().hold_display = true;
        add_window_line(window, "", 0);
    }
    bool ended_on_feed = false;
    const char* const stop = bytes + count;
    while (bytes < stop) {
        const char* feed = static_cast<const char*>(
            std::memchr(bytes, '\n', static_cast<std::size_t>(stop - bytes)));
        const char* const piece_end = feed != nullptr ? feed : stop;
        ended_on_feed = false;
        for (; bytes < piece_end; ++bytes)
            if (*bytes != '\r') append_byte(window, *bytes);
        window.last->text()[window.working_length] = 0;
        if (feed == nullptr) break;
        scan_line(window, *window.last);
        mark_changed(window);
        if (!window.input_started) {
            state().hold_display = true;
            ended_on_feed = true;
        }
        add_window_line(window, "", 0);
        bytes = feed + 1;
    }
    scan_line(window, *window.last);
    if (!ended_on_feed && !state().quiet_write) mark_changed(window);
    state().quiet_write = false;
}

void win_coua(HWND hwnd, const char* bytes, std::size_t count) {
    window_info* window = find_window(hwnd);
    if (window == nullptr) return;
    write_bytes(*window, bytes, count);
    live_while_writing();
}

// The window lives while a program writes; a flood looks at the queue every two milliseconds.
void live_while_writing() {
    const std::uint64_t now = now_nanoseconds();
    if (now - state().last_poll < poll_interval) return;
    state().last_poll = now;
    yield_program_control(1);
}

void win_coua_f() {
    state().quiet_write = true;
}

}  // namespace tarn::textwin
