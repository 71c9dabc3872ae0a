#include "platform/x11/staging.h"

#include <algorithm>
#include <cstring>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xcb/shm.h>

namespace tarn::x11 {
namespace {

using platform::RECT;
using platform::Surface;

constexpr std::size_t least_size = std::size_t{4} << 20;
constexpr std::size_t most_size = std::size_t{64} << 20;

// Descriptors of memory pass only through local sockets; xcb gives up a connection that can't.
bool is_local(const Connection& connection) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    int socket = xcb_get_file_descriptor(connection.xcb);
    return getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) == 0 &&
           address.ss_family == AF_UNIX;
}

bool has_shared_memory(const Connection& connection) {
    const xcb_query_extension_reply_t* extension =
        xcb_get_extension_data(connection.xcb, &xcb_shm_id);
    if (!extension || !extension->present || !is_local(connection)) return false;
    Reply<xcb_shm_query_version_reply_t> version(xcb_shm_query_version_reply(
        connection.xcb, xcb_shm_query_version(connection.xcb), nullptr));
    return version && (version->major_version > 1 || version->minor_version >= 2);
}

// Copies the rectangle to rows without gaps.
void copy(const Surface& surface, const RECT& rect, const RECT& caret, std::uint32_t* to) {
    auto width = static_cast<std::size_t>(rect.width());
    for (std::int32_t y = rect.top; y < rect.bottom; ++y, to += width) {
        const std::uint32_t* from =
            surface.pixels + static_cast<std::ptrdiff_t>(y) * surface.stride + rect.left;
        std::memcpy(to, from, width * sizeof *to);
        if (y < caret.top || y >= caret.bottom) continue;
        std::int32_t end = std::min(caret.right, rect.right);
        for (std::int32_t x = std::max(caret.left, rect.left); x < end; ++x)
            to[x - rect.left] ^= 0xFFFFFF;
    }
}

}  // namespace

void Staging::start(const Connection& connection) {
    shared_ = has_shared_memory(connection) && map(connection, least_size);
}

// A segment that the server has mapped too. An old one is let go; the server keeps it until it has
// done what it was asked.
bool Staging::map(const Connection& connection, std::size_t bytes) {
    int file = memfd_create("tarn-window", MFD_CLOEXEC);
    if (file < 0) return false;
    void* memory = MAP_FAILED;
    if (ftruncate(file, static_cast<off_t>(bytes)) == 0)
        memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory == MAP_FAILED) {
        close(file);
        return false;
    }
    std::uint32_t segment = xcb_generate_id(connection.xcb);
    // xcb closes the descriptor when it is sent.
    Reply<xcb_generic_error_t> error(xcb_request_check(
        connection.xcb, xcb_shm_attach_fd_checked(connection.xcb, segment, file, 1)));
    if (error) {
        munmap(memory, bytes);
        return false;
    }
    if (memory_) {
        xcb_shm_detach(connection.xcb, segment_);
        munmap(memory_, size_);
    }
    segment_ = segment;
    memory_ = static_cast<std::uint32_t*>(memory);
    size_ = bytes;
    used_ = 0;
    return true;
}

void Staging::put(const Connection& connection, xcb_window_t window, const Surface& surface,
                  RECT rect, const RECT& caret) {
    rect.left = std::max(rect.left, 0);
    rect.top = std::max(rect.top, 0);
    rect.right = std::min(rect.right, surface.width);
    rect.bottom = std::min(rect.bottom, surface.height);
    if (!surface.pixels || rect.empty()) return;
    if (!context_) {
        // Any window of ours has the depth and the root that the context is for.
        const std::uint32_t no_exposures = 0;
        context_ = xcb_generate_id(connection.xcb);
        xcb_create_gc(connection.xcb, context_, window, XCB_GC_GRAPHICS_EXPOSURES, &no_exposures);
    }
    if (shared_) {
        put_shared(connection, window, surface, rect, caret);
    } else {
        put_plain(connection, window, surface, rect, caret);
    }
}

void Staging::put_shared(const Connection& connection, xcb_window_t window, const Surface& surface,
                         const RECT& rect, const RECT& caret) {
    std::size_t row = static_cast<std::size_t>(rect.width()) * sizeof(std::uint32_t);
    std::size_t whole = row * static_cast<std::size_t>(rect.height());
    if (whole > size_ && size_ < most_size)
        map(connection, std::min(std::max(whole * 2, least_size), most_size));
    for (RECT band = rect; band.top < rect.bottom; band.top = band.bottom) {
        auto rows = static_cast<std::int32_t>(
            std::min<std::size_t>(size_ / row, static_cast<std::size_t>(rect.bottom - band.top)));
        if (rows == 0) return;  // wider than the longest segment: no screen is
        band.bottom = band.top + rows;
        std::size_t bytes = row * static_cast<std::size_t>(rows);
        if (used_ + bytes > size_) {
            // An answer says that the server has read all that was put before.
            Reply<xcb_get_input_focus_reply_t> done(xcb_get_input_focus_reply(
                connection.xcb, xcb_get_input_focus(connection.xcb), nullptr));
            used_ = 0;
        }
        copy(surface, band, caret, memory_ + used_ / sizeof(std::uint32_t));
        auto width = static_cast<std::uint16_t>(band.width());
        auto height = static_cast<std::uint16_t>(rows);
        xcb_shm_put_image(connection.xcb, window, context_, width, height, 0, 0, width, height,
                          static_cast<std::int16_t>(band.left), static_cast<std::int16_t>(band.top),
                          connection.depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment_,
                          static_cast<std::uint32_t>(used_));
        used_ += bytes;
    }
}

void Staging::put_plain(const Connection& connection, xcb_window_t window, const Surface& surface,
                        const RECT& rect, const RECT& caret) {
    std::size_t row = static_cast<std::size_t>(rect.width()) * sizeof(std::uint32_t);
    constexpr std::size_t request_head = 64, good_size = 1 << 20;
    std::size_t room = std::min(connection.longest_request - request_head, good_size);
    for (RECT band = rect; band.top < rect.bottom; band.top = band.bottom) {
        auto rows = static_cast<std::int32_t>(std::clamp<std::size_t>(
            room / row, 1, static_cast<std::size_t>(rect.bottom - band.top)));
        band.bottom = band.top + rows;
        plain_.resize(static_cast<std::size_t>(band.width()) * static_cast<std::size_t>(rows));
        copy(surface, band, caret, plain_.data());
        xcb_put_image(connection.xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, window, context_,
                      static_cast<std::uint16_t>(band.width()), static_cast<std::uint16_t>(rows),
                      static_cast<std::int16_t>(band.left), static_cast<std::int16_t>(band.top), 0,
                      connection.depth,
                      static_cast<std::uint32_t>(plain_.size() * sizeof(std::uint32_t)),
                      reinterpret_cast<const std::uint8_t*>(plain_.data()));
    }
}

}  // namespace tarn::x11
