// Text windows on the memory display: what is kept of what is written, what is shown of it, what
// can be read and selected.
#include "tarn/text_window.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

#include "platform/display/display.h"
#include "tarn/winio.h"
#include "textwin/window_info.h"

namespace tarn::textwin {
namespace {

using platform::HWND;

class TextWindow : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        setenv("TARN_DISPLAY", "memory", 1);
        unsetenv("LC_ALL");
        setenv("LC_CTYPE", "C", 1);
    }
    void SetUp() override { window_ = __create_window("Test", 50, 50, 500, 300); }
    void TearDown() override { __destroy_window(window_); }

    void write(const std::string& text) const {
        __win_coua(window_, text.data(), static_cast<std::int32_t>(text.size()));
    }
    std::string text() const {
        std::string all(static_cast<std::size_t>(__get_quillpan_text(window_, nullptr, 0)), '\0');
        __get_quillpan_text(window_, all.data(), 1);
        all.pop_back();  // the terminator
        return all;
    }
    window_info& info() const { return *find_window(HWND{window_}); }
    void send(platform::UINT message, platform::WPARAM wparam, platform::LPARAM lparam) const {
        platform::SendMessageA(HWND{window_}, message, wparam, lparam);
    }

    std::int32_t window_ = 0;
};

TEST_F(TextWindow, KeepsLinesAsTheyWereWritten) {
    struct Case {
        std::string written, kept;
    };
    const Case cases[] = {
        {"one\ntwo", "one\r\ntwo\r\n"},
        {"one\ntwo\n", "one\r\ntwo\r\n\r\n"},  // an empty line is open behind the feed
        {"a\r\nb\rc", "a\r\nbc\r\n"},          // carriage returns go wherever they stand
        {std::string(300, 'x') + "\ny", std::string(255, 'x') + "\r\ny\r\n"},
        {"@t2red@@", "@t2red@@\r\n"},  // escapes are kept raw
    };
    for (const Case& c : cases) {
        __clear_window(window_);
        write(c.written);
        EXPECT_EQ(text(), c.kept);
    }
    // Piece by piece is the same as at once.
    __clear_window(window_);
    for (const char byte : std::string("ab\ncd")) write({byte});
    EXPECT_EQ(text(), "ab\r\ncd\r\n");
}

TEST_F(TextWindow, ShowsEachWriteAtOnce) {
    for (const char* const piece : {"one\n", "two\n", "three"}) {
        write(piece);
        EXPECT_FALSE(info().changed) << piece;
    }
}

TEST_F(TextWindow, GivesUpItsOldestLines) {
    setMaxLines(window_, 51);
    for (int i = 1; i <= 200; ++i) __cw_printf(window_, "line %d", i);
    EXPECT_EQ(info().line_count, 51);
    EXPECT_EQ(text().substr(0, 10), "line 151\r\n");
    for (const std::int32_t low : {50, 3, 0, -7}) {
        setMaxLines(window_, low);
        EXPECT_EQ(info().maximum_lines, 50);
        EXPECT_EQ(info().line_count, 50);
    }
    // A view that was scrolled back keeps its lines, or gets the oldest ones.
    for (const int back : {10, 300}) {
        const std::int32_t other = __create_window("Other", 50, 50, 500, 300);
        window_info& window = *find_window(HWND{other});
        for (int i = 1; i <= 200; ++i) __cw_printf(other, "line %d", i);
        __update_window(other);
        platform::SendMessageA(HWND{other}, platform::WM_VSCROLL, platform::SB_BOTTOM, 0);
        for (int i = 0; i < back; ++i)
            platform::SendMessageA(HWND{other}, platform::WM_VSCROLL, platform::SB_LINEUP, 0);
        setMaxLines(other, 50);
        EXPECT_EQ(window.bottom_number, std::max(50 - back, window.lines_on_view));
        std::int32_t above = 0;
        for (const window_line* line = window.bottom; line; line = line->previous) ++above;
        EXPECT_EQ(above, window.bottom_number);
        __destroy_window(other);
    }
    // The chain is whole both ways.
    int forward = 0, backward = 0;
    for (const window_line* line = info().first; line; line = line->next) ++forward;
    for (const window_line* line = info().last; line; line = line->previous) ++backward;
    EXPECT_EQ(forward, 50);
    EXPECT_EQ(backward, 50);
}

