#include "fio/file/native_frame.h"

namespace tarn::fio {
namespace {

unsigned char marker_of(std::size_t size) {
    return size == long_frame ? 255 : 254;
}

std::int64_t load_length(const char* bytes, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = count; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return value <= INT64_MAX ? static_cast<std::int64_t>(value) : -1;
}

void store_length(char* bytes, std::size_t count, std::int64_t length) {
    auto value = static_cast<std::uint64_t>(length);
    for (std::size_t i = 0; i < count; ++i, value >>= 8) bytes[i] = static_cast<char>(value);
}

// The marker at one end of a frame, the length in the rest of it.
std::int64_t load_frame(const char* marker, const char* length, std::size_t size) {
    const auto form = static_cast<unsigned char>(*marker);
    if (native_frame_size(form) != size) return -1;
    return size == short_frame ? form : load_length(length, size - 1);
}

void store_frame(char* marker, char* length_at, std::size_t size, std::int64_t length) {
    if (size == short_frame) {
        *marker = static_cast<char>(length);
        return;
    }
    *marker = static_cast<char>(marker_of(size));
    store_length(length_at, size - 1, length);
}

}  // namespace

std::int64_t load_native_front(const char* bytes, std::size_t size) {
    return load_frame(bytes, bytes + 1, size);
}

std::int64_t load_native_back(const char* bytes, std::size_t size) {
    return load_frame(bytes + size - 1, bytes, size);
}

void store_native_front(char* bytes, std::size_t size, std::int64_t length) {
    store_frame(bytes, bytes + 1, size, length);
}

void store_native_back(char* bytes, std::size_t size, std::int64_t length) {
    store_frame(bytes + size - 1, bytes, size, length);
}

std::int64_t native_record_start(std::int64_t end, const char* bytes, std::size_t count) {
    if (count == 0) return -1;
    const std::size_t size = native_frame_size(static_cast<unsigned char>(bytes[count - 1]));
    if (size == 0 || size > count) return -1;
    const std::int64_t length = load_native_back(bytes + count - size, size);
    const std::int64_t room = end - static_cast<std::int64_t>(2 * size);
    return length < 0 || length > room ? -1 : room - length;
}

}  // namespace tarn::fio
