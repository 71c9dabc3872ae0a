#include "fio/number/integer_digits.h"

#include "fio/number/decimal.h"

namespace tarn::fio {

char* put_decimal_backwards(unsigned long long value, char* end) {
    while (value >= 100'000'000) {
        end -= 8;
        put_eight(end, static_cast<std::uint32_t>(value % 100'000'000));
        value /= 100'000'000;
    }
    auto rest = static_cast<std::uint32_t>(value);
    while (rest >= 100) {
        end -= 2;
        put_pair(end, rest % 100);
        rest /= 100;
    }
    if (rest >= 10) {
        end -= 2;
        put_pair(end, rest);
        return end;
    }
    *--end = static_cast<char>('0' + rest);
    return end;
}

char* put_decimal_backwards(unsigned __int128 value, char* end) {
    constexpr std::uint64_t chunk = powers_of_ten[19];
    while (value >> 64 != 0) {
        const auto low = static_cast<std::uint64_t>(value % chunk);
        value /= chunk;
        end -= 19;
        put_digits(end, low, 19);
    }
    return put_decimal_backwards(static_cast<unsigned long long>(value), end);
}

}  // namespace tarn::fio
