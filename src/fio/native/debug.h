// What a debugger or a puzzled programmer asks of the units.
#pragma once

#include <cstdint>
#include <string>

namespace tarn::fio::native {

std::string unit_information(std::int32_t number);
std::string unit_file_name(std::int32_t number);
std::string unit_list_text();
std::string io_buffer_text();

}  // namespace tarn::fio::native
