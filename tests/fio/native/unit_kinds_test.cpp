// Records on their way to what isn't a file: the console, windows, drivers, variables.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include "fio/native/hooks.h"
#include "transfer.h"

namespace tarn::fio::native::test {
namespace {

// Runs `work` in a child with `input` as its console; what it puts out there.
template <typename Work>
std::string console(std::string_view input, Work work) {
    int in[2];
    int out[2];
    if (pipe(in) != 0 || pipe(out) != 0) std::abort();
    const pid_t child = fork();
    if (child == 0) {
        dup2(in[0], 0);
        dup2(out[1], 1);
        close(in[1]);
        close(out[0]);
        work();
        flush_console_output();
        std::_Exit(0);
    }
    close(in[0]);
    close(out[1]);
    (void)!write(in[1], input.data(), input.size());
    close(in[1]);
    std::string text;
    char bytes[512];
    for (ssize_t n = 0; (n = ::read(out[0], bytes, sizeof bytes)) > 0;)
        text.append(bytes, static_cast<std::size_t>(n));
    close(out[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? text : "died";
}

template <typename... Items>
void print(const char* format, const char* advance, const Items&... items) {
    Packed statement;
    statement.unit(6);
    if (format != nullptr) statement.format(format);
    if (advance != nullptr) statement.text(IOCode::advance, advance);
    transfer(statement, WSF1_hh, [&] { (put(items), ...); });
}

TEST(Console, TakesLinesAndParts) {
    const std::string text = console("", [] {
        print(nullptr, nullptr, "Hello", 42);
        print(nullptr, nullptr);
        print("(A,$)", nullptr, "name: ");
        print("(A)", "NO", "a ");
        print("(A)", nullptr, "b ");
        print("(5X)", nullptr);
        print("(A,T8)", "NO", "c");
        print("(T3,A)", nullptr, "d");
    });
    EXPECT_EQ(text, " Hello          42\r\n\r\nname: a b \r\n\r\nc        d\r\n");
}

TEST(Console, GivesItsLines) {
    const std::string text = console("12 34\r\n\nabc\n5", [] {
        std::int32_t i = 0;
        std::int32_t j = 0;
        std::string s(2, '?');
        Packed list;
        list.unit(5);
        transfer(list, RSF1_hh, [&] { get(i), get(j), get(s); });
        Packed rest;
        rest.unit(5).format("(I1)");
        const std::int32_t end = transfer(rest, RSF1_hh, [&] { get(j); });
        print("(I2,A,I3)", nullptr, i, s, end);
    });
    EXPECT_EQ(text, "12ab -1\r\n");
}

std::string window_text;

TEST(Windows, TakeLinesAsTheyAre) {
    Hooks& h = hooks();
    const Hooks before = h;
    h.window_write = [](void*, const char* text, std::size_t count) {
        window_text.append("[").append(text, count).append("]");
    };
    h.edit_box_insert = [](void*, const char* text) { window_text.append(text); };
    IO_initialise();
    Unit* unit = Unit_create(41, false);
    unit->kind = UnitKind::window;
    unit->status.formatted = unit->status.reading = unit->status.writing = true;
    UnitList_insert(unit);
    const auto write = [](const char* advance) {
        Packed statement;
        statement.unit(41).format("(A)").text(IOCode::advance, advance);
        return transfer(statement, WSF1_hh, [] { put("ab "); });
    };
    window_text.clear();
    EXPECT_EQ(write("YES"), 0);
    EXPECT_EQ(write("NO"), 0);
    unit->window_target = 1;
    EXPECT_EQ(write("YES"), 0);
    EXPECT_EQ(window_text, "[ab\r\n][ab ]ab\r\n");
    h = before;
    EXPECT_EQ(write("YES"), 129);  // no such feature in this build
    UnitList_destroy(unit);
}

TEST(Variables, EncodeAndDecode) {
    std::int64_t variable[3] = {};
    Packed encode;
    encode.integer(IOCode::count, 12)
        .add(IOCode::internal_variable, TypeCode::integer8, variable)
        .format("(I5,A)");
    EXPECT_EQ(transfer(encode, WSF1_hh, [] { put(42), put("abc"); }), 0);
    EXPECT_EQ(std::string_view(reinterpret_cast<char*>(variable), 13),
              std::string_view("   42abc    \0", 13));
    Packed decode;
    decode.integer(IOCode::count, 12)
        .add(IOCode::internal_variable, TypeCode::integer8, variable)
        .format("(I5,A4)");
    std::int32_t i = 0;
    std::string s(4, '?');
    EXPECT_EQ(transfer(decode, RSF1_hh, [&] { get(i), get(s); }), 0);
    EXPECT_EQ(i, 42);
    EXPECT_EQ(s, "abc ");
}

TEST(StrictMode, KnowsNoExtensions) {
    const auto strict = [](const char* format, auto item) {
        std::string line(80, '~');
        Packed statement;
        statement.add(IOCode::internal_file, TypeCode::character, line.data(), 80)
            .add(IOCode::strict, TypeCode::none, nullptr)
            .format(format);
        return transfer(statement, WSF1_hh, [&] { put(item); });
    };
    EXPECT_EQ(strict("(A4)", 5), 145);
    EXPECT_EQ(strict("(B'##')", 5), 126);
    EXPECT_EQ(strict("(I3I3)", 5), 79);
    EXPECT_EQ(strict("(E12.3)", 1e1000L), 118);
    EXPECT_EQ(strict("(E12.3)", 1e100L), 0);
    EXPECT_EQ(strict("(A4)", "abc"), 0);
}

}  // namespace
}  // namespace tarn::fio::native::test