TEST_F(TextWindow, FontsCarryOverToTheNextLine) {
    __add_text_descriptor(window_, platform::GetStockObject(platform::SYSTEM_FONT), 0x0000FF);
    text_descriptor* second = descriptor_of(info(), 2);
    ASSERT_NE(second, nullptr);
    write("plain\n@t2other\nstill\n@t1back\n@t0@t9@t none");
    const window_line* line = info().first;
    EXPECT_EQ(line->end, info().descriptors);
    line = line->next;
    EXPECT_EQ(line->end, second);
    EXPECT_EQ(line->next->start, second);
    EXPECT_EQ(line->next->next->end, info().descriptors);
    // A number that is no font changes nothing.
    EXPECT_EQ(info().last->end, info().descriptors);
    EXPECT_EQ(line->height, std::max(second->height, info().descriptors->height));
}

TEST_F(TextWindow, ScrollsAndSnapsBackToTheEnd) {
    for (int i = 1; i <= 100; ++i) __cw_printf(window_, "line %d", i);
    __update_window(window_);
    const std::int32_t page = info().lines_on_view;
    ASSERT_GT(page, 5);
    send(platform::WM_VSCROLL, platform::SB_PAGEUP, 0);
    EXPECT_EQ(info().bottom_number, 101 - page);
    send(platform::WM_VSCROLL, platform::SB_TOP, 0);
    EXPECT_EQ(info().bottom_number, page);
    send(platform::WM_VSCROLL, platform::SB_LINEUP, 0);
    EXPECT_EQ(info().bottom_number, page);  // no further
    send(platform::WM_MOUSEWHEEL, platform::MAKEWPARAM(0, -120), 0);
    EXPECT_EQ(info().bottom_number, page + platform::wheel_scroll_lines());
    write("more\n");
    EXPECT_EQ(info().bottom_number, info().line_count);
    for (int i = 0; i < 400; ++i) send(platform::WM_HSCROLL, platform::SB_LINEDOWN, 0);
    EXPECT_EQ(info().column, 255);
    send(platform::WM_HSCROLL, platform::SB_PAGEUP, 0);
    EXPECT_EQ(info().column, 247);
}

TEST_F(TextWindow, ReadsKeysAndLines) {
    const auto post = [&](const char* keys) {
        for (; *keys; ++keys)
            platform::PostMessageA(HWND{window_}, platform::WM_CHAR,
                                   static_cast<platform::WPARAM>(*keys), 0);
    };
    post("q");
    EXPECT_EQ(__win_getchar(window_), 'q');
    char line[256];
    post("abx\bc\r");
    __win_getline(window_, line);
    EXPECT_STREQ(line, "abc");
    post("\b\bok\r");  // nothing to take back
    __win_getline(window_, line);
    EXPECT_STREQ(line, "ok");
    post("abc");
    platform::PostMessageA(HWND{window_}, platform::WM_COMMAND, 123, 0);
    __win_getline(window_, line);
    EXPECT_STREQ(line, "abc@menu 123");
    EXPECT_NE(text().find("abc\r\nok\r\n"), std::string::npos) << "what is typed is echoed";
}

// The bytes of a character come and go together: typed, taken back, at the end of a full line.
TEST_F(TextWindow, HoldsUtf8WhereTheProgramSaysSo) {
    __enable_utf8(1);
    const std::int32_t plain = window_;
    window_ = __create_window(
        "Gr\xC3\xB6\xC3\x9F"
        "e",
        50, 50, 500, 300);
    __enable_utf8(0);
    EXPECT_EQ(platform::window_text(HWND{window_}),
              "Gr\xC3\xB6\xC3\x9F"
              "e");
    const auto post = [](std::int32_t window, platform::UINT message, platform::WPARAM code) {
        platform::PostMessageA(HWND{window}, message, code, 0);
    };
    char line[256];
    for (const std::int32_t window : {window_, plain}) {
        post(window, platform::WM_CHAR, 0xE4);
        post(window, platform::WM_UNICHAR, 0x20AC);  // as what the code page lacks comes
        post(window, platform::WM_CHAR, 0xF6);
        post(window, platform::WM_CHAR, 8);
        post(window, platform::WM_CHAR, '\r');
        __win_getline(window, line);
        EXPECT_STREQ(line, window == plain ? "\xE4" : "\xC3\xA4\xE2\x82\xAC");
    }
    __clear_window(window_);
    write(std::string(254, 'x') + "\xC3");
    write("\xA4y\nz");
    EXPECT_EQ(text(), std::string(254, 'x') + "\r\nz\r\n");
    __destroy_window(plain);
}

