#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "exceptions/file_writer.h"
#include "tarn/exceptions.h"

namespace tarn::exceptions {
namespace {

std::string written(std::string_view json) {
    int ends[2];
    if (pipe(ends) != 0) return "no pipe";
    FileWriter(ends[1]).json_text(json).decimal(-9223372036854775807 - 1);
    close(ends[1]);
    char got[256];
    const ssize_t length = read(ends[0], got, sizeof got);
    close(ends[0]);
    return {got, length > 0 ? static_cast<std::size_t>(length) : 0};
}

TEST(FileWriter, JsonOfAnyBytes) {
    const std::string end = "-9223372036854775808";
    EXPECT_EQ(written("a\"b\\c\n\t"), "\"a\\\"b\\\\c\\n\\u0009\"" + end);
    EXPECT_EQ(written("d\u00e9\u20ac\U0001F600"), "\"d\u00e9\u20ac\U0001F600\"" + end);
    // Cut short, too long a form, a surrogate, beyond the last character.
    for (const char* bad : {"\xC3", "\xC0", "\xFF", "\x80"})
        EXPECT_EQ(written(bad), "\"\\ufffd\"" + end);
    EXPECT_EQ(written("\xED\xA0\x80"), "\"\\ufffd\\ufffd\\ufffd\"" + end);
    EXPECT_EQ(written("\xF4\x90\x80\x80x"), "\"\\ufffd\\ufffd\\ufffd\\ufffdx\"" + end);
}

TEST(HandlerFrames, StandOnTheCallersBlock) {
    EXPECT_EXIT(INSTALL_TARN_VIRTUAL_HANDLER(), testing::ExitedWithCode(1),
                "Tarnick Virtual handler has not been registerd\n");
    alignas(8) std::int32_t block[20];
    const std::int32_t words = 20;
    REGISTER_TARN_EXCEPTION_HANDLER(block, &words);
    EXPECT_EQ(block[0], -1);
    EXPECT_EQ(block[19], -1);
    void* const handler = INSTALL_TARN_EXCEPTION_HANDLER();
    EXPECT_EQ(handler, reinterpret_cast<void*>(&tarn_exception_handler));
    EXPECT_EQ(block[7], -1);  // frames grow downward, 32 bytes each
    EXPECT_EQ(std::memcmp(block + 10, &handler, sizeof handler), 0);
    EXPECT_EQ(INSTALL_TARN_EXCEPTION_HANDLER(), handler);
    EXPECT_EXIT(INSTALL_TARN_EXCEPTION_HANDLER(), testing::ExitedWithCode(1),
                "Out of stack space, cannot install exception handler.\n");
    REMOVE_TARN_HANDLER();
    EXPECT_EQ(block[2], -1);
    REMOVE_TARN_HANDLER();
    EXPECT_EXIT(REMOVE_TARN_HANDLER(), testing::ExitedWithCode(1), "Unable to remove unknown");
    static std::int32_t elsewhere[20];
    EXPECT_EXIT(REGISTER_TARN_EXCEPTION_HANDLER(elsewhere, &words), testing::ExitedWithCode(1),
                "expects the first argument to be a stack variable\n");
}

}  // namespace
}  // namespace tarn::exceptions
