// What stands below the controls: the text of an edit field with its lines, the items of a list,
// letters.
#include <gtest/gtest.h>
#include <random>
#include <string>

#include "platform/controls/edit_text.h"
#include "platform/controls/letters.h"
#include "platform/controls/list_items.h"

namespace {
using namespace tarn::platform;

TEST(GapText, EqualsAStringAfterManyChanges) {
    GapText text;
    std::string plain = "first\nsecond\n";
    text.assign(plain);
    std::mt19937 random(7);
    const std::string pieces[] = {
        "", "x", "\n", "wide text with blanks", "\r\n", std::string(300, 'q')};
    for (int i = 0; i < 4000; ++i) {
        const std::size_t at = random() % (plain.size() + 1);
        const std::size_t removed = std::min<std::size_t>(random() % 40, plain.size() - at);
        const std::string& with = pieces[random() % std::size(pieces)];
        plain.replace(at, removed, with);
        text.replace(at, removed, with);
        ASSERT_EQ(text.size(), plain.size());
        const std::size_t from = random() % (plain.size() + 1);
        ASSERT_EQ(text.part(from, from + 50), plain.substr(from, 50));
        const std::size_t newline = plain.find('\n', from);
        ASSERT_EQ(text.find('\n', from), newline == std::string::npos ? plain.size() : newline);
    }
    EXPECT_EQ(text.part(0, text.size()), plain);
}

TEST(LineStarts, FollowWhatLiesBeforeThem) {
    LineStarts lines;
    lines.reset({10, 20, 30, 40}, 50);
    EXPECT_EQ(lines.line_of(0), 0u);
    EXPECT_EQ(lines.line_of(20), 2u);
    EXPECT_EQ(lines.line_of(50), 4u);
    // Five bytes more in line 1: the lines behind move.
    lines.replace(2, 2, {}, 55);
    EXPECT_EQ(lines.start(1), 10u);
    EXPECT_EQ(lines.start(2), 25u);
    EXPECT_EQ(lines.start(4), 45u);
    // Line 2 goes, two come for it.
    const std::size_t fresh[] = {18, 22};
    lines.replace(2, 3, fresh, 60);
    ASSERT_EQ(lines.count(), 6u);
    const std::size_t expected[] = {0, 10, 18, 22, 40, 50};
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(lines.start(i), expected[i]) << i;
}

TEST(ListItems, SortedWithoutRegardToCaseAndFoundRoundTheEnd) {
    ListItems items;
    for (const char* text : {"pear", "Apple", "fig", "apricot", "Änderung", "PEACH"}) {
        items.insert_sorted(text);
    }
    const char* expected[] = {"Apple", "apricot", "fig", "PEACH", "pear", "Änderung"};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(items[i].text, expected[i]);
    EXPECT_EQ(items.find(-1, "AP", false), 0);
    EXPECT_EQ(items.find(0, "ap", false), 1);
    EXPECT_EQ(items.find(1, "ap", false), 0);
    EXPECT_EQ(items.find(-1, "ap", true), -1);
    EXPECT_EQ(items.find(-1, "äNDERUNG", true), 5);
    items.current = 3;
    items.remove(0);
    EXPECT_EQ(items.current, 2);
    items.remove(2);
    EXPECT_EQ(items.current, -1);
}

TEST(TypeAhead, LettersGrowAWordAndOneLetterGoesRound) {
    ListItems items;
    for (const char* text : {"alpha", "beta", "bravo", "brown", "gamma"}) items.insert(-1, text);
    TypeAhead letters;
    EXPECT_EQ(letters.find(items, -1, 'b', 1000), 1);
    EXPECT_EQ(letters.find(items, 1, 'r', 1100), 2);
    EXPECT_EQ(letters.find(items, 2, 'o', 1200), 3);
    EXPECT_EQ(letters.find(items, 3, 'b', 9000), 1);
    EXPECT_EQ(letters.find(items, 1, 'b', 9100), 2);
    EXPECT_EQ(letters.find(items, 2, 'z', 19000), -1);
}

TEST(Letters, CharactersAreNeverSplit) {
    const std::string text = "a\u00E9e\u0301\r\n\U0001F600z";
    std::size_t at = 0;
    const std::size_t bounds[] = {1, 3, 6, 8, 12, 13};
    for (const std::size_t bound : bounds) {
        const std::size_t before = at;
        at = character_end(text, at);
        EXPECT_EQ(at, bound);
        EXPECT_EQ(character_begin(text, at), before);
    }
    EXPECT_EQ(in_upper_case("straße ÿ žluťoučký ώ"), "STRAßE Ÿ ŽLUŤOUČKÝ ώ");
    EXPECT_EQ(in_lower_case("ÀÉÎ ЖЩЁ ΣΩ"), "àéî жщё σω");
    // Broken bytes are passed over one by one.
    EXPECT_EQ(character_end("\xFF\x80z", 0), 1u);
}

}  // namespace
