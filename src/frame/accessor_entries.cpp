// The cells whose addresses compiled code asks for once and keeps.
#include <cstdint>
#include <ctype.h>
#include <errno.h>

#include "frame/file_numbers.h"
#include "frame/link_name.h"
#include "frame/state.h"

using namespace tarn::frame;

namespace {

// The classic stream objects belong to the C++ library room, which isn't there yet. Until it
// constructs them these are only their places: 100 zero bytes each.
struct alignas(16) StreamObject {
    unsigned char bytes[100];
};
constinit StreamObject cout_object{};
constinit StreamObject cin_object{};
constinit StreamObject cerr_object{};

constinit std::int32_t vd_info[3] = {};
constinit std::int32_t special_flags = 0;
constinit const unsigned short* character_classes = nullptr;

void* stream_cell(int number) {
    ensure_up();
    return &state().streams[number];
}

int* console_cell(int number) {
    ensure_up();
    return &file_numbers().console[number];
}

}  // namespace

extern "C" {

// The calling thread's own errno: a program that caches the address must do so in each thread.
TARN_EXPORT int* __errno_address() {
    return &errno;
}
TARN_EXPORT void* __stdin_address() {
    return stream_cell(0);
}
TARN_EXPORT void* __stdout_address() {
    return stream_cell(1);
}
TARN_EXPORT void* __stderr_address() {
    return stream_cell(2);
}
TARN_EXPORT void* __cout_address() {
    return &cout_object;
}
TARN_EXPORT void* __cin_address() {
    return &cin_object;
}
TARN_EXPORT void* __cerr_address() {
    return &cerr_object;
}
TARN_EXPORT int* __console_stdin_address() {
    return console_cell(0);
}
TARN_EXPORT int* __console_stdout_address() {
    return console_cell(1);
}
TARN_EXPORT int* __console_stderr_address() {
    return console_cell(2);
}
// The C library's own table, indexed from -128 to 255.
TARN_EXPORT const unsigned short** __ctype_ptr_address() {
    character_classes = *__ctype_b_loc();
    return &character_classes;
}
TARN_EXPORT void* __vd_info_address() {
    return vd_info;
}
TARN_EXPORT std::int32_t* __special_flags_address() {
    return &special_flags;
}
TARN_EXPORT int* __WindowsType_address() {
    return &state().windows_type;
}
TARN_EXPORT GeneralShared* __General_shared_address() {
    ensure_up();
    return &state().general_shared;
}
}
