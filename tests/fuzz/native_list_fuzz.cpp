// List-directed input from anywhere, into items of every type.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fio/native/io_type.h"
#include "fio/native/state.h"

using namespace tarn::fio;
using namespace tarn::fio::native;

namespace {

// One record a line of the input.
struct Records {
    std::string text;
    std::size_t length = 1;
    std::int64_t count = 0;

    explicit Records(const std::string& input) {
        std::size_t start = 0;
        for (std::size_t i = 0; i <= input.size(); ++i) {
            if (i < input.size() && input[i] != '\n') continue;
            length = std::max(length, i - start);
            start = i + 1;
        }
        length = std::min<std::size_t>(length, 1000);
        start = 0;
        for (std::size_t i = 0; i <= input.size(); ++i) {
            if (i < input.size() && input[i] != '\n') continue;
            std::string line = input.substr(start, std::min(i - start, length));
            line.resize(length, ' ');
            text += line;
            ++count;
            start = i + 1;
        }
    }
};

bool read_item(IO_type& io, unsigned char kind) {
    std::int64_t integers[2] = {};
    long double reals[2] = {};
    char text[9];
    constexpr std::int32_t integer_sizes[] = {1, 2, 4, 8};
    constexpr std::int32_t real_sizes[] = {4, 8, 10};
    const unsigned size = kind / 5U;
    switch (kind % 5) {
        case 0:
            io.item_size = integer_sizes[size % 4];
            return I_RSF_main(integers, 1);
        case 1:
            io.item_size = real_sizes[size % 3];
            return R_RSF_main(reals, 1);
        case 2:
            io.item_size = real_sizes[size % 3];
            return C_RSF_main(reals, 1);
        case 3:
            io.item_size = integer_sizes[size % 3];
            return L_RSF_main(integers, 1);
        default:
            return CH__RSF(text, 1, size % sizeof text);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kinds = 8;
    if (size < kinds + 1) return 0;
    static std::int32_t iostat;
    IO_initialise();
    Records records(std::string(reinterpret_cast<const char*>(data) + kinds + 1, size - kinds - 1));
    beginIO(ActionCode::read_formatted);
    IO_type& io = current();
    io.unit = io.target_unit = nowhere_unit();
    io.unit_number = -1;
    io.iostat = {&iostat, TypeCode::integer4};
    io.iostat_given = true;
    io.internal_file = true;
    io.internal_start = io.internal_cursor = records.text.data();
    io.internal_end = io.internal_start + records.text.size();
    io.internal_record_length = static_cast<std::int64_t>(records.length);
    io.internal_records_left = records.count;
    state().ansi_mode = (data[kinds] & 1) != 0;
    bool go_on = RSF1__(nullptr, false, 0);
    for (int round = 0; go_on && round < 4; ++round)
        for (std::size_t i = 0; go_on && i < kinds; ++i) go_on = read_item(io, data[i]);
    if (go_on) (void)WSF2__();
    io.busy = false;
    io.statement_aborted = false;
    state().in_io = false;
    return 0;
}
