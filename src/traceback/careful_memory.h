// Reads memory that may not be there: a failing program's stack, a pointer that a fault left. An
// address that can't be read gives false, never a signal. Uses no heap and takes no lock.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::traceback {

class CarefulMemory {
  public:
    bool read(std::uintptr_t address, void* to, std::size_t size);
    bool word(std::uintptr_t address, std::uintptr_t& value) {
        return read(address, &value, sizeof value);
    }

  private:
    static constexpr std::size_t window = 2048;

    bool fill(std::uintptr_t address);

    std::uintptr_t start_ = 0;  // of what `copy_` holds
    std::size_t length_ = 0;
    char copy_[window];
};

}  // namespace tarn::traceback
