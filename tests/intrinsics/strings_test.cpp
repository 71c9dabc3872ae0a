// Searches and comparisons of character values, held against plain loops on random texts whose
// characters come from so small an alphabet that everything happens often.
#include "intrinsics/characters/strings.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "platform/kernel/cpu.h"

namespace tarn::intrinsics {
namespace {

using platform::VectorLevel;

template <class Char>
std::size_t plain_index(const std::vector<Char>& text, const std::vector<Char>& part, From from) {
    std::size_t found = 0;
    for (std::size_t at = 0; at + part.size() <= text.size(); ++at) {
        if (!std::equal(part.begin(), part.end(), text.begin() + static_cast<std::ptrdiff_t>(at)))
            continue;
        found = at + 1;
        if (from == From::start) break;
    }
    return found;
}

template <class Char>
std::size_t plain_set(const std::vector<Char>& text, const std::vector<Char>& set, Stop stop,
                      From from) {
    std::size_t found = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool member = std::find(set.begin(), set.end(), text[at]) != set.end();
        if (member != (stop == Stop::at_member)) continue;
        found = at + 1;
        if (from == From::start) break;
    }
    return found;
}

template <class Char>
int plain_order(std::vector<Char> one, std::vector<Char> two) {
    const std::size_t length = std::max(one.size(), two.size());
    one.resize(length, blank<Char>);
    two.resize(length, blank<Char>);
    return one < two ? -1 : one > two;
}

int sign(int value) {
    return value < 0 ? -1 : value > 0;
}

template <class Char>
class Draw {
  public:
    // `spread`: how many characters there are; the first is the blank.
    std::vector<Char> text(std::size_t length, unsigned spread) {
        std::vector<Char> made(length);
        for (Char& c : made) {
            const auto i = static_cast<Char>(number(spread));
            c = i == 0 ? blank<Char> : static_cast<Char>(i * 37 + (sizeof(Char) == 4 ? i << 8 : 0));
        }
        return made;
    }
    std::size_t number(std::size_t below) { return random_() % below; }

  private:
    std::mt19937 random_{12345};
};

template <class Char>
void compare_with_loops(VectorLevel level) {
    platform::known_vector_level = level;
    Draw<Char> draw;
    for (int round = 0; round < 20000; ++round) {
        const std::size_t limit = round % 2 ? 20 : 300;
        const unsigned spread = 2 + static_cast<unsigned>(draw.number(round % 5 == 0 ? 240 : 4));
        const auto text = draw.text(draw.number(limit), spread);
        const auto length = text.size();
        auto other = text;
        other.resize(draw.number(limit), blank<Char>);
        if (!other.empty()) other[draw.number(other.size())] = draw.text(1, spread)[0];
        ASSERT_EQ(sign(compare(text.data(), length, other.data(), other.size())),
                  plain_order(text, other));

        const std::vector<Char> blanks(1, blank<Char>);
        ASSERT_EQ(trimmed_length(text.data(), length),
                  plain_set(text, blanks, Stop::at_stranger, From::end));
        auto part = draw.text(1 + draw.number(4), spread);
        if (round % 3 == 0 && length > 0) {
            const auto at = static_cast<std::ptrdiff_t>(draw.number(length));
            part.assign(
                text.begin() + at,
                text.begin() + at + static_cast<std::ptrdiff_t>(draw.number(length + 1 - at)));
            if (part.empty()) part = blanks;
        }
        const auto set = draw.text(1 + draw.number(round % 7 == 0 ? 60 : 12), spread);
        for (const From from : {From::start, From::end}) {
            ASSERT_EQ(index_of(text.data(), length, part.data(), part.size(), from),
                      plain_index(text, part, from));
            for (const Stop stop : {Stop::at_member, Stop::at_stranger})
                ASSERT_EQ(position_of_set(text.data(), length, set.data(), set.size(), stop, from),
                          plain_set(text, set, stop, from));
        }

        std::vector<Char> left(length), right(length);
        adjust_left(left.data(), text.data(), length);
        adjust_right(right.data(), text.data(), length);
        const auto kept = trimmed_length(text.data(), length);
        const auto first = plain_set(text, blanks, Stop::at_stranger, From::start);
        for (std::size_t i = 0; i < length; ++i) {
            const auto from_left = i + (first == 0 ? length : first - 1);
            ASSERT_EQ(left[i], from_left < length ? text[from_left] : blank<Char>);
            ASSERT_EQ(right[i], i < length - kept ? blank<Char> : text[i - (length - kept)]);
        }
    }
    platform::known_vector_level = VectorLevel::unknown;
}

TEST(Strings, EveryOperationAgreesWithALoop) {
    compare_with_loops<std::uint8_t>(VectorLevel::base);
    compare_with_loops<std::uint32_t>(VectorLevel::base);
    if (platform::vector_level() < VectorLevel::avx2) GTEST_SKIP() << "no AVX2 here";
    compare_with_loops<std::uint8_t>(VectorLevel::avx2);
    compare_with_loops<std::uint32_t>(VectorLevel::avx2);
}

TEST(Strings, EmptyValues) {
    const std::uint8_t a = 'a';
    const std::uint8_t* const nothing = nullptr;
    EXPECT_EQ(index_of(&a, 1, nothing, 0, From::start), 1U);
    EXPECT_EQ(index_of(&a, 1, nothing, 0, From::end), 2U);
    EXPECT_EQ(index_of(nothing, 0, &a, 1, From::start), 0U);
    EXPECT_EQ(position_of_set(&a, 1, nothing, 0, Stop::at_member, From::start), 0U);
    EXPECT_EQ(position_of_set(&a, 1, nothing, 0, Stop::at_stranger, From::start), 1U);
    EXPECT_EQ(position_of_set(&a, 1, nothing, 0, Stop::at_stranger, From::end), 1U);
    EXPECT_EQ(trimmed_length(nothing, 0), 0U);
    EXPECT_EQ(compare(nothing, 0, nothing, 0), 0);
    EXPECT_LT(compare(nothing, 0, &a, 1), 0);
}

// Texts that the quick search meets candidates in at every place.
TEST(Strings, RepetitiveTextsAreSearchedInLinearTime) {
    constexpr std::size_t length = 2000000;
    std::vector<std::uint8_t> text(length, 'a');
    std::vector<std::uint8_t> part(length / 2, 'a');
    part[part.size() / 2] = 'b';
    EXPECT_EQ(index_of(text.data(), length, part.data(), part.size(), From::start), 0U);
    EXPECT_EQ(index_of(text.data(), length, part.data(), part.size(), From::end), 0U);
    text[length / 2] = 'b';
    const std::size_t place = length / 2 - part.size() / 2 + 1;
    EXPECT_EQ(index_of(text.data(), length, part.data(), part.size(), From::start), place);
    EXPECT_EQ(index_of(text.data(), length, part.data(), part.size(), From::end), place);
}

TEST(Strings, TheLinearSearchAgreesWithALoop) {
    Draw<std::uint8_t> draw;
    for (int round = 0; round < 20000; ++round) {
        const auto text = draw.text(1 + draw.number(60), 2 + round % 2);
        auto part = draw.text(1 + draw.number(12), 2);
        if (part.size() > text.size()) part.resize(text.size());
        for (const From from : {From::start, From::end})
            ASSERT_EQ(
                find_part_linear(text.data(), text.size(), part.data(), part.size(), from) + 1,
                plain_index(text, part, from));
    }
}

}  // namespace
}  // namespace tarn::intrinsics
