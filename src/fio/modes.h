// The changeable modes of a connection and of a statement, in one spelling for both dialects.
#pragma once

#include <cstdint>

namespace tarn::fio {

enum class Access : std::uint8_t { sequential, direct, stream };
enum class Form : std::uint8_t { formatted, unformatted };
enum class Action : std::uint8_t { read, write, readwrite };
enum class Blank : std::uint8_t { null, zero };
enum class DecimalMark : std::uint8_t { point, comma };
enum class Delim : std::uint8_t { none, apostrophe, quote };
enum class Encoding : std::uint8_t { standard, utf8 };
enum class SignMode : std::uint8_t { processor, plus, suppress };
enum class Endian : std::uint8_t { native, swap };
enum class CarriageControl : std::uint8_t { list, fortran, none };

// How a value is rounded to the digits asked for. `unspecified` and `processor` are to nearest
// with halves to even on the exact value; `compatible` takes halves away from zero.
enum class Rounding : std::uint8_t {
    unspecified,
    processor,
    nearest,
    compatible,
    up,
    down,
    zero,
};

// What a formatted or list-directed item needs to know beyond its edit descriptor.
struct EditModes {
    Blank blank = Blank::null;
    DecimalMark decimal = DecimalMark::point;
    Rounding round = Rounding::unspecified;
    SignMode sign = SignMode::processor;
    Delim delim = Delim::none;
    bool pad = true;
    // -fdec: an edit descriptor may lack its width, an exponent its digits.
    bool dec_extensions = false;
    std::int32_t scale = 0;  // k of kP
};

}  // namespace tarn::fio
