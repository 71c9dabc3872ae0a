// ORVALPRECON: units that the user connects to files before the program starts.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarn::frame {

struct Preconnection {
    std::int32_t unit;
    std::string_view name;
    bool read_only;
    bool formatted;
};

inline constexpr int preconnection_bad_unit = 412;
inline constexpr int preconnection_bad_text = 413;

// Takes the next entry off the text: an access letter (R, W), a form letter (F, U), a unit number
// from 1 to 99 and a name between apostrophes, as in RF7'in.dat'WU8'out'. The result is 0 or the
// number of the failure.
int next_preconnection(std::string_view& text, Preconnection& entry);

// Nothing but blanks is left.
bool preconnections_done(std::string_view text);

}  // namespace tarn::frame
