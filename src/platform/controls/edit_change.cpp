// What alters the text of an edit field, and tells the parent so.
#include <algorithm>

#include "platform/base/text.h"
#include "platform/controls/edit.h"
#include "platform/controls/letters.h"

namespace tarn::platform {

// ---- The log of changes ------------------------------------------------------------------------

void UndoLog::clear() {
    steps_.clear();
    done_ = 0;
    run_ = Run::none;
}

void UndoLog::record(UndoStep step, Run run) {
    steps_.resize(done_);
    const bool follows = run != Run::none && run == run_ && done_ > 0;
    run_ = run;
    if (follows) {
        UndoStep& last = steps_.back();
        if (run == Run::typing && step.removed.empty() &&
            step.at == last.at + last.inserted.size()) {
            last.inserted += step.inserted;
            return;
        }
        if (run == Run::backspace && step.at + step.removed.size() == last.at) {
            last.removed.insert(0, step.removed);
            last.at = step.at;
            return;
        }
        if (run == Run::erase && step.at == last.at) {
            last.removed += step.removed;
            return;
        }
    }
    steps_.push_back(std::move(step));
    done_ = steps_.size();
}

// ---- Places in the text ------------------------------------------------------------------------

namespace {
// Enough around a place to find the bounds of a character with all its marks.
constexpr std::size_t window = 64;

char32_t code_at(std::string_view text, std::size_t at) {
    return next_code_point(text, at);
}

enum class Kind : std::uint8_t { space, word, mark, line_end };
Kind kind_of(char32_t code) {
    if (code == '\r' || code == '\n') return Kind::line_end;
    if (code == ' ' || code == '\t' || code == 0xA0) return Kind::space;
    return is_word_character(code) ? Kind::word : Kind::mark;
}
}  // namespace

std::size_t Edit::next(std::size_t at) const {
    return at + character_end(text.part(at, at + window), 0);
}

std::size_t Edit::previous(std::size_t at) const {
    const std::size_t from = at > window ? at - window : 0;
    return from + character_begin(text.part(from, at), at - from);
}

// The begin of the character that `at` is in.
std::size_t Edit::boundary(std::size_t at) const {
    if (at >= text.size()) return text.size();
    const auto inside = [this](std::size_t i) {
        return (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
    };
    for (int steps = 0; steps < 3 && at > 0 && inside(at); ++steps) --at;
    if (multi_line && at > 0 && text[at] == '\n' && text[at - 1] == '\r') --at;
    return at;
}

std::size_t Edit::next_word(std::size_t at) const {
    const auto kind = [this](std::size_t i) { return kind_of(code_at(text.part(i, i + 4), 0)); };
    if (at >= text.size()) return text.size();
    const Kind here = kind(at);
    at = next(at);
    if (here == Kind::line_end) return at;
    while (here != Kind::space && at < text.size() && kind(at) == here) at = next(at);
    while (at < text.size() && kind(at) == Kind::space) at = next(at);
    return at;
}

std::size_t Edit::previous_word(std::size_t at) const {
    const auto kind = [this](std::size_t i) { return kind_of(code_at(text.part(i, i + 4), 0)); };
    while (at > 0 && kind(previous(at)) == Kind::space) at = previous(at);
    if (at == 0) return 0;
    at = previous(at);
    const Kind here = kind(at);
    if (here == Kind::line_end) return at;
    while (at > 0 && kind(previous(at)) == here) at = previous(at);
    return at;
}

void Edit::word_around(std::size_t at, std::size_t& from, std::size_t& to) const {
    from = to = at;
    const auto kind = [this](std::size_t i) { return kind_of(code_at(text.part(i, i + 4), 0)); };
    if (text.size() == 0) return;
    if (password != 0) {
        from = 0;
        to = text.size();
        return;
    }
    const bool behind_last = at >= text.size() || kind(at) == Kind::line_end;
    if (behind_last && at == 0) return;
    const std::size_t first = behind_last ? previous(at) : at;
    const Kind here = kind(first);
    if (here == Kind::line_end) return;
    from = first;
    to = next(first);
    while (from > 0 && kind(previous(from)) == here) from = previous(from);
    while (to < text.size() && kind(to) == here) to = next(to);
}

// ---- Changing ----------------------------------------------------------------------------------

// A field's new lines end like the ones it has; CR LF in a field that has none.
std::string_view Edit::line_end_text() const {
    const std::size_t first = text.find('\n', 0);
    const bool bare = first < text.size() && (first == 0 || text[first - 1] != '\r');
    return bare ? "\n" : "\r\n";
}

void Edit::tell_changed() {
    if (!notify(*this, EN_UPDATE)) return;
    notify(*this, EN_CHANGE);
}

void Edit::set_text(std::string_view to) {
    // A program that shows its variables again and again mostly shows the same.
    const bool same = to.size() == text.size() && whole() == to && top == 0 && scroll_x == 0;
    const bool marked = anchor != caret;
    if (!same) text.assign(to);
    undo.clear();
    modified = false;
    anchor = caret = 0;
    trails = false;
    top = 0;
    scroll_x = 0;
    goal_x = -1;
    if (!same) {
        widest = 0;
        rebuild_lines();
        update_scroll_bars();
    }
    show_caret(false);
    if (!same || marked) repaint();
    // Only a field of one line tells of a text that it was given.
    if (!multi_line || in_combo) tell_changed();
}

// The one way to alter the text but for set_text.
void Edit::change(std::size_t at, std::size_t removed, std::string_view with,
                  std::size_t caret_after) {
    const std::size_t line_before = lines.line_of(at);
    const bool was_selected = anchor != caret;
    const std::size_t selected_from = low();
    const std::size_t selected_to = high();
    float old_x = 0;
    if (!was_selected && removed + with.size() < window) {
        const LineLayout& of = line_layout(line_before);
        old_x = of.x[std::min(at - of.start, of.text.size())];
    }
    if (was_selected) repaint_range(selected_from, selected_to);
    const std::size_t last_line = lines.line_of(at + removed);
    text.replace(at, removed, with);
    layout.start = SIZE_MAX;
    const Changed changed = update_lines(at, last_line);
    anchor = caret = caret_after;
    trails = false;
    goal_x = -1;
    modified = true;

    const RECT inside = area();
    const bool from_x = !changed.moved && changed.last == changed.first + 1 &&
                        changed.first == line_before && !was_selected &&
                        removed + with.size() < window && !has(ES_CENTER | ES_RIGHT);
    if (changed.moved) {
        repaint_lines(changed.first, SIZE_MAX);
    } else if (from_x) {
        RECT strip = client();
        strip.top =
            inside.top +
            static_cast<std::int32_t>(changed.first - std::min(top, changed.first)) * line_height;
        strip.bottom = strip.top + line_height;
        strip.left =
            std::max(strip.left, inside.left - scroll_x + static_cast<std::int32_t>(old_x) - 1);
        if (changed.first >= top) repaint(strip);
    } else {
        repaint_lines(changed.first, changed.last);
    }
    update_scroll_bars();
    show_caret(true);
    tell_changed();
}

// What is let in: the case of the field's style, digits only where asked, and for a field of one
// line no more than its first line.
std::string Edit::as_accepted(std::string_view with) {
    std::string accepted;
    if (multi_line) {
        const std::string_view end = line_end_text();
        accepted.reserve(with.size());
        for (std::size_t i = 0; i < with.size(); ++i) {
            if (with[i] == '\r' && i + 1 < with.size() && with[i + 1] == '\n') continue;
            if (with[i] == '\n' || with[i] == '\r') {
                accepted += end;
            } else {
                accepted += with[i];
            }
        }
    } else {
        accepted = with.substr(0, with.find_first_of("\r\n"));
    }
    std::erase(accepted, '\0');
    if (has(ES_UPPERCASE)) accepted = in_upper_case(accepted);
    if (has(ES_LOWERCASE)) accepted = in_lower_case(accepted);
    if (has(ES_NUMBER)) std::erase_if(accepted, [](char c) { return c < '0' || c > '9'; });
    return accepted;
}

// How many bytes of `with` can stand in place of the selection in a field that doesn't scroll.
std::size_t Edit::fitting(std::string_view with) {
    if (multi_line || has(ES_AUTOHSCROLL) || in_combo) return with.size();
    const LineLayout& of = line_layout(0);
    const float kept = of.width() - (of.x[high()] - of.x[low()]);
    const auto room = static_cast<float>(area().width());
    LineLayout more;
    more.text = with;
    measure_line(Measure{*this}, more);
    std::size_t end = more.text.size();
    while (end > 0 && kept + more.x[end] > room) end = character_begin(more.text, end);
    return end;
}

void Edit::replace_selection(std::string_view with, Run run, bool may_undo) {
    const std::size_t at = low();
    const std::size_t removed = high() - at;
    if (removed == 0 && with.empty()) return;
    if (may_undo) {
        undo.record({at, text.part(at, at + removed), std::string{with}, anchor, caret}, run);
    } else {
        undo.clear();
    }
    change(at, removed, with, at + with.size());
}

// One character typed: refused whole when it doesn't fit.
void Edit::type(std::string_view utf8) {
    const std::string accepted = as_accepted(utf8);
    if (accepted.empty()) {
        MessageBeep(0);
        return;
    }
    const bool too_long = text.size() - (high() - low()) + accepted.size() > limit;
    if (too_long || fitting(accepted) < accepted.size()) {
        MessageBeep(0);
        notify(*this, EN_MAXTEXT);
        return;
    }
    replace_selection(accepted, Run::typing);
}

// A text put in at once: as much of it as fits.
void Edit::paste_text(std::string_view from) {
    std::string accepted = as_accepted(from);
    bool cut_short = false;
    const std::size_t kept = text.size() - (high() - low());
    if (kept + accepted.size() > limit) {
        std::size_t room = limit > kept ? limit - kept : 0;
        while (room > 0 && (static_cast<unsigned char>(accepted[room]) & 0xC0) == 0x80) --room;
        if (room > 0 && accepted[room] == '\n' && accepted[room - 1] == '\r') --room;
        accepted.resize(room);
        cut_short = true;
    }
    if (const std::size_t end = fitting(accepted); end < accepted.size()) {
        accepted.resize(end);
        cut_short = true;
    }
    undo.close_run();
    replace_selection(accepted, Run::none);
    if (dead || !cut_short) return;
    MessageBeep(0);
    notify(*this, EN_MAXTEXT);
}

void Edit::erase(std::size_t from, std::size_t to, Run run) {
    if (from >= to) return;
    undo.record({from, text.part(from, to), {}, anchor, caret}, run);
    change(from, to - from, {}, from);
}

void Edit::step_undo(bool forward) {
    undo.close_run();
    const UndoStep* step = forward ? undo.forward() : undo.back();
    if (step == nullptr) {
        MessageBeep(0);
        return;
    }
    // The step may go while the parent is told.
    const UndoStep copy = *step;
    if (forward) {
        change(copy.at, copy.removed.size(), copy.inserted, copy.at + copy.inserted.size());
        return;
    }
    const std::string& back = copy.removed;
    const bool selected = copy.anchor != copy.caret;
    change(copy.at, copy.inserted.size(), back, copy.at + back.size());
    if (!dead && selected && copy.at + back.size() <= text.size()) {
        select(std::min(copy.anchor, text.size()), std::min(copy.caret, text.size()));
    } else if (!dead) {
        select(std::min(copy.caret, text.size()), std::min(copy.caret, text.size()));
    }
}

bool Edit::copy() {
    if (anchor == caret) return false;
    if (password != 0) {
        MessageBeep(0);
        return false;
    }
    std::string part = text.part(low(), high());
    std::string lf;
    lf.reserve(part.size());
    for (std::size_t i = 0; i < part.size(); ++i) {
        if (part[i] == '\r' && i + 1 < part.size() && part[i + 1] == '\n') continue;
        lf += part[i];
    }
    if (!OpenClipboard(hwnd)) return false;
    EmptyClipboard();
    const bool done = set_clipboard_text(lf);
    CloseClipboard();
    return done;
}

void Edit::cut() {
    if (read_only || !copy()) return;
    undo.close_run();
    replace_selection({}, Run::none);
}

void Edit::paste() {
    if (read_only) return;
    std::string from;
    if (!OpenClipboard(hwnd)) return;
    const bool there = clipboard_text(from);
    CloseClipboard();
    if (there) paste_text(from);
}

}  // namespace tarn::platform
