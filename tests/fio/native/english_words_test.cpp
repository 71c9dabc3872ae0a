#include "fio/native/english_words.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace tarn::fio::native {
namespace {

TEST(EnglishWords, Numbers) {
    const struct {
        std::int64_t value;
        const char* words;
    } cases[] = {
        {0, "ZERO"},
        {-20, "MINUS TWENTY"},
        {13, "THIRTEEN"},
        {40, "FORTY"},
        {99, "NINETY NINE"},
        {100, "ONE HUNDRED"},
        {101, "ONE HUNDRED AND ONE"},
        {1001, "ONE THOUSAND AND ONE"},
        {1100, "ONE THOUSAND ONE HUNDRED"},
        {110000, "ONE HUNDRED AND TEN THOUSAND"},
        {1000001, "ONE MILLION AND ONE"},
        {1000100, "ONE MILLION ONE HUNDRED"},
        {1234567, "ONE MILLION TWO HUNDRED AND THIRTY FOUR THOUSAND FIVE HUNDRED AND SIXTY SEVEN"},
        {2000000000, "TWO THOUSAND MILLION"},
        {1000000000000, "ONE MILLION MILLION"},
    };
    for (const auto& c : cases) {
        char words[words_room];
        const std::size_t length = english_words(c.value, words);
        EXPECT_EQ(std::string(words, length), c.words);
    }
    char words[words_room];
    EXPECT_EQ(english_words(std::numeric_limits<std::int64_t>::min(), words), words_room + 1);
}

}  // namespace
}  // namespace tarn::fio::native
