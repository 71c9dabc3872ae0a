// NAMELIST output: one line a variable, ` NAME=value,value,`, as gfortran lays it out, apart from
// these, where its run-time goes wrong:
// - An array that doesn't lie contiguous in memory (a pointer to a section) is written by its own
//   elements, and an array of an extended type element by element with its subscripts.
// - Characters of kind 4 are written as characters to any unit, as list-directed output does it.
// - An array of a derived type without elements writes nothing.
// - A variable that isn't allocated, or a pointer that points nowhere, is a fault.
#include <cstring>

#include "fio/gnu/array_walk.h"
#include "fio/gnu/edit_out.h"
#include "fio/gnu/edit_out_quick.h"
#include "fio/gnu/items.h"
#include "fio/gnu/namelist.h"
#include "fio/gnu/records.h"

namespace tarn::fio {
namespace {

constexpr Fault no_address{194, iostat_read_value};
constexpr Fault no_procedure{156, iostat_internal};

// A line is full when it holds so many values. A COMPLEX counts as two, and the line that begins
// with the variable's name has one less to give.
constexpr int line_full = 6;

class Writer {
  public:
    Writer(Statement& statement, const NamelistGroup& group) : s_(statement), group_(group) {
        const bool comma = s_.modes.decimal == DecimalMark::comma;
        separator_ = comma ? ';' : ',';
    }

    void write_group() {
        if (!check_addresses()) return;
        put_byte(s_, '&');
        put_upper(group_.name);
        for (std::uint32_t i = 0; i < group_.items.size() && !s_.failed; i = group_.items[i].end) {
            path_.clear();
            write_item(i, group_.items[i].address);
        }
        new_line();
        put_text(s_, " /");
    }

  private:
    bool check_addresses() {
        for (std::uint32_t i = 0; i < group_.items.size(); i = group_.items[i].end) {
            if (group_.items[i].address != nullptr) continue;
            std::string detail(group_.items[i].path);
            fail(s_, no_address, detail.append(" is not allocated"));
            return false;
        }
        return true;
    }

    // The one record of a scalar internal file holds all lines, with a blank in place of line ends.
    void new_line() {
        if (is_internal_scalar(s_)) return put_byte(s_, ' ');
        next_output_record(s_);
    }

    void put_upper(std::string_view text) {
        char piece[64];
        while (!text.empty()) {
            const std::size_t count = text.size() < sizeof piece ? text.size() : sizeof piece;
            for (std::size_t i = 0; i < count; ++i) {
                const char c = text[i];
                piece[i] = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
            }
            put_text(s_, {piece, count});
            text.remove_prefix(count);
        }
    }

    // `first`: the item's first element. `path_`: what the item is part of.
    void write_item(std::uint32_t index, char* first) {
        const NamelistItem& item = group_.items[index];
        const std::size_t outer = path_.size();
        if (outer != 0) path_ += '%';
        path_ += item.name;
        ArrayWalk walk = elements(item, first);
        if (item.procedure != nullptr) {
            write_by_procedure(item, walk);
        } else if (item.derived) {
            write_derived(index, walk);
        } else {
            write_values(item, walk);
        }
        path_.resize(outer);
    }

    ArrayWalk elements(const NamelistItem& item, char* first) const {
        ArrayWalk walk;
        walk.element = first;
        const NamelistDimension* dimension = group_.dimensions_of(item);
        for (int i = 0; i < item.rank; ++i, ++dimension) {
            walk.add(dimension->extent(), dimension->stride * static_cast<std::int64_t>(item.size));
        }
        return walk;
    }

    void write_derived(std::uint32_t index, ArrayWalk& walk) {
        if (walk.count() == 0) return;
        const NamelistItem& item = group_.items[index];
        const std::size_t name_end = path_.size();
        do {
            path_.resize(name_end);
            add_subscripts(item, walk);
            for (std::uint32_t i = index + 1; i < item.end && !s_.failed; i = group_.items[i].end) {
                write_item(i, walk.element + group_.items[i].place);
            }
        } while (!s_.failed && walk.next());
    }

    void add_subscripts(const NamelistItem& item, const ArrayWalk& walk) {
        const NamelistDimension* dimension = group_.dimensions_of(item);
        for (int i = 0; i < item.rank; ++i, ++dimension) {
            path_ += i == 0 ? '(' : ',';
            path_ += std::to_string(dimension->lower + walk.dimension[i].index);
        }
        if (item.rank > 0) path_ += ')';
    }

