#include "frame/file_numbers.h"

#include <cstdlib>
#include <cstring>

#include "frame/link_name.h"

namespace tarn::frame {
namespace {

constinit FileNumbers numbers{};

bool is_console(int number) {
    for (int console : numbers.console) {
        if (number > 2 && number == console) return true;
    }
    return false;
}

}  // namespace

FileNumbers& file_numbers() {
    return numbers;
}

int take_file_number(std::intptr_t handle, const char* name) {
    char* copy = name ? strdup(name) : nullptr;
    if (name && !copy) return -1;
    int number;
    if (numbers.free_count > 0) {
        number = numbers.free_numbers[--numbers.free_count];
    } else {
        while (is_console(numbers.next_unused)) ++numbers.next_unused;
        if (numbers.next_unused >= file_number_count) {
            std::free(copy);
            return -1;
        }
        number = numbers.next_unused++;
    }
    numbers.slots[number] = {handle, copy};
    return number;
}

void give_back_file_number(int number) {
    if (number < 3 || number >= numbers.next_unused || is_console(number)) return;
    for (int i = 0; i < numbers.free_count; ++i) {
        if (numbers.free_numbers[i] == number) return;
    }
    std::free(numbers.slots[number].name);
    numbers.slots[number] = {};
    numbers.flags[number] = 0;
    numbers.free_numbers[numbers.free_count++] = static_cast<std::int16_t>(number);
}

void initialise_file_numbers() {
    numbers = {};
    // The system's descriptors 0, 1 and 2 are the standard handles; nothing else stands for them.
    constexpr const char* names[] = {"STDIN", "STDOUT", "STDERR"};
    for (int i = 0; i < 3; ++i) take_file_number(i, names[i]);
    for (int i = 0; i < 3; ++i) {
        int console = 3 + i;  // the first that the other two don't hold
        numbers.console[i] = console;
        numbers.slots[console] = {numbers.slots[i].handle, strdup(names[i])};
        numbers.flags[console] = i == 0 ? file_readable : file_writable;
        numbers.flags[i] = static_cast<std::uint8_t>(numbers.flags[console] | file_standard);
    }
}

}  // namespace tarn::frame

extern "C" TARN_EXPORT int __get_tarnickfilehandle(std::intptr_t handle, const char* name) {
    return tarn::frame::take_file_number(handle, name);
}
