// This file alone is compiled with -fexceptions: the frame of the call needs a cleanup for the
// exceptions of compiled C++ and for a thread that is cancelled. Nothing is caught here.
#include "winio/call_out.h"

#include "failure/reporter.h"

namespace tarn::winio {
namespace {

constexpr std::int32_t nothing_done = 2;

struct frame_guard {
    const call_frame& frame;
    bool returned = false;
    ~frame_guard() { leave_call(frame, !returned); }
};

}  // namespace

std::int32_t call_out(call_back action, const call_frame& frame) {
    frame_guard guard{frame};
    // What failed once may fail again, and the report's window would go with it.
    if (failure::is_reporting()) return nothing_done;
    const std::int32_t result = action();
    guard.returned = true;
    return result;
}

}  // namespace tarn::winio
