// The text of a NAMELIST statement that reads, and the readers of single values.
#pragma once

#include "fio/native/io_type.h"
#include "fio/native/namelist_table.h"

namespace tarn::fio::native {

// Where the statement stands in its record.
class NamelistInput {
  public:
    explicit NamelistInput(IO_type& io) : io_(io) {}

    const char* cursor() const { return io_.record_cursor; }
    const char* end() const { return io_.record_last + 1; }
    bool exhausted() const { return io_.record_cursor > io_.record_last; }
    bool stands(char c) const { return !exhausted() && *io_.record_cursor == c; }
    bool at_group_end() const { return exhausted() || *io_.record_cursor == '/'; }
    void pass() { ++io_.record_cursor; }
    void move_to(const char* place) { io_.record_cursor += place - io_.record_cursor; }
    // The first character of the record that is no blank.
    const char* first_text() const;

    // Fetches the next record; `ended`: there is none.
    [[nodiscard]] bool next_record(bool& ended);
    // Passes blanks, line ends and comments, over records.
    [[nodiscard]] bool skip_space();

    // The value at hand is a component: the first delimiter of a text ends it.
    bool in_structure = false;

  private:
    IO_type& io_;
};

[[nodiscard]] bool get_integer(std::int32_t& value);
[[nodiscard]] bool get_integer8(std::int64_t& value);

// One value into the variable at `address`; of a CHARACTER of `length` only the characters from
// `first` to `last`, counted from 1.
[[nodiscard]] bool read_namelist_value(NamelistInput& in, NamelistType type, char* address,
                                       std::int64_t length, std::int64_t first, std::int64_t last);

}  // namespace tarn::fio::native
