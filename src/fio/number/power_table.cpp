#include "fio/number/power_table.h"

namespace tarn::fio {

namespace {

// A power of ten without its power of two, 320 bits with the highest set. A multiplication or
// division by five cuts below the last bit, so that the greatest power is wrong by some hundreds
// of units of the last bit, far below the 128 bits that are kept.
struct LongPower {
    std::array<std::uint64_t, 5> words{};  // the highest last

    constexpr LongPower() { words[4] = std::uint64_t{1} << 63; }

    constexpr void times_five() {
        std::uint64_t carry = 0;
        for (std::uint64_t& word : words) {
            const unsigned __int128 product = static_cast<unsigned __int128>(word) * 5 + carry;
            word = static_cast<std::uint64_t>(product);
            carry = static_cast<std::uint64_t>(product >> 64);
        }
        // Between 2.5 and 5 times the unit: two or three bits have come out at the top.
        const int bits = carry >= 4 ? 3 : 2;
        for (std::size_t i = 0; i < words.size(); ++i) {
            const std::uint64_t above = i + 1 < words.size() ? words[i + 1] : carry;
            words[i] = words[i] >> bits | above << (64 - bits);
        }
    }

    constexpr void by_five() {
        std::uint64_t rest = 0;
        for (std::size_t i = words.size(); i-- != 0;) {
            const unsigned __int128 dividend =
                static_cast<unsigned __int128>(rest) << 64 | words[i];
            words[i] = static_cast<std::uint64_t>(dividend / 5);
            rest = static_cast<std::uint64_t>(dividend % 5);
        }
        while (words[4] >> 63 == 0) {
            for (std::size_t i = words.size(); i-- != 0;) {
                words[i] = words[i] << 1 | (i != 0 ? words[i - 1] >> 63 : 0);
            }
        }
    }

    constexpr Power cut() const { return {words[4], words[3]}; }
};

constexpr Power one_more(Power power) {
    ++power.low;
    if (power.low == 0) ++power.high;
    return power;
}

constexpr std::array<Power, greatest_power - least_power + 1> make_table() {
    std::array<Power, greatest_power - least_power + 1> table{};
    LongPower up;
    for (int k = 0; k <= greatest_power; ++k) {
        table[static_cast<std::size_t>(k - least_power)] = up.cut();
        up.times_five();
    }
    LongPower down;
    for (int k = -1; k >= least_power; --k) {
        down.by_five();
        const Power power = down.cut();
        table[static_cast<std::size_t>(k - least_power)] =
            k >= first_exact_power ? one_more(power) : power;
    }
    return table;
}

}  // namespace

constexpr std::array<Power, greatest_power - least_power + 1> power_table = make_table();

}  // namespace tarn::fio
