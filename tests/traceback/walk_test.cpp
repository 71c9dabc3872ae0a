#include "traceback/walk.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <vector>

#include "traceback/callers.h"
#include "traceback/callers_text.h"

namespace tarn::traceback {
namespace {

std::vector<std::uintptr_t> places(Walk& walk) {
    std::vector<std::uintptr_t> all;
    do all.push_back(walk.place());
    while (walk.next() && all.size() < 5'000'000);
    return all;
}

[[gnu::noinline]] std::size_t depth_here() {
    Walk walk(registers_here(), false);
    return places(walk).size();
}

std::size_t depth_below(int levels);
std::size_t (*volatile deeper)(int) = depth_below;  // a call that no compiler folds

std::size_t depth_below(int levels) {
    volatile std::size_t depth = levels > 0 ? deeper(levels - 1) : depth_here();
    return depth;
}

TEST(Walk, GoesThroughEveryCall) {
    const std::size_t shallow = deeper(0);
    EXPECT_GT(shallow, 3u);
    EXPECT_EQ(deeper(1000), shallow + 1000);
}

thread_local std::vector<std::uintptr_t> seen;

void on_signal(int, siginfo_t*, void* context) {
    Walk walk(registers_of(*static_cast<ucontext_t*>(context)), true);
    seen = places(walk);
    // From inside the handler the frame of the signal lies on the way.
    Walk inside(registers_here(), false);
    const std::vector<std::uintptr_t> all = places(inside);
    ASSERT_GE(all.size(), seen.size());
    EXPECT_TRUE(
        std::equal(seen.begin(), seen.end(), all.end() - static_cast<std::ptrdiff_t>(seen.size())));
}

TEST(Walk, CrossesASignalOnAStackOfItsOwn) {
    constexpr std::size_t size = 256 * 1024;
    stack_t stack{};
    stack.ss_size = size;
    stack.ss_sp = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_EQ(sigaltstack(&stack, nullptr), 0);
    struct sigaction action {
    }, before;
    action.sa_sigaction = on_signal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigaction(SIGUSR1, &action, &before);
    raise(SIGUSR1);
    EXPECT_GT(seen.size(), 4u);
    sigaction(SIGUSR1, &before, nullptr);
    stack.ss_flags = SS_DISABLE;
    sigaltstack(&stack, nullptr);
}

TEST(Walk, EndsOnARuinedStack) {
    // Registers that lead nowhere, to themselves, and to what can't be read.
    alignas(16) std::uintptr_t loop[4] = {};
    loop[0] = reinterpret_cast<std::uintptr_t>(loop);
    loop[1] = reinterpret_cast<std::uintptr_t>(&depth_below) + 1;
    for (std::uintptr_t frame :
         {std::uintptr_t{0}, std::uintptr_t{8}, loop[0], ~std::uintptr_t{7}}) {
        Registers registers;
        registers[rbp] = frame;
        registers[rsp] = frame;
        for (std::uintptr_t place : {std::uintptr_t{0}, std::uintptr_t{0x1234}, loop[1]}) {
            registers[return_address] = place;
            Walk walk(registers, true);
            EXPECT_LT(places(walk).size(), 10u);
        }
    }
}

TEST(CarefulMemory, TellsWhatCanBeRead) {
    auto* pages = static_cast<char*>(
        mmap(nullptr, 8192, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(pages + 4096, 4096, PROT_NONE);
    pages[4095] = 7;
    const auto last = reinterpret_cast<std::uintptr_t>(pages + 4095);
    CarefulMemory memory;
    char byte = 0;
    std::uintptr_t word = 0;
    EXPECT_TRUE(memory.read(last, &byte, 1));
    EXPECT_EQ(byte, 7);
    EXPECT_FALSE(memory.word(last, word));
    EXPECT_TRUE(memory.word(last - 7, word));
    EXPECT_FALSE(memory.word(0, word));
    munmap(pages, 8192);
}

std::string lines_of(const Callers& callers) {
    static char room[20000];
    TextBuffer text(room, sizeof room);
    add_callers(text, callers);
    return std::string(text.text());
}

Location call_of(char name) {
    static const std::string names = "abcdefghijklmnopqrstuvwxyz";
    Location location;
    location.routine = std::string_view(names).substr(static_cast<std::size_t>(name - 'a'), 1);
    location.start = static_cast<std::uintptr_t>(name);
    location.has_map = true;
    return location;
}

TEST(Callers, FoldRecursion) {
    Callers callers;
    auto lines = [&](std::string_view calls) {
        callers.clear();
        for (char each : calls) callers.add(call_of(each));
        return lines_of(callers);
    };
    EXPECT_EQ(lines("ab"), "    in a\n    called by b\n");
    EXPECT_EQ(lines("aaab"), "    in a\n        (this call 2 more times)\n    called by b\n");
    EXPECT_EQ(lines("xababab"),
              "    in x\n    called by a\n    called by b\n        (these 2 calls 2 more times)\n");
    EXPECT_EQ(lines("abcabd"),
              "    in a\n    called by b\n    called by c\n    called by a\n    called by b\n"
              "    called by d\n");
    EXPECT_EQ(lines("aabaab"),
              "    in a\n        (this call 1 more time)\n    called by b\n"
              "        (these 2 calls 1 more time)\n");
}

TEST(Callers, KeepBothEndsOfALongChain) {
    Callers callers;
    callers.clear();
    std::uint32_t mixed = 1;
    for (int i = 0; i < 100000; ++i) {
        mixed = mixed * 1664525 + 1013904223;
        callers.add(call_of(static_cast<char>('a' + (mixed >> 16) % 20)));
    }
    callers.add(call_of('z'));
    EXPECT_EQ(callers.total(), 100001u);
    EXPECT_EQ(callers.count(), Callers::most_first + Callers::most_last);
    const std::string text = lines_of(callers);
    EXPECT_NE(text.find(" more calls ..."), std::string::npos);
    EXPECT_EQ(text.substr(text.size() - 16), "    called by z\n");
}

}  // namespace
}  // namespace tarn::traceback
