#include "exceptions/handler_frames.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "failure/failure.h"
#include "failure/report.h"
#include "platform/kernel/fault.h"

namespace tarn::exceptions {
namespace {

struct Frame {
    Frame* before;
    FrameHandler handler;
    void* fourth;
    void* first;
};

struct Registered {
    FrameHandler handler = nullptr;
    char* block = nullptr;
    std::size_t size = 0;
};

struct Chain {
    Registered registered[2];
    Frame* head = nullptr;
};
[[gnu::tls_model("initial-exec")]] thread_local Chain chain;

constexpr const char* names[] = {"Tarnick Exception handler has not been registerd\n",
                                 "Tarnick Virtual handler has not been registerd\n"};

bool on_stack(const void* block, std::size_t size) {
    platform::StackBounds stack;
    if (!platform::stack_bounds(stack)) return true;
    const auto start = reinterpret_cast<std::uintptr_t>(block);
    return start >= stack.low && start < stack.high && size <= stack.high - start;
}

bool is_free(const char* place) {
    std::uintptr_t words[2];
    std::memcpy(words, place, sizeof words);
    return words[0] == ~std::uintptr_t{0} && words[1] == ~std::uintptr_t{0};
}

bool is_ours(FrameHandler handler) {
    for (const Registered& each : chain.registered) {
        if (each.handler == handler) return true;
    }
    return false;
}

}  // namespace

void register_frames(FrameKind kind, FrameHandler handler, void* block, std::size_t size) {
    if (!on_stack(block, size)) {
        failure::fail_text(
            "Tarnick Exception handler expects the first argument to be a stack variable\n");
    }
    std::memset(block, 0xFF, size);
    chain.registered[static_cast<int>(kind)] = {handler, static_cast<char*>(block), size};
}

FrameHandler install_frame(FrameKind kind) {
    const Registered& own = chain.registered[static_cast<int>(kind)];
    if (own.handler == nullptr) failure::fortran_error(names[static_cast<int>(kind)]);
    if (!on_stack(own.block, own.size)) {
        failure::fail_text(
            "Tarnick Exception handler requires that the second argument is a stack variable\n");
    }
    std::size_t offset = own.size / sizeof(Frame) * sizeof(Frame);
    do {
        if (offset == 0) {
            failure::fail_text(
                "Out of stack space, cannot install exception handler.\nIncrease "
                "EXCEPTION_STACKSIZE.\n");
        }
        offset -= sizeof(Frame);
    } while (!is_free(own.block + offset));
    char* const place = own.block + offset;
    const Frame frame{chain.head, own.handler, place + 3 * sizeof(void*), place};
    std::memcpy(place, &frame, sizeof frame);
    chain.head = reinterpret_cast<Frame*>(place);
    platform::give_handler_stack();
    return own.handler;
}

void remove_frame() {
    if (chain.registered[0].handler == nullptr && chain.registered[1].handler == nullptr)
        failure::fortran_error("Tarnick Exception handler has not been registered\n");
    Frame frame{};
    if (chain.head != nullptr) std::memcpy(&frame, chain.head, sizeof frame);
    if (chain.head == nullptr || !is_ours(frame.handler)) {
        std::fprintf(stderr, "Unable to remove unknown handler 0x%08lx 0x%08lx\n",
                     reinterpret_cast<unsigned long>(chain.head),
                     reinterpret_cast<unsigned long>(frame.handler));
        std::exit(1);
    }
    std::memset(chain.head, 0xFF, sizeof(Frame));
    chain.head = frame.before;
}

}  // namespace tarn::exceptions
