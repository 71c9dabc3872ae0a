// The console: descriptors 0 and 1 for whoever reads and writes without a unit of the list.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

#include "fio/dialect.h"
#include "fio/file/file.h"
#include "fio/unit.h"
#include "frame/state.h"

namespace tarn::fio {
namespace {

struct Console {
    std::recursive_mutex lock;
    Unit* attached_input = nullptr;
    Unit* attached_output = nullptr;
    Unit* own_input = nullptr;  // used while nothing is attached
    Unit* own_output = nullptr;
};

constinit Console console;

// A program in windows mode has the default text window for its console.
void show_in_window(Unit& unit) {
    if (frame::state().windows_mode == 0 || unit.file.window == console_window ||
        window_stream().write == nullptr)
        return;
    file_flush(unit.file);
    unit.file.window = console_window;
    unit.file.seekable = false;
    unit.gnu.unbuffered = true;
}

Unit& own_unit(Unit*& place, int descriptor, std::uint32_t access_bits) {
    if (place == nullptr) {
        place = Unit_create(-1, true);
        file_adopt(place->file, descriptor, access_bits, false);
    }
    show_in_window(*place);
    return *place;
}

Unit& input() {
    if (console.attached_input != nullptr) {
        show_in_window(*console.attached_input);
        return *console.attached_input;
    }
    return own_unit(console.own_input, 0, access_read);
}

Unit& output() {
    if (console.attached_output != nullptr) {
        show_in_window(*console.attached_output);
        return *console.attached_output;
    }
    return own_unit(console.own_output, 1, access_write);
}

// Gives what was read ahead to the unit that reads on.
void hand_over(File& from, File& to) {
    const std::size_t left = from.data_count - from.read_index;
    if (left == 0 || !file_reserve(to, std::max(left, file_buffer_size))) return;
    std::memcpy(to.buffer, from.buffer + from.read_index, left);
    to.read_index = to.write_index = 0;
    to.data_count = left;
    to.logical_position = to.buffer_position = from.logical_position;
    to.real_position = from.real_position;
    from.read_index = from.data_count;
}

int write(std::string_view text, std::string_view line_end) {
    const std::lock_guard guard(console.lock);
    Unit& unit = output();
    hold_unit(unit);
    int err = 0;
    file_write(unit.file, text.data(), text.size(), err);
    if (err == 0) file_write(unit.file, line_end.data(), line_end.size(), err);
    if (err == 0 && (unit.file.terminal || unit.gnu.unbuffered)) err = file_flush(unit.file);
    release_unit(&unit);
    return err;
}

}  // namespace

void console_attach(Unit& unit) {
    const std::lock_guard guard(console.lock);
    if (unit.file.descriptor == 0) {
        console.attached_input = &unit;
        if (console.own_input != nullptr) hand_over(console.own_input->file, unit.file);
    } else if (unit.file.descriptor == 1) {
        if (console.own_output != nullptr) {
            file_flush(console.own_output->file);
            unit.file.real_position = console.own_output->file.real_position;
            unit.file.logical_position = unit.file.buffer_position = unit.file.real_position;
        }
        console.attached_output = &unit;
    }
    show_in_window(unit);
}

void console_to_window() {
    const std::lock_guard guard(console.lock);
    for (Unit* unit : {console.attached_input, console.attached_output})
        if (unit != nullptr) show_in_window(*unit);
}

void console_detach(Unit& unit) {
    const std::lock_guard guard(console.lock);
    if (console.attached_input == &unit) {
        console.attached_input = nullptr;
        // What can be sought back is read again by whoever comes next.
        if (!unit.file.seekable && unit.file.read_index < unit.file.data_count) {
            hand_over(unit.file, own_unit(console.own_input, 0, access_read).file);
        }
    }
    if (console.attached_output == &unit) {
        file_flush(unit.file);
        console.attached_output = nullptr;
    }
}

void flush_console_output() {
    if (!console.lock.try_lock()) return;
    if (console.attached_output == nullptr) {
        if (console.own_output != nullptr) file_flush(console.own_output->file);
    } else if (console.attached_output->lock.try_lock()) {
        Unit& unit = *console.attached_output;
        if (unit.statements == 0) {
            file_flush(unit.file);
        }
        unit.lock.unlock();
    }
    console.lock.unlock();
}

std::ptrdiff_t sys_consoleRead(char* bytes, std::size_t capacity) {
    const std::lock_guard guard(console.lock);
    Unit& unit = input();
    if (unit.file.terminal) flush_console_output();
    std::size_t stored = 0;
    for (;;) {
        char c = 0;
        int err = 0;
        if (file_read(unit.file, &c, 1, err) != 1) return -1;
        if (c == '\n') return static_cast<std::ptrdiff_t>(stored);
        if (c != '\r' && stored < capacity) bytes[stored++] = c;
    }
}

int sys_consoleWriteLine(std::string_view text) {
    return write(text, native_dialect.line_end);
}

int sys_consoleWrite(std::string_view text) {
    return write(text, {});
}

}  // namespace tarn::fio
