// A format as the engine runs it: what the parser makes of the text, kept and run many times.
//
// The nodes stand in source order. A group node `open` is matched by its `close`; `link` leads
// from each to the other. Literal text lies in the program's own copy of the format text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::fio {

enum class Edit : std::uint8_t {
    // Data edit descriptors.
    I,
    B,
    O,
    Z,
    F,
    E,
    D,
    EN,
    ES,
    EX,
    G,
    L,
    A,
    DT,
    // Control edit descriptors.
    literal,
    slash,
    colon,
    dollar,
    T,
    TL,
    TR,
    P,
    S,
    SP,
    SS,
    BN,
    BZ,
    RU,
    RD,
    RZ,
    RN,
    RC,
    RP,
    DC,
    DP,
    // Structure.
    open,
    close,
    end,
};

constexpr bool is_data_edit(Edit edit) {
    return edit <= Edit::DT;
}

constexpr bool is_bits_edit(Edit edit) {
    return edit == Edit::B || edit == Edit::O || edit == Edit::Z;
}

inline constexpr std::int32_t absent = -1;
inline constexpr std::int32_t unlimited = -2;  // repeat of *( ... )

// An edit descriptor with its numbers: what the editing of one item needs. A, L and the REAL edits
// may come without a width: w is then `absent`. `E12.3E0` has e = 0: as few exponent digits as hold
// it.
struct FieldEdit {
    Edit edit = Edit::end;
    std::int32_t w =
        absent;  // width; n of T, TL, TR; k of P; count of slashes; DT: values in its list
    std::int32_t d = absent;  // d, or m of I, B, O, Z; DT: index of the first value in `values`
    std::int32_t e = absent;
};

// X has the nodes of TR: both move without touching what they pass.
struct FormatNode : FieldEdit {
    std::int32_t repeat = 1;
    std::uint32_t link = 0;    // open: index of its close; close: of its open; end: reversion point
    std::uint32_t level = 0;   // open, close: nesting depth, 0 for the outermost
    std::uint32_t text = 0;    // literal, DT: offset of its characters in `literals`
    std::uint32_t length = 0;  // literal, DT: their number
    std::uint32_t source = 0;  // offset in the format text, for messages
};

struct FormatError {
    std::int32_t number = 0;   // of the catalogue; 0: none
    std::size_t position = 0;  // offset in the text at fault
};

// The width, digits and exponent's digits that an edit without a width has for an item of this
// kind, where programs may leave them out.
void fill_natural_width(FieldEdit& edit, bool integer, int kind);

struct FormatProgram {
    std::vector<FormatNode> nodes;
    std::string literals;
    std::vector<std::int32_t> values;  // of the lists of DT
    std::uint32_t depth = 0;           // of nesting, the outermost group not counted
    bool has_data_edit = false;        // a repeatable descriptor stands in it
    FormatError unfit_for_input;       // what a READ may not use in it: a zero width
};

inline constexpr std::uint32_t max_format_depth = 64;

// What programs are compiled for decides about some formats.
struct FormatRules {
    bool natural_widths = false;  // a data edit may come without a width (-fdec-format-defaults)
    bool legacy = false;          // -std=legacy: REAL edits need no point behind their width
    bool before_f2008 = false;    // the standard chosen (-std=f95, -std=f2003) doesn't have G0
    bool before_f2018 = false;    // it has no zero width of exponential edits

    bool operator==(const FormatRules&) const = default;
};

// Parses the text of a format in the gnu dialect. Text behind the closing parenthesis is ignored.
FormatError parse_gnu_format(const char* text, std::size_t length, FormatRules rules,
                             FormatProgram& program);

}  // namespace tarn::fio
