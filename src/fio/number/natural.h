// Natural numbers of many words, for the conversions that need exact arithmetic. They live on the
// stack and have room for the widest number that a conversion meets: the digits of the halfway
// point between two subnormal REAL(16) values.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::fio {

using Word = std::uint64_t;
using Wide = unsigned __int128;

class Natural {
  public:
    static constexpr std::size_t capacity = 640;

    explicit Natural(Wide value = 0) {
        if (value != 0) words_[size_++] = static_cast<Word>(value);
        if (value >> 64 != 0) words_[size_++] = static_cast<Word>(value >> 64);
    }
    Natural(const Natural&) = delete;
    Natural& operator=(const Natural&) = delete;

    bool is_zero() const { return size_ == 0; }
    // Bits up to the highest that is set.
    std::size_t bit_length() const;

    // this = this * factor + summand
    void multiply_add(Word factor, Word summand);
    void multiply_by_power_of_five(unsigned exponent);
    void shift_left(std::size_t bits);

    // The quotient this / divisor, which must be less than 2^64; the remainder stays here. The
    // divisor's highest word has its highest bit set.
    Word divide(const Natural& divisor);

    // Sign of left - right.
    static int compare(const Natural& left, const Natural& right);
    // Sign of 2 * left - right.
    static int compare_double(const Natural& left, const Natural& right);

  private:
    void multiply(const Word* factor, std::size_t size);
    void trim() {
        while (size_ != 0 && words_[size_ - 1] == 0) --size_;
    }

    std::size_t size_ = 0;  // words in use; the highest of them is not zero
    Word words_[capacity];
};

}  // namespace tarn::fio
