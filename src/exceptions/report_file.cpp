#include "exceptions/report_file.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <gnu/libc-version.h>
#include <sys/auxv.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "exceptions/file_writer.h"
#include "exceptions/loaded_modules.h"
#include "exceptions/registers_text.h"
#include "failure/reporter.h"
#include "frame/records.h"
#include "traceback/callers_text.h"
#include "traceback/traceback.h"

namespace tarn::exceptions {
namespace {

using traceback::CallerLine;
using traceback::Callers;
using traceback::TextBuffer;

// Both are far too large for a handler's stack, and there is one report.
struct Room {
    char callers[64 * 1024];
    char name[PATH_MAX];
    char program[PATH_MAX];
};
constinit Room room{};

std::string_view program_path() {
    const ssize_t length = readlink("/proc/self/exe", room.program, sizeof room.program);
    if (length > 0) return {room.program, static_cast<std::size_t>(length)};
    const auto* name = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    return name != nullptr ? name : "";
}

// Registers of a failure's place: a call, so that only these hold anything of the caller's.
constexpr struct {
    traceback::Register which;
    const char* name;
} call_registers[] = {
    {traceback::return_address, "rip"},
    {traceback::rsp, "rsp"},
    {traceback::rbp, "rbp"},
    {traceback::rbx, "rbx"},
    {traceback::r12, "r12"},
    {traceback::r13, "r13"},
    {traceback::r14, "r14"},
    {traceback::r15, "r15"},
};

template <class Each>
void for_each_register(const ReportFacts& facts, Each each) {
    if (facts.context == nullptr) {
        for (auto saved : call_registers) each(saved.name, facts.registers[saved.which]);
        return;
    }
    for (int i = 0; i < 16; ++i) each(integer_register_names[i], facts.context->integer[i]);
    each("rip", facts.context->instruction);
    each("eflags", facts.context->eflags);
}

struct Versions {
    utsname system{};
    char own[16] = "";