TEST_F(TextWindow, TabsGoToColumns) {
    write("aaaaaaaab\na\tb\n\tb");
    for (const std::int32_t scrolled : {0, 1, 5, 8}) {
        send(platform::WM_HSCROLL, platform::SB_PAGEUP, 0);
        for (int i = 0; i < scrolled; ++i) send(platform::WM_HSCROLL, platform::SB_LINEDOWN, 0);
        __update_window(window_);
        const window_line* first = info().first;
        EXPECT_GT(first->right_edge, info().left_margin);
        EXPECT_EQ(first->next->right_edge, first->right_edge) << scrolled;
        EXPECT_EQ(first->next->next->right_edge, first->right_edge) << scrolled;
    }
}

TEST_F(TextWindow, SelectsWithTheMouseInEmbeddedWindows) {
    const std::int32_t inner =
        __create_embeded_window_x(window_, 0, 1, 0, 0, 400, 200,
                                  platform::GetStockObject(platform::WHITE_BRUSH), 0xFFFFFF, 0, 0);
    const std::string lines = "first line\nsecond line\nthird";
    __win_coua(inner, lines.data(), static_cast<std::int32_t>(lines.size()));
    __update_window(inner);
    EXPECT_EQ(__get_selected_quillpan_text(inner, 1), nullptr);
    const std::int32_t height = find_window(HWND{inner})->first->height;
    const auto mouse = [&](platform::UINT message, std::int32_t x, std::int32_t y, bool down) {
        platform::SendMessageA(HWND{inner}, message,
                               down ? platform::WPARAM{platform::MK_LBUTTON} : 0,
                               platform::MAKELPARAM(x + embedded_margin_x, y));
    };
    mouse(platform::WM_LBUTTONDOWN, 6 * 8 + 2, height / 2, true);         // at "line"
    mouse(platform::WM_MOUSEMOVE, 5 * 8 + 4, height + height / 2, true);  // at the "d" of second
    mouse(platform::WM_LBUTTONUP, 5 * 8 + 4, height + height / 2, false);
    char* selected = __get_selected_quillpan_text(inner, 0);
    ASSERT_NE(selected, nullptr);
    EXPECT_STREQ(selected, "line\r\nsecond");
    std::free(selected);
    __cancel_selection(inner);
    EXPECT_EQ(__get_selected_quillpan_text(inner, 0), nullptr);
    // What is selected stays so while the program goes on writing, also in the line that it writes,
    // and until the line goes.
    const auto selected_text = [inner] {
        char* text = __get_selected_quillpan_text(inner, 0);
        const std::string result = text ? text : "none";
        std::free(text);
        return result;
    };
    const auto write_lines = [inner](int count) {
        for (; count > 0; --count) __cw_printf(inner, "line");
    };
    mouse(platform::WM_LBUTTONDOWN, 8 + 2, 2 * height + height / 2, true);
    mouse(platform::WM_MOUSEMOVE, 2 * 8 + 4, 2 * height + height / 2, true);
    EXPECT_EQ(selected_text(), "hi");
    write_lines(1);
    EXPECT_EQ(selected_text(), "hi");
    mouse(platform::WM_MOUSEMOVE, 3 * 8 + 4, 2 * height + height / 2, true);
    EXPECT_EQ(selected_text(), "hir");
    platform::PostMessageA(HWND{inner}, platform::WM_CHAR, 3, 0);  // Ctrl+C isn't input
    platform::PostMessageA(HWND{inner}, platform::WM_CHAR, 'q', 0);
    EXPECT_EQ(__win_getchar(inner), 'q');
    setMaxLines(inner, 50);
    write_lines(60);
    EXPECT_EQ(selected_text(), "none");
    mouse(platform::WM_MOUSEMOVE, 5, height, true);
    EXPECT_EQ(selected_text(), "none");
    mouse(platform::WM_LBUTTONUP, 5, height, false);
}

TEST_F(TextWindow, CallsAfterItsEndDoNothing) {
    const std::int32_t gone = __create_window(nullptr, 10, 10, 200, 100);
    __destroy_window(gone);
    __win_printf(gone, "nothing %d", 1);
    __clear_window(gone);
    setMaxLines(gone, 60);
    EXPECT_EQ(__get_quillpan_text(gone, nullptr, 0), 0);
    EXPECT_EQ(__get_graphics_dc(gone), 0);
}

}  // namespace
}  // namespace tarn::textwin
