// The report of a managed program, which catches its errors itself and asks us to show them.
#pragma once

#include <string>
#include <string_view>

namespace tarn::failure {

struct ManagedReport {
    std::string_view title;
    std::string heading;
    std::string stack;  // one line a frame
};

ManagedReport managed_report(std::string_view origin, std::string_view message,
                             std::string_view stack_text);

}  // namespace tarn::failure
