// The parser of run-time formats.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "fio/native/format.h"

namespace tarn::fio::native {

// Reports a message; true when the program has asked to ignore it, and the parse goes on with
// what it has.
using ReportMessage = bool (*)(std::int32_t message);

// Parses the text of a format up to its closing parenthesis; what stands behind is ignored.
// `strict`: extensions are reported. False: a message has been reported and the parse is over.
bool parse_format(std::string_view text, bool strict, ReportMessage report, Format& format);

// Parses a text and lays it down as a code stream, which grows as needed. The result is the
// stream's start index + 2, or 0 when a message was reported or the format has a width or a
// distance that a word of the stream can't hold.
std::int32_t IO_parse_format_string(std::string_view text, bool strict, ReportMessage report,
                                    std::vector<std::uint16_t>& code);

}  // namespace tarn::fio::native
