// Frames of handlers on a block of the caller's stack, as code written for chains of handlers asks
// for. The filter serves every fault of the process here, with a frame or without; a frame says
// only that the thread wants its faults watched.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::exceptions {

using FrameHandler = void (*)();

enum class FrameKind : std::uint8_t { faults, storage };

// `block` must lie on the calling thread's stack; it is filled with -1.
void register_frames(FrameKind kind, FrameHandler handler, void* block, std::size_t size);
// The handler, or null where it is the chain's head already.
FrameHandler install_frame(FrameKind kind);
void remove_frame();

}  // namespace tarn::exceptions
