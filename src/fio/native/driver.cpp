// User device drivers: routines of the program that stand in for a file.
#include "fio/native/connect.h"

namespace tarn::fio::native {
namespace {

// The capacity comes twice: by address, and as the length of the CHARACTER buffer.
using Driver = void (*)(char* buffer, std::int32_t* capacity, std::int32_t* length,
                        std::int32_t* operation, std::int16_t* status, std::size_t buffer_length);

constexpr std::int32_t driver_message = 155;

}  // namespace

bool call_driver(Unit& unit, ActionCode operation, char* buffer, std::int32_t capacity,
                 std::int32_t& length) {
    if (unit.driver == nullptr) return IO_error(driver_message);
    auto code = static_cast<std::int32_t>(operation);
    std::int32_t room = capacity;
    std::int16_t status = 0;
    {
        // The driver may well do I/O of its own, on other units.
        const CallOut call_out;
        reinterpret_cast<Driver>(unit.driver)(buffer, &room, &length, &code, &status,
                                              static_cast<std::size_t>(capacity));
    }
    if (length > capacity) length = capacity;
    if (length < 0) length = 0;
    return status == 0 || IO_error(driver_message);
}

}  // namespace tarn::fio::native
