// The file number table: small numbers that every lower layer calls file handles.
//
// The console has numbers of its own beside 0, 1 and 2, so that the standard streams can be
// rerouted to a window while the console stays reachable.
#pragma once

#include <cstdint>

namespace tarn::frame {

inline constexpr int file_number_count = 1024;

struct FileNumber {
    std::intptr_t handle;  // the system's
    char* name;            // a private copy, or null
};

struct FileNumbers {
    FileNumber slots[file_number_count];
    std::uint8_t flags[file_number_count];
    std::int16_t free_numbers[file_number_count];
    int free_count;
    int next_unused;
    int console[3];  // the numbers of console input, output, error; 0 before they are set
};
FileNumbers& file_numbers();

inline constexpr std::uint8_t file_readable = 0x02;
inline constexpr std::uint8_t file_writable = 0x04;
inline constexpr std::uint8_t file_standard = 0x20;

// Takes a number for a system handle: the last one given back, else the next unused one; -1 when
// the table is full or storage has run out.
int take_file_number(std::intptr_t handle, const char* name);
void give_back_file_number(int number);

// Clears the table and enters the standard handles and the console's numbers.
void initialise_file_numbers();

}  // namespace tarn::frame
