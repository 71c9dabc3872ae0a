// The text of an edit field: bytes with a gap where they were changed last, and where its lines
// begin, kept with a gap at the same place. Typing into ten megabytes moves nothing but what lies
// between this change and the last one.
#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

class GapText {
  public:
    std::size_t size() const { return bytes_.size() - gap_size_; }
    char operator[](std::size_t at) const { return bytes_[at < gap_ ? at : at + gap_size_]; }
    void assign(std::string_view text);
    void replace(std::size_t at, std::size_t removed, std::string_view with);
    // Bytes [from, to) appended to `out`.
    void append_to(std::string& out, std::size_t from, std::size_t to) const;
    std::string part(std::size_t from, std::size_t to) const;
    // The first `byte` at or behind `from`; size() when there is none.
    std::size_t find(char byte, std::size_t from) const;

  private:
    void move_gap(std::size_t at);
    void ensure_gap(std::size_t bytes);

    std::vector<char> bytes_;
    std::size_t gap_ = 0, gap_size_ = 0;
};

// Offsets at which lines begin; line 0 at 0. What lies before the gap is kept as it is, what lies
// behind it as its distance from the text's end, which a change before it doesn't alter.
class LineStarts {
  public:
    LineStarts() { reset({}, 0); }
    void reset(std::vector<std::size_t> starts, std::size_t text_size);  // without the 0
    std::size_t count() const { return slots_.size() - gap_size_; }
    std::size_t start(std::size_t line) const {
        return line < gap_ ? slots_[line] : text_size_ - slots_[line + gap_size_];
    }
    // The last line that begins at or before `offset`.
    std::size_t line_of(std::size_t offset) const;
    std::size_t text_size() const { return text_size_; }
    // Lines [first, last) no longer are and the text has another size: the lines from `last` on
    // move with its end. Then `fresh` begins where `first` was.
    void replace(std::size_t first, std::size_t last, std::span<const std::size_t> fresh,
                 std::size_t text_size);
    // Puts the gap before `line`, so that starts from there on follow the end of the text.
    void move_gap(std::size_t line);
    void set_text_size(std::size_t size) { text_size_ = size; }

  private:
    std::vector<std::size_t> slots_;
    std::size_t gap_ = 0, gap_size_ = 0, text_size_ = 0;
};

}  // namespace tarn::platform
