// Any text is a format, with any arguments and any description of them: in check mode each call
// ends, and leaves nothing behind.
#include "winio_check.h"

using namespace tarn::winio;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const bool fortran = (data[0] & 1) != 0, described = (data[0] & 2) != 0;
    const std::int32_t given = data[1] % fuzz_arguments::count;
    fuzz_arguments arguments(data, size);
    const std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);
    // A descriptor stands before a zero.
    const std::size_t zero = described ? text.find('\0') : std::string::npos;
    if (zero == std::string::npos) {
        check_call(text, nullptr, fortran, given, arguments);
    } else {
        check_call(text.substr(zero + 1), text.c_str(), fortran, given, arguments);
    }
    return 0;
}
