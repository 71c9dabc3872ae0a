#include "diagnostics/report_cells.h"

#include <algorithm>
#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include "exceptions/registers_text.h"
#include "platform/base/text.h"
#include "platform/kernel/console.h"
#include "platform/kernel/module.h"
#include "traceback/careful_memory.h"

namespace tarn::diagnostics {
namespace {

// Takes the next line off a text, without its indent.
std::string_view take_line(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    return line;
}

std::string without_indent(std::string_view text) {
    std::string lines;
    while (!text.empty()) {
        const std::string_view line = take_line(text);
        if (!line.empty()) lines.append(line).push_back('\n');
    }
    return lines;
}

bool same_words(std::string_view one, std::string_view other) {
    while (!one.empty() && one.back() == ':') one.remove_suffix(1);
    return one.size() == other.size() && strncasecmp(one.data(), other.data(), one.size()) == 0;
}

// What a fault's text says beyond its title.
std::string detail_of(std::string_view text, std::string_view title) {
    std::string detail = without_indent(text);
    const std::string_view first = std::string_view(detail).substr(0, detail.find('\n'));
    if (same_words(first, title)) detail.erase(0, first.size() + 1);
    return detail;
}

template <class Write>
std::string text_of(Write write) {
    std::string room(32 * 1024, '\0');
    traceback::TextBuffer text(room.data(), room.size());
    {
        exceptions::FileWriter writer(text);
        write(writer);
    }
    room.resize(text.text().size());
    return room;
}

void add_line(std::string& to, std::string_view text) {
    to.append(text);
    if (!text.ends_with('\n')) to.push_back('\n');
}

void add_hexadecimal(std::string& to, std::uint64_t value, unsigned digits) {
    char room[20];
    to.append(traceback::TextBuffer(room, sizeof room).hexadecimal(value, digits).text());
}

}  // namespace

Report make_report(std::string_view title, std::string_view text, std::string_view callers) {
    Report report;
    report.callers = without_indent(callers);
    if (!title.empty()) {
        report.headline = title;
        report.detail = detail_of(text, title);
        return report;
    }
    if (text.starts_with("*** ")) text.remove_prefix(4);
    while (report.headline.empty() && !text.empty()) report.headline = take_line(text);
    report.detail = without_indent(text);
    return report;
}

void add_machine(Report& report, const exceptions::Context& context, std::uintptr_t memory) {
    report.has_machine = true;
    report.context = context;
    report.memory = memory;
    report.registers = text_of(
        [&](exceptions::FileWriter& file) { exceptions::add_integer_registers(file, context); });
    report.floating = text_of(
        [&](exceptions::FileWriter& file) { exceptions::add_float_registers(file, context); });
    report.instructions = instructions_from(report, context.instruction);
}

std::string instructions_from(const Report& report, std::uint64_t from) {
    return text_of([&](exceptions::FileWriter& file) {
        exceptions::add_instructions(file, from, report.context.instruction,
                                     exceptions::state().disassembly_lines);
    });
}

std::string saved_text(const Report& report) {
    std::string text = "Runtime error from program:";
    add_line(text, platform::program_path());
    add_line(text, report.headline);
    add_line(text, report.detail);
    add_line(text, report.callers);
    if (!report.has_machine) return text;
    add_line(text, report.registers);
    add_line(text, report.instructions.substr(0, report.instructions.find('\n')));
    return text;
}

std::string whole_text(const Report& report) {
    std::string text = report.headline + "\n" + report.detail + "\n" + report.callers;
    if (report.has_machine)
        text += "\n" + report.registers + "\n" + report.instructions + "\n" + report.floating;
    return text;
}

std::string copied_text(const Report& report) {
    return "Tarnick Software - Exception Diagnostic\nfrom " + platform::program_path() + "\n" +
           whole_text(report);
}

std::string dump_text(std::uintptr_t address) {
    constexpr std::size_t in_line = 16;
    constexpr std::size_t lines = 128;
    unsigned char bytes[in_line * lines];
    traceback::CarefulMemory memory;
    if (address > UINTPTR_MAX - sizeof bytes || !memory.read(address, bytes, sizeof bytes))
        return "Read Access is not available on this address.";
    std::string text;
    for (std::size_t line = 0; line < lines; ++line) {
        const unsigned char* const row = bytes + line * in_line;
        text.push_back(' ');
        add_hexadecimal(text, address + line * in_line, 8);
        for (std::size_t i = 0; i < in_line; ++i) {
            if (i % 4 == 0) text.push_back(' ');
            add_hexadecimal(text, row[i], 2);
        }
        std::string letters(row, row + in_line);
        for (char& each : letters) {
            const auto byte = static_cast<unsigned char>(each);
            if (byte < 32 || (byte >= 127 && byte < 160)) each = '.';
        }
        text.append(" ").append(platform::utf8_from_page(letters)).push_back('\n');
    }
    return text;
}

bool write_file(const std::string& path, std::string_view text) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0) return false;
    const bool written = platform::write_descriptor(file, text);
    return close(file) == 0 && written;
}

}  // namespace tarn::diagnostics
