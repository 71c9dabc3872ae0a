// The record of an edit field. Its work is in four files: edit.cpp (messages), edit_change.cpp
// (what alters the text), edit_input.cpp (keys and the mouse), edit_view.cpp (lines, scrolling,
// painting).
//
// All offsets are bytes of the UTF-8 text and stand between characters.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/controls/edit_text.h"
#include "platform/controls/look.h"

namespace tarn::platform {

// What a step of the undo log was made by: steps of one kind that follow each other are one run.
enum class Run : std::uint8_t { none, typing, backspace, erase };

struct UndoStep {
    std::size_t at;
    std::string removed, inserted;
    std::size_t anchor, caret;  // before it
};
class UndoLog {
  public:
    void record(UndoStep step, Run run);
    void close_run() { run_ = Run::none; }
    void clear();
    bool can_undo() const { return done_ > 0; }
    bool can_redo() const { return done_ < steps_.size(); }
    const UndoStep* back() { return done_ > 0 ? &steps_[--done_] : nullptr; }
    const UndoStep* forward() { return done_ < steps_.size() ? &steps_[done_++] : nullptr; }

  private:
    std::vector<UndoStep> steps_;
    std::size_t done_ = 0;
    Run run_ = Run::none;
};

// One line as it is shown: x of each byte's character, and of the end.
struct LineLayout {
    std::size_t start = SIZE_MAX, end = 0;
    std::string text;
    std::vector<float> x;
    float width() const { return x.empty() ? 0.0F : x.back(); }
};

enum class Select : std::uint8_t { characters, words, lines };

struct Edit : Control {
    GapText text;
    LineStarts lines;
    std::size_t anchor = 0, caret = 0;
    bool trails = false;  // the caret stands at the end of a wrapped line, not at the next's begin
    std::size_t limit = unlimited;
    bool modified = false, read_only = false, multi_line = false, in_combo = false;
    char32_t password = 0;
    std::string cue;
    bool cue_with_focus = false;
    UndoLog undo;

    std::int32_t line_height = 0;
    std::size_t top = 0;
    std::int32_t scroll_x = 0, wrap_width = -1;
    float widest = 0;   // of the lines seen so far
    float goal_x = -1;  // where Up and Down want to go
    LineLayout layout;  // of the line looked at last
    bool has_caret = false;

    bool dragging = false;
    Select unit = Select::characters;
    std::size_t drag_from = 0, drag_to = 0;  // the word or line where a drag began
    DWORD double_click_time = 0;
    POINT last_mouse;
    bool primary_pending = false;

    static constexpr std::size_t unlimited = INT32_MAX - 1;
    static constexpr std::uintptr_t scroll_timer = 1;

    // edit.cpp
    LRESULT handle(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT handle_text(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT handle_own(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT handle_lines(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT get_selection(WPARAM start, LPARAM end) const;
    void select_by_message(WPARAM start, LPARAM end);
    LRESULT dialog_code(LPARAM lparam) const;
    void make_caret();
    void gain_focus();
    void lose_focus();
    void create(const CREATESTRUCT& made);

    // edit_change.cpp
    std::size_t low() const { return anchor < caret ? anchor : caret; }
    std::size_t high() const { return anchor < caret ? caret : anchor; }
    std::string whole() const { return text.part(0, text.size()); }
    void set_text(std::string_view to);
    void change(std::size_t at, std::size_t removed, std::string_view with,
                std::size_t caret_after);
    void tell_changed();
    void replace_selection(std::string_view with, Run run, bool may_undo = true);
    void type(std::string_view utf8);
    void erase(std::size_t from, std::size_t to, Run run);
    void step_undo(bool forward);
    bool copy();
    void cut();
    void paste();
    void paste_text(std::string_view from);
    std::size_t fitting(std::string_view with);
    std::string as_accepted(std::string_view with);
    std::string_view line_end_text() const;
    std::size_t boundary(std::size_t at) const;
    std::size_t next(std::size_t at) const;
    std::size_t previous(std::size_t at) const;
    std::size_t next_word(std::size_t at) const;
    std::size_t previous_word(std::size_t at) const;
    void word_around(std::size_t at, std::size_t& from, std::size_t& to) const;

    // edit_view.cpp
    bool wraps() const;
    RECT area() const;
    std::size_t visible_lines() const;
    std::size_t line_end(std::size_t line) const;
    std::size_t caret_line() const;
    void rebuild_lines();
    struct Changed {
        std::size_t first, last;  // lines to paint: last is one beyond
        bool moved;               // lines below moved too
    };
    Changed update_lines(std::size_t at, std::size_t removed_to_line);
    std::size_t next_start(const Measure& measure, std::size_t from);
    void measure_line(const Measure& measure, LineLayout& of) const;
    const LineLayout& line_layout(std::size_t line);
    std::int32_t line_left(const LineLayout& of) const;
    POINT point_of(std::size_t offset, std::size_t line);
    std::size_t offset_at(POINT at, std::size_t* on_line = nullptr);
    std::size_t offset_at_x(std::size_t line, float x);
    void select(std::size_t new_anchor, std::size_t new_caret, bool at_line_end = false);
    void show_caret(bool scroll_there);
    void scroll_to(std::size_t new_top, std::int32_t new_x);
    void scroll_to_caret();
    void update_scroll_bars();
    void repaint_range(std::size_t from, std::size_t to);
    void repaint_lines(std::size_t first, std::size_t last);
    void font_changed();
    void paint();
    void paint_lines(HDC dc, const RECT& damaged, const Colours& colours);
    void paint_line(HDC dc, std::size_t line, const RECT& damaged, const Colours& colours);
    void draw_characters(HDC dc, const LineLayout& of, std::int32_t x, std::int32_t y,
                         const RECT& damaged, COLORREF colour) const;

    // edit_input.cpp
    void key(WPARAM code, LPARAM lparam);
    bool control_key(WPARAM code, bool shift);
    bool combo_key(WPARAM code, LPARAM lparam);
    void character(char32_t code);
    void move(std::size_t to, bool extend, bool at_line_end = false);
    void move_lines(std::ptrdiff_t by, bool extend);
    void press(POINT at, bool extend, bool twice);
    void drag(POINT at);
    void end_drag();
    void offer_primary();
    void middle_press(POINT at);
    void context_menu(LPARAM lparam);
};

}  // namespace tarn::platform
