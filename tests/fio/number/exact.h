// Exact decimal texts of binary numbers by the arithmetic of a school book, slow and plain, for
// the tests to compare with.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fio/number/decimal.h"

namespace exact {

// Digits of a number with `places` of them behind the point; the least significant part first, nine
// digits a part.
struct Decimal {
    std::vector<std::uint32_t> parts;
    std::int64_t places = 0;

    void multiply(std::uint32_t factor) {
        std::uint64_t carry = 0;
        for (std::uint32_t& part : parts) {
            carry += std::uint64_t{part} * factor;
            part = static_cast<std::uint32_t>(carry % 1'000'000'000);
            carry /= 1'000'000'000;
        }
        if (carry != 0) parts.push_back(static_cast<std::uint32_t>(carry));
    }
};

// All digits of significand x 2^exponent, the first not '0', and the decimal point's place.
struct Text {
    std::string digits;
    std::int64_t point = 0;  // 0.digits x 10^point
};

inline Text text_of(unsigned __int128 significand, int exponent) {
    Decimal number;
    for (; significand != 0; significand /= 1'000'000'000) {
        number.parts.push_back(static_cast<std::uint32_t>(significand % 1'000'000'000));
    }
    // A halving is a multiplication by 5 and one place more behind the point.
    number.places = exponent < 0 ? -exponent : 0;
    const std::uint32_t base = exponent < 0 ? 5 : 2;
    for (int left = exponent < 0 ? -exponent : exponent; left > 0;) {
        const int step = left < 12 ? left : 12;
        std::uint32_t factor = 1;
        for (int i = 0; i < step; ++i) factor *= base;
        number.multiply(factor);
        left -= step;
    }
    Text text;
    for (auto part = number.parts.rbegin(); part != number.parts.rend(); ++part) {
        const std::string digits = std::to_string(*part);
        text.digits += std::string(9 - digits.size(), '0') + digits;
    }
    text.point = static_cast<std::int64_t>(text.digits.size()) - number.places;
    const std::size_t zeros = text.digits.find_first_not_of('0');
    text.digits.erase(0, zeros);
    text.point -= static_cast<std::int64_t>(zeros);
    return text;
}

// Cuts a text behind its first `keep` digits and rounds; trailing zeros go.
inline Text rounded(Text text, std::int64_t keep, bool negative, tarn::fio::Rounding round) {
    using tarn::fio::Rounding;
    if (keep < 0) {
        text.digits.insert(0, static_cast<std::size_t>(-keep), '0');
        text.point -= keep;
        keep = 0;
    }
    const auto cut = static_cast<std::size_t>(keep);
    if (cut < text.digits.size()) {
        const std::string tail = text.digits.substr(cut);
        text.digits.resize(cut);
        const bool exact = tail.find_first_not_of('0') == std::string::npos;
        const std::string half = "5" + std::string(tail.size() - 1, '0');
        const bool odd = cut != 0 && (text.digits.back() - '0') % 2 == 1;
        bool up = false;
        switch (round) {
            case Rounding::up:
                up = !exact && !negative;
                break;
            case Rounding::down:
                up = !exact && negative;
                break;
            case Rounding::zero:
                break;
            case Rounding::compatible:
                up = tail >= half;
                break;
            default:
                up = tail > half || (tail == half && odd);
        }
        if (up) {
            std::size_t at = cut;
            while (at != 0 && text.digits[at - 1] == '9') text.digits[--at] = '0';
            if (at != 0) {
                ++text.digits[at - 1];
            } else {
                text.digits.insert(0, 1, '1');
                ++text.point;
            }
        }
    }
    while (!text.digits.empty() && text.digits.back() == '0') text.digits.pop_back();
    return text;
}

}  // namespace exact
