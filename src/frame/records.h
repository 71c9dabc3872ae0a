// The records that compiled images exchange with the library. Fields that hold addresses, and the
// words beside them, are pointer-sized; the layouts are a contract with images already built.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::frame {

struct StdcallPair {
    std::uintptr_t key;
    void* function;
};

struct StdcallRecord {
    std::intptr_t count;  // of the pairs
    std::intptr_t carried1;
    StdcallRecord* next;  // the library's, in its private copy
    std::intptr_t carried3;
    std::intptr_t carried4;
    const StdcallPair* pairs;
};
static_assert(sizeof(StdcallRecord) == 48 && offsetof(StdcallRecord, pairs) == 40);

// What an executable tells of itself.
struct ProgramInfo {
    void* instance;
    const char* name;
    void* stack_top;                // highest stack address of the main thread
    std::intptr_t version_word;     // low 16 bits, signed: the version in hundredths
    std::uint16_t* control_words;   // the image's own table, from version 148 on
    std::intptr_t carried[2];       // not read
    const StdcallRecord* stdcalls;  // or null; from version 150 on

    std::int16_t version() const { return static_cast<std::int16_t>(version_word); }
};
static_assert(sizeof(ProgramInfo) == 64 && offsetof(ProgramInfo, stdcalls) == 56);

// What a compiled shared library tells of itself.
struct ModuleInfo {
    const char* path;
    std::intptr_t version_word;
    std::uint16_t* control_words;
    const StdcallRecord* stdcalls;

    std::int16_t version() const { return static_cast<std::int16_t>(version_word); }
};
static_assert(sizeof(ModuleInfo) == 32 && offsetof(ModuleInfo, stdcalls) == 24);

// Versions are integers in hundredths.
inline constexpr int library_version = 20390;
inline constexpr int oldest_accepted = 111;  // executables and dynamic libraries
inline constexpr int old_kind_line = 132;    // modules on the two sides of it don't mix
inline constexpr int control_words_since = 148;
inline constexpr int stdcalls_since = 150;
inline constexpr std::int32_t fortran_interface = 2;

// One known module; the list is newest first.
struct LoadedModule {
    LoadedModule* next;
    char* name;  // a private copy, or null
    std::int32_t version;
    std::int16_t is_dll;
    std::uint8_t flags;  // bit 0: version 132 or lower
};

struct TracebackOptions {
    std::int32_t max_routines = 10;
    std::int32_t carried1 = 0;
    std::int32_t carried2 = 0;
    std::uint32_t flags = 0x002;
};
static_assert(sizeof(TracebackOptions) == 16);

inline constexpr std::uint32_t tb_outermost_first = 0x001;
inline constexpr std::uint32_t tb_compress_recursion = 0x002;
inline constexpr std::uint32_t tb_leaving = 0x004;
inline constexpr std::uint32_t tb_kill_dialogbox = 0x008;
inline constexpr std::uint32_t tb_old_dialogbox = 0x020;
inline constexpr std::uint32_t tb_no_control_break = 0x040;
inline constexpr std::uint32_t tb_hardfail = 0x080;
inline constexpr std::uint32_t tb_no_traceback = 0x100;

// What a debugger finds through __ptr_to_debuginfo.
struct DebugInfo {
    std::uint16_t size = 28;
    std::uint16_t version = library_version & 0xFFFF;
    std::uint8_t permit_underflow = 0;
    std::uint8_t sqrt_recovery = 0;
    std::uint8_t zero[2] = {};
    std::uint32_t zero_words[5] = {};
};
static_assert(sizeof(DebugInfo) == 28);

struct GeneralShared {
    std::uint16_t one;
    void* throw_temporary;    // address of the cell __throw_temporary_ptr
    void* exception_machine;  // a cell of the C++ exception machinery
};
static_assert(sizeof(GeneralShared) == 24);

// A FILE of the library. The C library's own stdin, stdout and stderr are other objects.
struct StreamRecord {
    std::uint32_t tag;    // 0x46494C45
    std::uint32_t flags;  // 0x2802 input, 0x2804 output
    StreamRecord* next;
    char* buffer;
    std::int32_t buffer_size;
    std::int32_t file_number;
    unsigned char rest[536];
};
static_assert(sizeof(StreamRecord) == 568);
inline constexpr std::uint32_t stream_tag = 0x46494C45;
inline constexpr std::uint32_t stream_through_window = 0x1000000;

// The argument block of a Fortran main program.
struct FortranArguments {
    std::intptr_t count;
    char** values;
    std::intptr_t third;  // stored, not read
};

// What __get_os_info fills.
struct SystemInfo {
    std::uint16_t platform;
    std::uint16_t major;
    std::uint16_t minor;
    std::uint32_t build;
    std::uint16_t cleared1;
    std::uint32_t cleared2;
    std::uint32_t cleared3;
};
static_assert(sizeof(SystemInfo) == 24);

}  // namespace tarn::frame
