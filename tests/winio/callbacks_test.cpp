// Call-backs: how they are recognised, what their results do, calls put off, gangs, grey controls,
// and updates.
#include "winio/callbacks.h"

#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "winio/actions.h"
#include "winio/form.h"

namespace tarn::winio {
namespace {

using test::form;
using test::nth;
using test::w;

std::int32_t window_variable, number, other, result_to_give, calls;
std::string last_reason;

std::int32_t count_call() {
    ++calls;
    last_reason = quillpan_string("CALL_BACK_REASON");
    return result_to_give;
}
std::int32_t close_own_window() {
    ++calls;
    platform::DestroyWindow(current_window()->hwnd);
    return 1;
}

class Callbacks : public testing::Test {
  protected:
    Callbacks() {
        setenv("TARN_DISPLAY", "memory", 1);
        initialise_quillpan_plus();
        calls = number = other = 0;
        result_to_give = 2;
        last_reason.clear();
    }
    ~Callbacks() override { test::close_all(); }
    static fancy_window* open(const char* format, const char* types,
                              std::initializer_list<word> words) {
        std::vector<word> all{w(&window_variable)};
        all.insert(all.end(), words.begin(), words.end());
        internal_winio((std::string("%lw") + format).c_str(), (std::string("*I") + types).c_str(),
                       all.data(), static_cast<std::int32_t>(all.size()));
        return test::newest();
    }
    static fancy_window* open_button(call_back function) {
        return open("%^bt[Press]", "*E", {w(function)});
    }
};

// ---- What is a call-back -----------------------------------------------------------------------
call_back read(std::vector<word> words, const char* types = nullptr,
               std::vector<std::int32_t> lengths = {}) {
    argument_source source;
    source.words = words.data();
    source.word_count = static_cast<std::int32_t>(words.size());
    source.fortran = !lengths.empty();
    source.lengths = lengths.data();
    source.length_count = static_cast<std::int32_t>(lengths.size());
    current_window()->descriptor = types;
    building().fortran_call = source.fortran;
    call_back found = get_callback_function(source, "should be a call-back");
    building().fortran_call = false;
    current_window()->descriptor = nullptr;
    return found;
}

class Recognition : public Callbacks {
  protected:
    Recognition() { current_window() = new_fancy_window(); }
    ~Recognition() override {
        destroy_fancy_window(current_window());
        current_window() = nullptr;
    }
};

TEST_F(Recognition, NamesInAnyForm) {
    for (const char* name : {"EXIT", "exit", "Exit", "QUILLPAN+EXIT", "quillpan+exit", "EXIT   "})
        EXPECT_EQ(read({w(name)}), action_exit) << name;
}

TEST_F(Recognition, FunctionsAreKnownWithoutTypes) {
    EXPECT_EQ(read({w(count_call)}), count_call);
    EXPECT_EQ(read({w(count_call)}, "*E"), count_call);
    // A function of another module.
    auto* const system_function = reinterpret_cast<call_back>(&std::abort);
    EXPECT_EQ(read({w(system_function)}), system_function);
    EXPECT_EQ(read({0}), nullptr);
}

TEST_F(Recognition, TrampolinesOfContainedProcedures) {
    unsigned char long_form[] = {0x49, 0xBB, 1, 2, 3, 4, 5, 6, 0, 0,    0x49,
                                 0xBA, 1,    2, 3, 4, 5, 6, 0, 0, 0x49, 0xFF,
                                 0xE3, 0x90, 0, 0, 0, 0, 0, 0, 0, 0};
    unsigned char marked[] = {0xF3, 0x0F, 0x1E, 0xFA, 0x41, 0xBB, 1, 2, 3, 4,
                              0x49, 0xBA, 1,    2,    3,    4,    5, 6, 0, 0,
                              0x49, 0xFF, 0xE3, 0,    0,    0,    0, 0, 0, 0};
    EXPECT_EQ(w(read({w(long_form)})), w(long_form));
    EXPECT_EQ(w(read({w(marked)})), w(marked));
    long_form[21] = 0;
    EXPECT_EXIT(read({w(long_form)}), testing::ExitedWithCode(1), "not the string");
}

TEST_F(Recognition, FortranTextsHaveLengths) {
    const char text[] = "CONTINUE    and what stands behind it";
    EXPECT_EQ(read({w(text)}, nullptr, {12}), action_continue);
    EXPECT_EQ(read({w(text)}, "*C", {8}), action_continue);
    // The length belongs to the text, not to the function before it.
    const char title[] = "About my program";
    std::vector<std::int32_t> lengths{5, 16};
    call_back about = read({w("ABOUT"), w(title)}, nullptr, lengths);
    ASSERT_TRUE(is_thunk(about));
    EXPECT_STREQ(reinterpret_cast<const char*>(reinterpret_cast<thunk*>(about)->a), title);
}

TEST_F(Recognition, WhatIsNeitherIsReported) {
    EXPECT_EXIT(read({w("NOT_AN_ACTION")}), testing::ExitedWithCode(1),
                "Argument number 1 of winio\nshould be a call-back - not the string "
                "\"NOT_AN_ACTION\"");
    EXPECT_EXIT(read({5}), testing::ExitedWithCode(1), "not the string \"\"");
    EXPECT_EXIT(read({w(&number)}, "*I"), testing::ExitedWithCode(1), "call-back function");
}

TEST_F(Recognition, BeepsByOption) {
    for (const auto& [name, kind] : {std::pair{"BEEP", 0},
                                     {"BEEP[hand]", 0x10},
                                     {"BEEP [hand]", 0x10},
                                     {"beep[Question]", 0x20}}) {
        const call_back beep = read({w(name)});
        ASSERT_TRUE(is_thunk(beep)) << name;
        EXPECT_EQ(reinterpret_cast<thunk*>(beep)->selector, kind) << name;
    }
}

// ---- Standard actions that need no window's answer ---------------------------------------------
TEST_F(Recognition, ActionsOnVariables) {
    const auto run = [](call_back action) {
        return call_function(action, "BUTTON_PRESS", HWND{}, true, false);
    };
    EXPECT_EQ(run(read({w("SET"), w(&number), 7})), 2);
    EXPECT_EQ(number, 7);
    run(read({w("INC"), w(&number)}));
    EXPECT_EQ(number, 8);
    run(read({w("DEC"), w(&number)}));
    run(read({w("TOGGLE"), w(&number)}));
    EXPECT_EQ(number, 0);
    run(read({w("TOGGLE"), w(&number)}));
    EXPECT_EQ(number, 1);
    number = INT32_MAX;
    run(read({w("INC"), w(&number)}));
    EXPECT_EQ(number, INT32_MIN);
}

// ---- Results -----------------------------------------------------------------------------------
TEST_F(Callbacks, ButtonResults) {
    struct {
        std::int32_t result;
        bool closes;
        std::int32_t value;
    } const cases[] = {
        {2, false, -1}, {1, false, -1}, {99, false, -1}, {0, true, 1}, {-7, true, 7}};
    for (const auto& each : cases) {
        fancy_window* window = open_button(count_call);
        result_to_give = each.result;
        calls = 0;
        test::click(nth(window, control_type::button));
        EXPECT_EQ(calls, 1) << each.result;
        EXPECT_EQ(test::open_windows() == 0, each.closes) << each.result;
        EXPECT_EQ(window_variable, each.value) << each.result;
        EXPECT_EQ(last_reason, "BUTTON_PRESS");
        test::close_all();
    }
}

TEST_F(Callbacks, ExitClosesWithTheResultZero) {
    fancy_window* window = open("%^bt[A]", "*C", {w("EXIT")});
    test::click(nth(window, control_type::button));
    EXPECT_EQ(test::open_windows(), 0);
    EXPECT_EQ(window_variable, 0);
}

// A click takes the focus to the button; the field that had it is what the action is about.
TEST_F(Callbacks, ClipboardButtonsServeTheFieldBeforeThem) {
    static char first[20], second[20];
    std::strcpy(first, "some text");
    second[0] = 0;
    fancy_window* window =
        open("%rs%rs%^bt[Copy]%^bt[Paste]%^bt[Undo]%^bt[All]", "*CI*CI*C*C*C*C",
             {w(first), 20, w(second), 20, w("COPY"), w("PASTE"), w("EDIT_UNDO"), w("SELECT_ALL")});
    window_control *from = nth(window, control_type::string_box),
                   *to = nth(window, control_type::string_box, 1);
    const auto button = [&](int which) { return nth(window, control_type::button, which); };
    const auto enter = [](window_control* field) {
        platform::SetFocus(field->hwnd);
        platform::PostMessageA(field->hwnd, platform::WM_KEYUP, platform::VK_SHIFT, 0);
        test::settle();
    };
    enter(from);
    platform::SendMessageA(from->hwnd, platform::EM_SETSEL, 5, 9);
    test::click(button(0));
    enter(to);
    test::click(button(1));
    EXPECT_STREQ(second, "text");
    EXPECT_EQ(platform::GetFocus(), to->hwnd);
    test::click(button(2));
    EXPECT_STREQ(second, "");
    enter(from);
    test::click(button(3));
    EXPECT_EQ(platform::SendMessageA(from->hwnd, platform::EM_GETSEL, 0, 0), 9 << 16);
}

TEST_F(Callbacks, AChainStopsAtZero) {
    fancy_window* window =
        open("%^bt[A]", "*C*E*C*I", {w("+"), w(count_call), w("INC"), w(&number)});
    test::click(nth(window, control_type::button));
    EXPECT_EQ(number, 1);
    result_to_give = 0;
    test::click(nth(window, control_type::button));
    EXPECT_EQ(number, 1);
    EXPECT_EQ(last_reason, "BUTTON_PRESS");
    EXPECT_EQ(test::open_windows(), 0);
}

TEST_F(Callbacks, AnOwnWindowMayGoWithinItsCallBack) {
    fancy_window* window = open_button(close_own_window);
    test::click(nth(window, control_type::button));
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(callbacks().window_gone);
    EXPECT_EQ(test::open_windows(), 0);
    EXPECT_EQ(callbacks().callback_depth, 0);
}

TEST_F(Callbacks, AnExceptionLeavesTheLibraryUsable) {
    fancy_window* window = open_button(count_call);
    const call_back thrower = +[]() -> std::int32_t { throw std::runtime_error("out of here"); };
    current_window() = window;
    EXPECT_THROW(call_function(thrower, "BUTTON_PRESS", window->hwnd, false, false),
                 std::runtime_error);
    EXPECT_FALSE(window->flags.busy);
    EXPECT_EQ(callbacks().callback_depth, 0);
    EXPECT_EQ(current_window(), window);
    test::click(nth(window, control_type::button));
    EXPECT_EQ(calls, 1);
}

TEST_F(Callbacks, ANestedCallGivesTheReasonBack) {
    fancy_window* window = open_button(count_call);
    current_window() = window;
    static std::string after;
    const call_back outer = +[]() -> std::int32_t {
        call_function(count_call, "SCROLL", HWND{}, false, false);
        after = quillpan_string("CALLBACK_REASON");
        return 2;
    };
    call_function(outer, "TIMER", window->hwnd, false, false);
    EXPECT_EQ(last_reason, "SCROLL");
    EXPECT_EQ(after, "TIMER");
}

// ---- Calls put off -----------------------------------------------------------------------------
TEST_F(Callbacks, DeferredCallsSeeTheirOwnEvent) {
    fancy_window* window = open_button(count_call);
    window_control* button = nth(window, control_type::button);
    static std::vector<std::int32_t> seen;
    seen.clear();
    button->callback = +[]() -> std::int32_t {
        seen.push_back(static_cast<std::int32_t>(quillpan_info("ROW_NUMBER")));
        return 2;
    };
    for (const std::int32_t row : {3, 5, 8}) {
        callbacks().context.row_number = row;
        defer_call_back(button, "ITEM_SELECTED");
    }
    callbacks().context.row_number = 99;
    perform_pending_calls();
    EXPECT_EQ(seen, (std::vector<std::int32_t>{3, 5, 8}));
    EXPECT_EQ(callbacks().context.row_number, 99);
    EXPECT_EQ(callbacks().first_pending, nullptr);
}

TEST_F(Callbacks, DeferredCallsOfWindowsThatWentAreDropped) {
    static std::int32_t second_variable;
    fancy_window* stays = open_button(count_call);
    internal_winio("%lw%^bt[Go]", "*I*E",
                   std::initializer_list<word>{w(&second_variable), w(close_own_window)}.begin(),
                   2);
    fancy_window* goes = test::newest();
    window_control* closing = nth(goes, control_type::button);
    for (int i = 0; i < 3; ++i) defer_call_back(closing, "ITEM_SELECTED");
    defer_call_back(nth(stays, control_type::button), "ITEM_SELECTED");
    calls = 0;
    perform_pending_calls();
    test::settle();
    EXPECT_EQ(calls, 2) << "the first closes its window, the one of the other window still runs";
    EXPECT_EQ(test::open_windows(), 1);
}

// ---- Gangs -------------------------------------------------------------------------------------
TEST_F(Callbacks, GangsKeepOneOn) {
    static std::int32_t a, b, c;
    struct {
        const char* format;
        bool one_always_on;
    } const cases[] = {{"%3ga%rb[A]%rb[B]%rb[C]", false}, {"%3`ga%rb[A]%rb[B]%rb[C]", true}};
    for (const auto& each : cases) {
        a = 1;
        b = c = 0;
        fancy_window* window =
            open(each.format, "*I*I*I*I*I*I", {w(&a), w(&b), w(&c), w(&a), w(&b), w(&c)});
        test::click(nth(window, control_type::radio, 1));
        EXPECT_EQ(std::vector({a, b, c}), std::vector({0, 1, 0}));
        test::click(nth(window, control_type::radio, 1));
        EXPECT_EQ(std::vector({a, b, c}), std::vector({0, each.one_always_on ? 1 : 0, 0}));
        test::close_all();
    }
}

TEST_F(Callbacks, GangsWithACommonMemberAreOne) {
    static std::int32_t v[6];
    fancy_window* window =
        open("%2ga%3ga%2ga", "*I*I*I*I*I*I*I",
             {w(&v[0]), w(&v[1]), w(&v[1]), w(&v[2]), w(&v[3]), w(&v[4]), w(&v[5])});
    const switch_gang* merged = find_gang(window, &v[0]);
    ASSERT_NE(merged, nullptr);
    EXPECT_EQ(merged->count, 4);
    EXPECT_EQ(find_gang(window, &v[3]), merged);
    EXPECT_EQ(find_gang(window, &v[4])->count, 2);
    for (std::int32_t& each : v) each = 1;
    gang_check(window->hwnd, &v[2]);
    EXPECT_EQ(std::vector<std::int32_t>(v, v + 6), (std::vector<std::int32_t>{0, 0, 1, 0, 1, 1}));
}

// ---- Grey controls and updates -----------------------------------------------------------------
TEST_F(Callbacks, GreyVariablesEnableTheirControls) {
    number = 1;
    fancy_window* window = open("%~bt[A]", "*I", {w(&number)});
    const window_control* button = nth(window, control_type::button);
    EXPECT_TRUE(platform::IsWindowEnabled(button->hwnd));
    number = 0;
    window_update(&number);
    EXPECT_FALSE(platform::IsWindowEnabled(button->hwnd));
    number = 1;
    window_update(&other);
    EXPECT_TRUE(platform::IsWindowEnabled(button->hwnd)) << "any update adjusts grey controls";
}

TEST_F(Callbacks, UpdatesReachFieldsOfEveryWindow) {
    static std::int32_t second_variable;
    number = 5;
    fancy_window* first = open("%rd", "*I", {w(&number)});
    const word words[] = {w(&second_variable), w(&number)};
    internal_winio("%lw%rd", "*I*I", words, 2);
    fancy_window* second = test::newest();
    number = 42;
    window_update(&number);
    EXPECT_EQ(test::field(nth(first, control_type::integer_box)), "42");
    EXPECT_EQ(test::field(nth(second, control_type::integer_box)), "42");
    number = 43;
    window_update(nullptr);
    EXPECT_EQ(test::field(nth(first, control_type::integer_box)), "43");
}

TEST_F(Callbacks, AResultInTheControlVariableClosesTheWindow) {
    open("text", "", {});
    EXPECT_EQ(window_variable, -1);
    window_update(&window_variable);
    test::settle();
    EXPECT_EQ(test::open_windows(), 1);
    window_variable = 0;
    window_update(&window_variable);
    test::settle();
    EXPECT_EQ(test::open_windows(), 0);
}

TEST_F(Callbacks, AClosePutOffHappensWhenTheCallBackReturns) {
    static bool open_during_call;
    fancy_window* window = open_button(+[]() -> std::int32_t {
        window_close(current_window());
        open_during_call = test::open_windows() == 1;
        return 2;
    });
    test::click(nth(window, control_type::button));
    EXPECT_TRUE(open_during_call);
    EXPECT_EQ(test::open_windows(), 0);
}

}  // namespace
}  // namespace tarn::winio
