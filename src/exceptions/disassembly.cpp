// Instructions in words come from the system's disassembler, where it is installed. It is loaded
// when a report's file or its window is made, and by nobody else.
#include <algorithm>
#include <cstring>
#include <dlfcn.h>

#include "exceptions/instruction.h"
#include "exceptions/registers_text.h"
#include "traceback/careful_memory.h"

namespace tarn::exceptions {
namespace {

using Handle = std::size_t;

struct Disassembler {
    bool looked_for = false;
    int (*open)(int architecture, int mode, Handle* handle) = nullptr;
    void* (*make)(Handle handle) = nullptr;
    bool (*next)(Handle handle, const std::uint8_t** code, std::size_t* size,
                 std::uint64_t* address, void* instruction) = nullptr;
    Handle handle = 0;
    char* instruction = nullptr;
    std::size_t words = 0;  // where the instruction's name stands in its record; 0: there is none
};
constinit Disassembler the_disassembler;

constexpr std::size_t operands_behind_name = 32;

template <class Function>
bool find(void* module, const char* name, Function*& function) {
    function = reinterpret_cast<Function*>(dlsym(module, name));
    return function != nullptr;
}

// The record grew from version to version; a known instruction tells where its name stands.
bool find_words(Disassembler& disassembler) {
    constexpr std::size_t largest_record = 128;
    const std::uint8_t nop[] = {0x90};
    const std::uint8_t* code = nop;
    std::size_t size = sizeof nop;
    std::uint64_t address = 0;
    if (!disassembler.next(disassembler.handle, &code, &size, &address, disassembler.instruction))
        return false;
    for (std::size_t at = 0; at < largest_record; ++at) {
        if (std::memcmp(disassembler.instruction + at, "nop", 4) != 0) continue;
        disassembler.words = at;
        return true;
    }
    return false;
}

bool load(Disassembler& disassembler) {
    if (disassembler.looked_for) return disassembler.words != 0;
    disassembler.looked_for = true;
    constexpr int x86 = 3;
    constexpr int wide = 8;
    void* module = nullptr;
    for (const char* name : {"libcapstone.so.5", "libcapstone.so.4", "libcapstone.so.3"}) {
        module = dlopen(name, RTLD_NOW | RTLD_LOCAL);
        if (module != nullptr) break;
    }
    if (module == nullptr || !find(module, "cs_open", disassembler.open) ||
        !find(module, "cs_malloc", disassembler.make) ||
        !find(module, "cs_disasm_iter", disassembler.next))
        return false;
    if (disassembler.open(x86, wide, &disassembler.handle) != 0) return false;
    disassembler.instruction = static_cast<char*>(disassembler.make(disassembler.handle));
    return disassembler.instruction != nullptr && find_words(disassembler);
}

void add_bytes(FileWriter& file, const std::uint8_t* bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) file.hexadecimal(bytes[i], 2).add(" ");
}

void add_address(FileWriter& file, std::uint64_t address, std::uint64_t fault) {
    file.add(address == fault ? ">" : " ").hexadecimal(address, 8).add("  ");
}

void add_invalid(FileWriter& file, std::uint64_t address) {
    file.add("Invalid instruction address = ").hexadecimal(address, 8).add("\n");
}

// Decodes at a reference to an address, which goes on behind the instruction. Where the bytes make
// none, one of them is shown.
bool decode_instruction(const Disassembler& disassembler, std::uint64_t& address,
                        std::uint64_t fault, FileWriter& file) {
    std::uint8_t bytes[longest_instruction];
    std::size_t size = read_code(address, bytes);
    if (size == 0) {
        add_invalid(file, address);
        return false;
    }
    const std::uint8_t* code = bytes;
    const std::uint64_t start = address;
    add_address(file, start, fault);
    if (!disassembler.next(disassembler.handle, &code, &size, &address, disassembler.instruction)) {
        file.add("db ").hexadecimal(bytes[0], 2).add("\n");
        ++address;
        return true;
    }
    if (state().code_bytes) add_bytes(file, bytes, address - start);
    const char* name = disassembler.instruction + disassembler.words;
    file.add(name).add(" ").add(name + operands_behind_name).add("\n");
    return true;
}

// Without a disassembler nobody knows where an instruction ends.
bool show_bytes(std::uint64_t& address, std::uint64_t end, std::uint64_t fault, FileWriter& file) {
    std::uint8_t bytes[longest_instruction];
    const std::size_t size = read_code(address, bytes);
    if (size == 0) {
        add_invalid(file, address);
        return false;
    }
    const std::size_t shown = address < end ? std::min<std::uint64_t>(size, end - address) : size;
    add_address(file, address, fault);
    add_bytes(file, bytes, shown);
    file.add("\n");
    address += shown;
    return true;
}

}  // namespace

void add_instructions(FileWriter& file, std::uint64_t address, int count) {
    add_instructions(file, address, address, count);
}

void add_instructions(FileWriter& file, std::uint64_t from, std::uint64_t fault, int count) {
    const Disassembler& disassembler = the_disassembler;
    const bool words = load(the_disassembler);
    bool more = true;
    while (from < fault && more) {
        more = words ? decode_instruction(disassembler, from, fault, file)
                     : show_bytes(from, fault, fault, file);
    }
    // What was decoded from the middle of an instruction may have gone past the fault.
    from = fault;
    if (!words && more) show_bytes(from, fault, fault, file);
    while (words && more && count-- > 0) more = decode_instruction(disassembler, from, fault, file);
}

}  // namespace tarn::exceptions
