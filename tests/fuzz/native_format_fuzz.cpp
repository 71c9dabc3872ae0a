// Native formats from anywhere: as text, as a code stream, and run with items of every type. Each
// comes to an end, within its buffers, and a stream holds what its text said.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "fio/native/format_parser.h"
#include "fio/native/format_stream.h"
#include "fio/native/io_type.h"
#include "fio/native/state.h"

using namespace tarn::fio;
using namespace tarn::fio::native;

namespace {

constexpr std::size_t record_length = 200;
constexpr std::size_t records = 20;

void require(bool holds) {
    if (!holds) std::abort();
}

bool stop_at_first(std::int32_t) {
    return false;
}
bool ignore_all(std::int32_t) {
    return true;
}

// A statement on an internal file, without compiled code around it.
void begin(ActionCode action, std::string& file) {
    static std::int32_t iostat;
    beginIO(action);
    IO_type& io = current();
    io.unit = nowhere_unit();
    io.unit_number = -1;
    io.target_unit = io.unit;
    io.iostat = {&iostat, TypeCode::integer4};
    io.iostat_given = true;
    io.internal_file = true;
    io.internal_start = io.internal_cursor = file.data();
    io.internal_end = file.data() + file.size();
    io.internal_record_length = record_length;
    io.internal_records_left = records;
}

void end() {
    IO_type& io = current();
    if (!io.statement_aborted) (void)WSF2__();
    io.busy = false;
    io.statement_aborted = false;
    state().in_io = false;
}

void write_items() {
    const std::int64_t big = -1234567890123456789;
    const double real = 12345.678;
    const long double wide = -1e4000L;
    const float undefined[2] = {1.5F, -0.0F};
    IO_type& io = current();
    for (int round = 0; round < 3; ++round) {
        io.item_size = 4;
        if (!I_WSF_main(&round, 1)) return;
        io.item_size = 8;
        if (!I_WSF_main(&big, 1) || !R_WSF_main(&real, 1)) return;
        io.item_size = 10;
        if (!R_WSF_main(&wide, 1)) return;
        io.item_size = 4;
        if (!L_WSF_main(&round, 1) || !C_WSF_main(undefined, 1)) return;
        if (!CH__WSF("some text", 1, 9)) return;
    }
}

void read_items() {
    std::int64_t integers[2];
    long double reals[2];
    char text[9];
    IO_type& io = current();
    for (int round = 0; round < 3; ++round) {
        for (const int size : {1, 2, 4, 8}) {
            io.item_size = size;
            if (!I_RSF_main(integers, 1)) return;
        }
        for (const int size : {4, 8, 10}) {
            io.item_size = size;
            if (!R_RSF_main(reals, 1) || !C_RSF_main(reals, 1)) return;
        }
        io.item_size = 4;
        if (!L_RSF_main(integers, 1) || !CH__RSF(text, 1, sizeof text)) return;
    }
}

template <typename SetFormat>
void run(SetFormat set_format, const std::string& input) {
    std::string file(record_length * records, '~');
    begin(ActionCode::write_formatted, file);
    set_format(current());
    if (RSF1__(nullptr, false, 0)) write_items();
    end();
    file.assign(record_length * records, ' ');
    file.replace(0, std::min(input.size(), file.size()), input, 0, file.size());
    begin(ActionCode::read_formatted, file);
    set_format(current());
    if (RSF1__(nullptr, false, 0)) read_items();
    end();
}

void check_text(const std::string& text, const std::string& input) {
    std::vector<std::uint16_t> code;
    Format format;
    Format again;
    const bool parsed = parse_format(text, false, stop_at_first, format);
    if (parsed && IO_parse_format_string(text, false, stop_at_first, code) != 0) {
        require(decode_format(code.data(), code.data() + code.size(), again) == 0);
        require(again.text.size() >= format.text.size() || again.text == format.text);
        std::vector<std::uint16_t> same;
        require(encode_format(again, same) && same == code);
    }
    require(parse_format(text, true, ignore_all, format));
    run(
        [&](IO_type& io) {
            io.format_text = text.data();
            io.format_text_length = static_cast<std::ptrdiff_t>(text.size());
            io.run_time_format = true;
        },
        input);
}

void check_stream(const std::string& bytes, const std::string& input) {
    std::vector<std::uint16_t> words(bytes.size() / 2 + 3);
    words[0] = stream_start;
    words[1] = 0;
    words[2] = 1;
    std::memcpy(words.data() + 3, bytes.data(), (words.size() - 3) * 2);
    run(
        [&](IO_type& io) {
            io.format_ptr = words.data();
            io.format_end = words.data() + words.size();
        },
        input);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    IO_initialise();
    const std::size_t split = 2 + data[1] % (size - 1);
    const std::string format(reinterpret_cast<const char*>(data) + 2, split - 2);
    const std::string input(reinterpret_cast<const char*>(data) + split, size - split);
    if ((data[0] & 1) != 0) {
        check_stream(format, input);
    } else {
        check_text(format, input);
    }
    return 0;
}
