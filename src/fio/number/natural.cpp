#include "fio/number/natural.h"

#include <array>
#include <bit>
#include <cstring>

namespace tarn::fio {

namespace {

constexpr std::array<Word, 28> small_powers_of_five = [] {
    std::array<Word, 28> table{};
    table[0] = 1;
    for (std::size_t i = 1; i < table.size(); ++i) table[i] = table[i - 1] * 5;
    return table;
}();

// 5^32, 5^64, 5^128 ... 5^8192, one behind the other.
constexpr unsigned first_big_power = 5;  // log2 of 32
constexpr unsigned last_big_power = 13;

struct BigPowers {
    std::array<Word, 616> words{};
    std::array<std::uint16_t, last_big_power - first_big_power + 2> begin{};
};

constexpr BigPowers big_powers = [] {
    BigPowers powers;
    // 5^32 = 5^16 * 5^16.
    const Wide first = Wide{small_powers_of_five[16]} * small_powers_of_five[16];
    powers.words[0] = static_cast<Word>(first);
    powers.words[1] = static_cast<Word>(first >> 64);
    std::size_t begin = 0;
    std::size_t end = 2;
    powers.begin[1] = 2;
    for (unsigned i = 2; i < powers.begin.size(); ++i) {
        const std::size_t size = end - begin;
        for (std::size_t a = 0; a < size; ++a) {
            Word carry = 0;
            for (std::size_t b = 0; b < size; ++b) {
                const Wide sum = Wide{powers.words[begin + a]} * powers.words[begin + b] +
                                 powers.words[end + a + b] + carry;
                powers.words[end + a + b] = static_cast<Word>(sum);
                carry = static_cast<Word>(sum >> 64);
            }
            powers.words[end + a + size] = carry;
        }
        begin = end;
        end += 2 * size;
        if (powers.words[end - 1] == 0) --end;
        powers.begin[i] = static_cast<std::uint16_t>(end);
    }
    return powers;
}();

}  // namespace

std::size_t Natural::bit_length() const {
    return size_ == 0 ? 0 : size_ * 64 - std::countl_zero(words_[size_ - 1]);
}

void Natural::multiply_add(Word factor, Word summand) {
    Word carry = summand;
    for (std::size_t i = 0; i < size_; ++i) {
        const Wide sum = Wide{words_[i]} * factor + carry;
        words_[i] = static_cast<Word>(sum);
        carry = static_cast<Word>(sum >> 64);
    }
    if (carry != 0) words_[size_++] = carry;
}

void Natural::multiply(const Word* factor, std::size_t size) {
    if (size_ == 0) return;
    Word own[capacity];
    std::memcpy(own, words_, size_ * sizeof(Word));
    std::memset(words_, 0, (size_ + size) * sizeof(Word));
    for (std::size_t a = 0; a < size; ++a) {
        Word carry = 0;
        for (std::size_t b = 0; b < size_; ++b) {
            const Wide sum = Wide{own[b]} * factor[a] + words_[a + b] + carry;
            words_[a + b] = static_cast<Word>(sum);
            carry = static_cast<Word>(sum >> 64);
        }
        words_[a + size_] = carry;
    }
    size_ += size;
    trim();
}

void Natural::multiply_by_power_of_five(unsigned exponent) {
    unsigned low = exponent & ((1U << first_big_power) - 1);
    if (low > 27) {
        multiply_add(small_powers_of_five[27], 0);
        low -= 27;
    }
    if (low != 0) multiply_add(small_powers_of_five[low], 0);
    for (unsigned i = first_big_power; i <= last_big_power; ++i) {
        // What the table doesn't reach is made of its last entry.
        unsigned times = (exponent >> i) & 1;
        if (i == last_big_power) times = exponent >> i;
        const std::size_t begin = big_powers.begin[i - first_big_power];
        const std::size_t end = big_powers.begin[i - first_big_power + 1];
        for (; times != 0; --times) multiply(&big_powers.words[begin], end - begin);
    }
}

void Natural::shift_left(std::size_t bits) {
    if (size_ == 0) return;
    const std::size_t words = bits / 64;
    const unsigned rest = bits % 64;
    if (rest != 0) {
        const Word top = words_[size_ - 1] >> (64 - rest);
        for (std::size_t i = size_ - 1; i != 0; --i) {
            words_[i] = words_[i] << rest | words_[i - 1] >> (64 - rest);
        }
        words_[0] <<= rest;
        if (top != 0) words_[size_++] = top;
    }
    if (words != 0) {
        std::memmove(words_ + words, words_, size_ * sizeof(Word));
        std::memset(words_, 0, words * sizeof(Word));
        size_ += words;
    }
}

Word Natural::divide(const Natural& divisor) {
    const std::size_t n = divisor.size_;
    if (size_ < n) return 0;
    Word top = 0;
    if (size_ > n) {
        top = words_[n];
    } else {
        size_ = n + 1;
        words_[n] = 0;
    }
    // The two highest words of the dividend by the highest of the divisor give the quotient or one
    // or two more.
    const Word leading = divisor.words_[n - 1];
    Word quotient = ~Word{0};
    if (top < leading) {
        quotient = static_cast<Word>((Wide{top} << 64 | words_[n - 1]) / leading);
    }
    if (quotient != 0) {
        Word carry = 0;
        Word borrow = 0;
        for (std::size_t i = 0; i < n; ++i) {
            const Wide product = Wide{divisor.words_[i]} * quotient + carry;
            carry = static_cast<Word>(product >> 64);
            const Wide difference = Wide{words_[i]} - static_cast<Word>(product) - borrow;
            words_[i] = static_cast<Word>(difference);
            borrow = static_cast<Word>(difference >> 64) & 1;
        }
        words_[n] = top - carry - borrow;
        while (words_[n] != 0) {
            --quotient;
            Word up = 0;
            for (std::size_t i = 0; i < n; ++i) {
                const Wide sum = Wide{words_[i]} + divisor.words_[i] + up;
                words_[i] = static_cast<Word>(sum);
                up = static_cast<Word>(sum >> 64);
            }
            words_[n] += up;
        }
    }
    trim();
    return quotient;
}

int Natural::compare(const Natural& left, const Natural& right) {
    if (left.size_ != right.size_) return left.size_ < right.size_ ? -1 : 1;
    for (std::size_t i = left.size_; i-- != 0;) {
        if (left.words_[i] != right.words_[i]) return left.words_[i] < right.words_[i] ? -1 : 1;
    }
    return 0;
}

int Natural::compare_double(const Natural& left, const Natural& right) {
    const std::size_t left_bits = left.is_zero() ? 0 : left.bit_length() + 1;
    const std::size_t right_bits = right.bit_length();
    if (left_bits != right_bits) return left_bits < right_bits ? -1 : 1;
    for (std::size_t i = right.size_; i-- != 0;) {
        Word doubled = i < left.size_ ? left.words_[i] << 1 : 0;
        if (i != 0) doubled |= left.words_[i - 1] >> 63;
        if (doubled != right.words_[i]) return doubled < right.words_[i] ? -1 : 1;
    }
    return 0;
}

}  // namespace tarn::fio
