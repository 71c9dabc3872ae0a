// Calls of winio without a window, and what they report.
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "winio/records.h"
#include "winio/scanner.h"

namespace tarn::winio::test {

struct language {
    bool fortran;
};
inline constexpr language c{false}, fortran{true};

inline word bits_of(double value) {
    word bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}
template <class Value>
word address(Value* value) {
    return reinterpret_cast<word>(value);
}
inline word text(const char* value) {
    return reinterpret_cast<word>(value);
}

// While it lives nothing becomes a window and the first report is kept.
class checking {
  public:
    explicit checking(const char* const* names = nullptr, bool wide = false) {
        winio_check(report_, names, wide);
    }
    ~checking() { winio_check(nullptr, nullptr, false); }
    checking(const checking&) = delete;
    checking& operator=(const checking&) = delete;

    std::int32_t call(const std::string& format, const char* descriptor = nullptr,
                      std::vector<word> words = {}, language in = c,
                      std::vector<std::int32_t> lengths = {}) {
        report_[0] = 0;
        argument_source source;
        source.words = words.data();
        source.word_count = static_cast<std::int32_t>(words.size());
        source.lengths = lengths.data();
        source.length_count = static_cast<std::int32_t>(lengths.size());
        source.fortran = in.fortran;
        return winio(format.data(), format.size(), descriptor, source);
    }
    std::string report() const { return report_; }

    // The report of one whole call.
    std::string reports(const std::string& format, const char* descriptor = nullptr,
                        std::vector<word> words = {}, language in = c,
                        std::vector<std::int32_t> lengths = {}) {
        call(format, descriptor, std::move(words), in, std::move(lengths));
        return report();
    }

  private:
    char report_[check_report_size];
};

// The controls of the window under construction, but line ends.
inline std::vector<window_control*> controls() {
    std::vector<window_control*> found;
    for (window_control* at = current_window() ? current_window()->first_control : nullptr; at;
         at = at->next) {
        if (at->type != control_type::line_end) found.push_back(at);
    }
    return found;
}

// The literal texts of the window under construction, each line's pieces joined by "|".
inline std::string shown_text() {
    std::string all;
    for (const window_control* control : controls()) {
        if (control->type != control_type::text && control->type != control_type::blank) continue;
        if (!all.empty()) all += "|";
        all += control->text;
    }
    return all;
}

}  // namespace tarn::winio::test