    Versions() {
        uname(&system);
        TextBuffer text(own, sizeof own - 1);
        text.decimal(frame::library_version / 100).add(".").decimal(frame::library_version % 100);
    }
};

// ---- Text ----

void add_machine(FileWriter& file, const ReportFacts& facts) {
    if (facts.context == nullptr) {
        for_each_register(facts, [&](const char* name, std::uint64_t value) {
            file.add(name).add("=").hexadecimal(value, 16).add("\n");
        });
        return;
    }
    add_integer_registers(file, *facts.context);
    file.add("\n");
    add_float_registers(file, *facts.context);
    file.add("\nInstructions:\n");
    file.flush();
    add_instructions(file, facts.context->instruction, state().disassembly_lines);
}

void write_text(FileWriter& file, const ReportFacts& facts) {
    file.add(facts.text);
    TextBuffer callers(room.callers, sizeof room.callers);
    traceback::add_callers(callers, traceback::callers());
    file.add(callers.text()).add("\nProgram: ").add(program_path());
    file.add(", process ").decimal(getpid()).add("\n\nRegisters:\n");
    // What is certain stands in the file before what may fail.
    file.flush();
    add_machine(file, facts);
    file.add("\nLoaded code:\n");
    list_loaded_code([&](const LoadedCode& code) {
        file.add(" ").hexadecimal(code.start, 16).add("-").hexadecimal(code.end, 16);
        file.add("  ").add(code.path).add("\n");
    });
    const Versions versions;
    file.add("\nVersions: tarnlibc ").add(versions.own);
    file.add(", C library ").add(gnu_get_libc_version()).add(", ").add(versions.system.sysname);
    file.add(" ").add(versions.system.release).add("\n");
}

// ---- JSON ----

void add_json_location(FileWriter& file, const traceback::Location& location) {
    char name[1024];
    TextBuffer routine(name, sizeof name);
    if (!location.routine.empty()) traceback::add_routine(routine, location);
    file.add("\"routine\": ").json_text(routine.text());
    file.add(", \"file\": ").json_text(location.file);
    file.add(", \"line\": ").decimal(location.line);
}

void add_json_callers(FileWriter& file, const Callers& callers) {
    file.add("  \"callers\": [");
    for (std::size_t i = 0; i < callers.count(); ++i) {
        const CallerLine& line = callers.line(i);
        file.add(i == 0 ? "\n    {" : ",\n    {");
        add_json_location(file, line.location);
        file.add(", \"address\": \"0x").hexadecimal(line.location.address, 1).add("\"");
        if (!line.location.module.empty())
            file.add(", \"module\": ").json_text(line.location.module);
        if (line.pattern != 0) {
            file.add(", \"repeated_calls\": ").decimal(line.pattern);
            file.add(", \"times\": ").decimal(static_cast<std::int64_t>(line.times));
        }
        file.add("}");
    }
    file.add("\n  ],\n  \"calls\": ").decimal(static_cast<std::int64_t>(callers.total()));
    file.add(",\n  \"callers_left_out\": ");
    file.decimal(static_cast<std::int64_t>(callers.left_out())).add(",\n");
}

void add_json_registers(FileWriter& file, const ReportFacts& facts) {
    file.add("  \"registers\": {");
    const char* separator = "\n";
    for_each_register(facts, [&](const char* name, std::uint64_t value) {
        file.add(separator).add("    \"").add(name).add("\": \"0x").hexadecimal(value, 1);
        file.add("\"");
        separator = ",\n";
    });
    file.add("\n  },\n");
}

void add_json_modules(FileWriter& file) {
    file.add("  \"modules\": [");
    const char* separator = "\n";
    list_loaded_code([&](const LoadedCode& code) {
        file.add(separator).add("    {\"path\": ").json_text(code.path).add(", \"start\": \"0x");
        file.hexadecimal(code.start, 1).add("\", \"end\": \"0x").hexadecimal(code.end, 1);
        file.add("\"}");
        separator = ",\n";
    });
    file.add("\n  ],\n");
}

void write_json(FileWriter& file, const ReportFacts& facts) {
    const Callers& callers = traceback::callers();
    file.add("{\n  \"kind\": ").json_text(facts.kind).add(",\n  \"cause\": ");
    file.json_text(facts.cause).add(",\n  \"number\": ").decimal(facts.number);
    file.add(",\n  \"text\": ").json_text(facts.text).add(",\n  ");
    add_json_location(file, callers.count() > 0 ? callers.line(0).location : traceback::Location{});
    file.add(",\n");
    add_json_callers(file, callers);
    add_json_registers(file, facts);
    add_json_modules(file);
    const Versions versions;
    file.add("  \"program\": ").json_text(program_path());
    file.add(",\n  \"process\": ").decimal(getpid());
    file.add(",\n  \"versions\": {\"tarnlibc\": ").json_text(versions.own);
    file.add(", \"libc\": ").json_text(gnu_get_libc_version());
    file.add(", \"kernel\": ").json_text(versions.system.release).add("}\n}\n");
}

// ---- Files ----

// With `%p` for the process, so that the processes of one job don't write over each other.
bool file_name(std::string_view pattern, std::string_view suffix) {
    TextBuffer name(room.name, sizeof room.name - 1);
    while (!pattern.empty()) {
        const std::size_t mark = pattern.find("%p");
        name.add(pattern.substr(0, mark));
        if (mark == std::string_view::npos) break;
        name.decimal(static_cast<std::uint64_t>(getpid()));
        pattern.remove_prefix(mark + 2);
    }
    name.add(suffix);
    room.name[name.text().size()] = 0;
    return !name.full();
}

void complain(int error) {
    failure::print_line("*** The report could not be written to ");
    failure::print_line(room.name);
    failure::print_line(": ");
    const char* words = strerrordesc_np(error);
    failure::print_line(words != nullptr ? words : "unknown error");
    failure::print_line("\n");
}

void write_file(const char* pattern, std::string_view suffix, const ReportFacts& facts,
                void (*write)(FileWriter&, const ReportFacts&)) {
    if (!file_name(pattern, suffix)) return complain(ENAMETOOLONG);
    const int descriptor = open(room.name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor < 0) return complain(errno);
    FileWriter file(descriptor);
    write(file, facts);
    if (!file.flush()) complain(errno);
    close(descriptor);
}

}  // namespace

bool write_report_files(const ReportFacts& facts) {
    const char* pattern = std::getenv("TARN_REPORT");
    if (pattern == nullptr || *pattern == 0) return false;
    // JSON first: nothing in it needs what may be broken.
    write_file(pattern, ".json", facts, write_json);
    write_file(pattern, "", facts, write_text);
    return true;
}

}  // namespace tarn::exceptions
