// Numbers to text and back, against the C library: each case of ours stands beside what snprintf
// or strtod takes for the same values.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "fio/gnu/edit_out.h"
#include "fio/number/decimal.h"

namespace {

using namespace tarn::fio;

enum class Range { plain, whole };

// Values between -1000 and 1000, or of any exponent.
std::vector<double> values(Range range) {
    std::mt19937_64 random(7);
    std::vector<double> result(1000);
    for (double& value : result) {
        const std::uint64_t bits = random();
        value = static_cast<double>(bits >> 11) / (1LL << 52) * 1000 - 1000;
        if (range == Range::whole) std::memcpy(&value, &bits, sizeof value);
        if (!(value - value == 0)) value = 1;
    }
    return result;
}

template <typename Value>
std::vector<Value> values_of(Range range) {
    const std::vector<double> plain = values(range);
    return {plain.begin(), plain.end()};
}

template <typename Body, typename Value>
void measure(benchmark::State& state, const std::vector<Value>& items, Body body) {
    for (auto _ : state) {
        for (const Value& item : items) {
            body(item);
            benchmark::ClobberMemory();
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items.size()));
}

template <typename Value>
void field(benchmark::State& state, int kind, FieldEdit edit, Range range) {
    char text[512];
    measure(state, values_of<Value>(range), [&](const Value& value) {
        benchmark::DoNotOptimize(put_real(text, &value, kind, edit, {}));
    });
}

template <typename Value>
void list_item(benchmark::State& state, int kind, Range range) {
    char text[list_item_bound];
    measure(state, values_of<Value>(range), [&](const Value& value) {
        benchmark::DoNotOptimize(put_list_real(text, &value, kind, {}));
    });
}

void c_library_field(benchmark::State& state, const char* format, Range range) {
    char text[512];
    measure(state, values(range), [&](double value) {
        benchmark::DoNotOptimize(std::snprintf(text, sizeof text, format, value));
    });
}

void native(benchmark::State& state, std::int32_t count) {
    char digits[max_native_digits];
    measure(state, values_of<long double>(Range::plain), [&](long double value) {
        benchmark::DoNotOptimize(native_digits(value, count, digits));
    });
}

void integer(benchmark::State& state) {
    char text[32];
    std::mt19937_64 random(3);
    std::vector<std::int64_t> items(1000);
    for (auto& item : items) item = static_cast<std::int32_t>(random() >> (32 + random() % 31));
    measure(state, items, [&](std::int64_t value) {
        benchmark::DoNotOptimize(put_integer(text, value, 4, {Edit::I, 12}, {}));
    });
}

struct Text {
    std::string whole;  // as strtod takes it
    std::string digits;
    std::int64_t exponent = 0;
};

std::vector<Text> texts(Range range, std::size_t count) {
    std::vector<Text> result;
    for (const double value : values(range)) {
        char digits[32];
        const BinaryReal real = take_apart(value);
        const DecimalDigits made = significant_digits(real, count, Rounding::nearest, digits);
        Text text;
        text.digits.assign(digits, made.count);
        text.exponent = made.point - static_cast<std::int64_t>(made.count);
        text.whole = text.digits + "E" + std::to_string(text.exponent);
        result.push_back(text);
    }
    return result;
}

template <typename Value>
void read(benchmark::State& state, int kind, std::size_t count, Range range) {
    Value value{};
    measure(state, texts(range, count), [&](const Text& text) {
        to_binary({false, text.digits.data(), text.digits.size(), text.exponent},
                  Rounding::unspecified, kind, &value);
    });
}

void c_library_read(benchmark::State& state, std::size_t count, Range range) {
    measure(state, texts(range, count), [](const Text& text) {
        benchmark::DoNotOptimize(std::strtod(text.whole.c_str(), nullptr));
    });
}

}  // namespace

int main(int argc, char** argv) {
    using benchmark::RegisterBenchmark;
    struct Shown {
        const char* name;
        FieldEdit edit;
    };
    for (const auto& [name, edit] : {Shown{"E24.16", {Edit::E, 24, 16}},
                                     {"F12.4", {Edit::F, 12, 4}},
                                     {"ES15.6", {Edit::ES, 15, 6}},
                                     {"EN15.6", {Edit::EN, 15, 6}},
                                     {"G15.7", {Edit::G, 15, 7}},
                                     {"G0", {Edit::G, 0}},
                                     {"E34.26", {Edit::E, 34, 26}}}) {
        RegisterBenchmark((std::string("write/REAL(8)/") + name).c_str(), field<double>, 8, edit,
                          Range::plain);
    }
    const FieldEdit e24{Edit::E, 24, 16};
    RegisterBenchmark("write/REAL(8)/E24.16/any", field<double>, 8, e24, Range::whole);
    RegisterBenchmark("write/snprintf/%24.15e", c_library_field, "%24.15e", Range::plain);
    RegisterBenchmark("write/snprintf/%24.15e/any", c_library_field, "%24.15e", Range::whole);
    RegisterBenchmark("write/snprintf/%12.4f", c_library_field, "%12.4f", Range::plain);
    const FieldEdit e15{Edit::E, 15, 7};
    const FieldEdit e28{Edit::E, 28, 20};
    const FieldEdit e45{Edit::E, 45, 35};
    RegisterBenchmark("write/REAL(4)/E15.7", field<float>, 4, e15, Range::plain);
    RegisterBenchmark("write/REAL(10)/E28.20", field<long double>, 10, e28, Range::plain);
    RegisterBenchmark("write/REAL(16)/E45.35", field<__float128>, 16, e45, Range::plain);
    RegisterBenchmark("write/REAL(4)/list", list_item<float>, 4, Range::plain);
    RegisterBenchmark("write/REAL(8)/list", list_item<double>, 8, Range::plain);
    RegisterBenchmark("write/REAL(8)/list/any", list_item<double>, 8, Range::whole);
    RegisterBenchmark("write/REAL(10)/list", list_item<long double>, 10, Range::plain);
    RegisterBenchmark("write/REAL(16)/list", list_item<__float128>, 16, Range::plain);
    RegisterBenchmark("write/INTEGER(4)/I12", integer);
    for (const std::int32_t count : {17, 20, -4}) {
        RegisterBenchmark(("native digits/" + std::to_string(count)).c_str(), native, count);
    }
    for (const std::size_t count : {6, 17}) {
        const std::string digits = "/" + std::to_string(count) + " digits";
        RegisterBenchmark(("read/REAL(8)" + digits).c_str(), read<double>, 8, count, Range::plain);
        RegisterBenchmark(("read/strtod" + digits).c_str(), c_library_read, count, Range::plain);
    }
    RegisterBenchmark("read/REAL(8)/17 digits/any", read<double>, 8, 17, Range::whole);
    RegisterBenchmark("read/strtod/17 digits/any", c_library_read, 17, Range::whole);
    RegisterBenchmark("read/REAL(4)/9 digits", read<float>, 4, 9, Range::plain);
    RegisterBenchmark("read/REAL(10)/17 digits", read<long double>, 10, 17, Range::plain);
    RegisterBenchmark("read/REAL(16)/17 digits", read<__float128>, 16, 17, Range::plain);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
