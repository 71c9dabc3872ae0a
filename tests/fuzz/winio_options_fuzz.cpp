// Any text is the option list of any code, of a call and of __winop.
#include "winio/options.h"
#include "winio_check.h"

using namespace tarn::winio;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const char* const codes[] = {
        "%bn", "%br", "%bv", "%cd", "%ch", "%cl", "%co", "%cw",  "%dw",  "%eb",   "%el", "%em",
        "%eq", "%gr", "%he", "%ib", "%ld", "%ls", "%lb", "%lv",  "%lw",  "%mb",   "%ms", "%ob",
        "%og", "%pb", "%pl", "%ps", "%rd", "%rf", "%rs", "%re",  "%sb",  "%sl",   "%sy", "%th",
        "%tv", "%tx", "%ws", "%ww", "%bg", "%tc", "%ts", "%`ls", "%?rd", "%bo%pl"};
    if (size < 2) return 0;
    fuzz_arguments arguments(data, size);
    const std::string options(reinterpret_cast<const char*>(data) + 2, size - 2);
    const std::string code = codes[data[0] % std::size(codes)];
    check_call(code + "[" + options, nullptr, (data[1] & 1) != 0, fuzz_arguments::count, arguments);
    char report[check_report_size];
    winio_check(report, nullptr, false);
    winop((code + "[" + options).c_str());
    std::free(get_preloaded_block(control_type::option_button));
    std::free(get_preloaded_block(control_type::plot));
    const char* cursor = options.c_str();
    get_user_colour(cursor);
    double number;
    get_float(cursor, number);
    check_sq_bra(options.c_str(), "MN");
    winio_check(nullptr, nullptr, false);
    return 0;
}
