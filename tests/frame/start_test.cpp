#include "frame/start.h"

#include <cstdlib>
#include <cstring>
#include <fenv.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "frame/debug_info.h"
#include "frame/end.h"
#include "frame/file_numbers.h"
#include "frame/float_control.h"
#include "frame/modules.h"
#include "frame/state.h"
#include "platform/kernel/float_unit.h"

extern "C" {
void __initialise_cpplib();
void __init_cpplib_info(const tarn::frame::ProgramInfo*);
void __initialise_xcbdll(const tarn::frame::ModuleInfo*);
void __execute_preamble(void (*const*)(), void (*const*)());
void __Register_map_info(void*, const void*);
void __mdebug(int);
void* __stdout_address();
int* __console_stdout_address();
void __no_extended_precision();
void __mask_underflow();
void ___mask_underflow();
void ___undo_mask_underflow();
void __mask_overflow();
void __unmask_all_fp_ex();
}

namespace tarn::frame {
namespace {

// Each of these tests changes the state of the whole process and so runs in a child. The body
// returns what the child ends with; 0 is success.
template <typename Body>
void in_child(Body body) {
    EXPECT_EXIT(_exit(body()), testing::ExitedWithCode(0), "");
}

#define CHECK_CHILD(condition) \
    if (!(condition)) {        \
        return __LINE__ & 127; \
    }

ProgramInfo image(int version) {
    ProgramInfo info{};
    info.name = "image";
    info.version_word = version;
    return info;
}

TEST(Start, ComesUpOnce) {
    in_child([] {
        __initialise_cpplib();
        CHECK_CHILD(state().init_count == 1);
        auto* stream = *static_cast<StreamRecord**>(__stdout_address());
        CHECK_CHILD(stream->tag == stream_tag && stream->flags == 0x2804);
        CHECK_CHILD(stream->file_number == 1 && stream->next->file_number == 2);
        CHECK_CHILD(*__console_stdout_address() == 4);
        state().windows_mode = 6;
        __initialise_cpplib();
        CHECK_CHILD(state().init_count == 1);
        CHECK_CHILD((stream->flags & stream_through_window) != 0 && stream->file_number == 0);
        return 0;
    });
}

TEST(Start, TheSystemsFloatRulesStay) {
    in_child([] {
        unsetenv("TARNENVAR");
        ProgramInfo info = image(200);
        __init_cpplib_info(&info);
        volatile double zero = 0;
        CHECK_CHILD(zero / zero != zero);
        CHECK_CHILD(state().control_words[0] == 0x033F);
        return 0;
    });
    EXPECT_EXIT(([] {
                    set_image_type(image_native_float);
                    __initialise_cpplib();
                    volatile double zero = 0;
                    _exit(zero / zero != zero);
                })(),
                testing::KilledBySignal(SIGFPE), "");
}

TEST(Registration, VersionsDecide) {
    EXPECT_EXIT(([] {
                    ProgramInfo info = image(110);
                    __init_cpplib_info(&info);
                })(),
                testing::ExitedWithCode(0),
                "This version of : image\\[1.10\\] is incompatible with this version of "
                "Tarnlibc.dll\\[203.90\\]\nPlease rebuild your executable");
    EXPECT_EXIT(([] {
                    ModuleInfo info{"lib", 110, nullptr, nullptr};
                    __initialise_xcbdll(&info);
                })(),
                testing::ExitedWithCode(0), "This version of DLL : lib\\[1.10\\]");
    in_child([] {
        ProgramInfo info = image(111);
        __init_cpplib_info(&info);
        CHECK_CHILD(state().init_count == 2 && state().registered);
        return 0;
    });
}

TEST(Registration, TablesByVersion) {
    in_child([] {
        static std::uint16_t words[8];
        static const StdcallPair pair{7, nullptr};
        static const StdcallRecord record{1, 0, nullptr, 0, 0, &pair};
        ModuleInfo module{"a", 147, words, &record};
        __initialise_xcbdll(&module);
        CHECK_CHILD(state().control_table_count == 0);
        module = {"b", 149, words, &record};
        __initialise_xcbdll(&module);
        CHECK_CHILD(state().control_table_count == 1 && !state().stdcalls);
        module = {"c", 150, words, &record};
        __initialise_xcbdll(&module);
        CHECK_CHILD(state().control_table_count == 2 && state().stdcalls);
        while (state().control_table_count < 99) register_control_words(words);
        module.path = "d";
        __initialise_xcbdll(&module);
        CHECK_CHILD(state().control_table_count == 100);
        return 0;
    });
    EXPECT_EXIT(([] {
                    static std::uint16_t words[8];
                    while (state().control_table_count < 100) register_control_words(words);
                    ModuleInfo module{"e", 200, words, nullptr};
                    __initialise_xcbdll(&module);
                    _exit(state().control_table_count);
                })(),
                testing::ExitedWithCode(100), "More than 100 DLLs");
}

TEST(Registration, OldAndNewModulesDontMix) {
    EXPECT_EXIT(([] {
                    __mdebug(1);
                    save_loaded_module("old", 132, true);
                    save_loaded_module("new", 133, true);
                    save_loaded_module("new", 133, true);
                    _exit(0);
                })(),
                testing::ExitedWithCode(0),
                "The module new ver\\[133\\] is incompatible with\nold ver\\[132\\] and may cause "
                "problems.\nPlease obtain a new copy of old\n");
    in_child([] {
        save_loaded_module("old", 132, true);
        save_loaded_module("new", 133, true);
        save_loaded_module("new", 133, true);
        CHECK_CHILD(std::strcmp(state().modules->name, "new") == 0);
        CHECK_CHILD(!state().modules->next->next);
        return 0;
    });
}

TEST(Registration, StdcallFunctions) {
    in_child([] {
        static StdcallPair few[] = {{30, nullptr}, {10, nullptr}};
        static StdcallPair many[] = {{50, nullptr}, {20, nullptr}, {0xFFFFFFFFFF, nullptr}};
        few[0].function = &few[0];
        few[1].function = &few[1];
        for (StdcallPair& pair : many) pair.function = &pair;
        std::uintptr_t cell = 10;
        obtain_stdcall_function(cell);
        CHECK_CHILD(cell == 10);  // nothing registered
        StdcallRecord first{2, 0, nullptr, 0, 0, few};
        StdcallRecord second{3, 0, nullptr, 0, 0, many};
        ModuleInfo module{"a", 150, nullptr, &first};
        register_module(module);
        obtain_stdcall_function(cell);
        CHECK_CHILD(cell == reinterpret_cast<std::uintptr_t>(&few[1]));
        module = {"b", 150, nullptr, &second};
        register_module(module);
        cell = 0xFFFFFFFFFF;
        obtain_stdcall_function(cell);
        CHECK_CHILD(cell == reinterpret_cast<std::uintptr_t>(&many[2]));
        cell = 31;
        obtain_stdcall_function(cell);
        CHECK_CHILD(cell == 31);
        return 0;
    });
}

int preamble_calls = 0;

TEST(Preamble, BothEndsCount) {
    void (*count)() = [] { ++preamble_calls; };
    void (*const section[])() = {count, nullptr, count};
    __execute_preamble(section, section + 2);
    EXPECT_EQ(preamble_calls, 2);
    __execute_preamble(section, section);
    EXPECT_EQ(preamble_calls, 3);
    __execute_preamble(section + 1, section);
    EXPECT_EQ(preamble_calls, 3);
}

TEST(FileNumbers, ConsoleNumbersAreSkippedAndNumbersComeBack) {
    in_child([] {
        initialise_file_numbers();
        CHECK_CHILD(file_numbers().console[0] == 3 && file_numbers().console[2] == 5);
        CHECK_CHILD(file_numbers().flags[0] == 0x22 && file_numbers().flags[1] == 0x24);
        CHECK_CHILD(file_numbers().flags[3] == 2 && file_numbers().flags[5] == 4);
        CHECK_CHILD(take_file_number(77, "x") == 6 && take_file_number(78, nullptr) == 7);
        give_back_file_number(6);
        give_back_file_number(6);
        give_back_file_number(3);
        CHECK_CHILD(take_file_number(79, "y") == 6 && take_file_number(80, "z") == 8);
        while (take_file_number(1, "n") >= 0) continue;
        CHECK_CHILD(file_numbers().next_unused == file_number_count);
        return 0;
    });
}

TEST(FloatControl, TablesChangeTogether) {
    in_child([] {
        static std::uint16_t table[8];
        register_control_words(table);
        __mask_overflow();
        __unmask_all_fp_ex();
        CHECK_CHILD(state().control_words == default_words);
        CHECK_CHILD(std::memcmp(table, default_words.data(), sizeof table) == 0);
        CHECK_CHILD((platform::control_word() & 0x3F) == 0x20);
        CHECK_CHILD((platform::sse_control() >> 7 & 0x3F) == 0x20);
        __mask_underflow();
        CHECK_CHILD(state().control_words == underflow_masked_words);
        __mask_overflow();
        ___undo_mask_underflow();
        CHECK_CHILD(table[1] == 0x0F3A);
        ___mask_underflow();
        ___undo_mask_underflow();
        CHECK_CHILD(state().control_words == default_words);
        __no_extended_precision();
        CHECK_CHILD(state().control_words[0] == 0x0220 && table[7] == 0x0A20);
        __unmask_all_fp_ex();
        CHECK_CHILD(table[7] == 0x0B20);
        return 0;
    });
}

TEST(FloatControl, LibraryCodeRunsMasked) {
    in_child([] {
        platform::load_control_word(0x0720);  // all trap, rounding down
        double third;
        {
            platform::MaskedFloat masked;
            volatile double zero = 0;
            volatile double nan = zero / zero;
            volatile long double wide = 1.0L / static_cast<long double>(zero);
            third = 1 / (zero + 3);
            CHECK_CHILD(nan != nan && wide > 1);
        }
        volatile long double on = 1;
        on = on + 1;  // a flag left behind would trap here
        CHECK_CHILD(third == 1.0 / 3.0);
        CHECK_CHILD((platform::sse_control() >> 13 & 3) == 1);
        CHECK_CHILD((platform::control_word() >> 10 & 3) == 1);
        return 0;
    });
}

}  // namespace
}  // namespace tarn::frame