    void put_name() {
        new_line();
        put_byte(s_, ' ');
        put_upper(path_);
        put_byte(s_, '=');
    }

    void write_by_procedure(const NamelistItem& item, ArrayWalk& walk) {
        const auto write = namelist_procedures().write;
        if (write == nullptr) {
            return fail(s_, no_procedure, "NAMELIST with a procedure of the variable's type");
        }
        if (walk.count() == 0) return;
        put_name();
        do {
            write(s_, item, walk.element);
        } while (!s_.failed && walk.next());
    }

    void write_values(const NamelistItem& item, ArrayWalk& walk) {
        put_name();
        if (walk.count() == 0) return;
        const std::size_t bytes = compared_bytes(item);
        const bool bare = s_.modes.delim == Delim::none;
        const bool separated = !(bare && item.type == ItemType::character);
        int values = 1;
        for (bool more = true; more && !s_.failed;) {
            const char* const value = walk.element;
            std::int64_t count = 1;
            while ((more = walk.next()) && same_value(item, bytes, value, walk.element)) ++count;
            if (count > 1) put_count(count);
            put_value(item, value, count > 1);
            if (separated) put_byte(s_, separator_);
            values += item.type == ItemType::complex ? 2 : 1;
            if (values < line_full) continue;
            values = 0;
            if (bare) put_byte(s_, separator_);
            new_line();
            put_byte(s_, ' ');
        }
    }

    // Bytes of a value that mean something, in each part of a COMPLEX.
    static std::size_t compared_bytes(const NamelistItem& item) {
        const bool number = item.type == ItemType::real || item.type == ItemType::complex;
        if (number && item.kind == 10) return 10;
        return item.type == ItemType::complex ? item.size / 2 : item.size;
    }

    static bool same_value(const NamelistItem& item, std::size_t bytes, const char* a,
                           const char* b) {
        if (std::memcmp(a, b, bytes) != 0) return false;
        const std::size_t part = item.size / 2;
        return item.type != ItemType::complex || std::memcmp(a + part, b + part, bytes) == 0;
    }

    void put_count(std::int64_t count) {
        std::string text = " ";
        put_text(s_, text.append(std::to_string(count)).append("*"));
    }

    void put_value(const NamelistItem& item, const char* value, bool repeated) {
        char field[list_item_bound];
        switch (item.type) {
            case ItemType::integer:
                return put_integer_value(value, item.kind);
            case ItemType::logical:
                return put_byte(s_, load_integer(value, item.kind) != 0 ? 'T' : 'F');
            case ItemType::real:
                return put_real_value(value, item.kind, repeated);
            case ItemType::complex: {
                char* const end = put_list_complex(field, value, item.kind, s_.modes);
                char* begin = field;
                while (*begin == ' ') ++begin;
                return put_field(begin, end);
            }
            case ItemType::character:
                return put_character_value(value, item.kind, item.length);
        }
    }

    void put_field(const char* begin, const char* end) {
        put_text(s_, {begin, static_cast<std::size_t>(end - begin)});
    }

    // Left-justified in the width that list-directed output has for it.
    void put_integer_value(const char* value, int kind) {
        char field[list_item_bound];
        char* const end = put_list_integer(field, load_integer(value, kind), kind, s_.modes);
        put_left(field, end);
    }

    // As in list-directed output, but digits behind a repeat count are left-justified.
    void put_real_value(const char* value, int kind, bool repeated) {
        char field[list_item_bound];
        char* const end = put_list_real(field, value, kind, s_.modes);
        if (repeated && end[-1] != 'N' && end[-1] != 'f' && end[-1] != 'y') {
            put_left(field, end);
        } else {
            put_field(field, end);
        }
    }

    void put_left(const char* begin, const char* end) {
        const char* first = begin;
        while (*first == ' ') ++first;
        put_field(first, end);
        put_blanks(s_, static_cast<std::size_t>(first - begin));
    }

    void put_character_value(const char* value, int kind, std::size_t length) {
        switch (s_.modes.delim) {
            case Delim::none:
                return put_characters(s_, value, kind, length);
            case Delim::apostrophe:
                return put_delimited(s_, value, kind, length, '\'');
            case Delim::quote:
                return put_delimited(s_, value, kind, length, '"');
        }
    }

    Statement& s_;
    const NamelistGroup& group_;
    char separator_;
    std::string path_;
};

}  // namespace

void write_namelist(Statement& s) {
    Writer(s, *s.namelist).write_group();
}

}  // namespace tarn::fio
