// The files with code that the process has loaded, as the system lists them. Takes no lock of the
// loader's, which may have been at work when the fault came.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarn::exceptions {

struct LoadedCode {
    std::uint64_t start, end;
    std::string_view path;
};

void list_loaded_code(void (*each)(const LoadedCode& code, void* data), void* data);

template <class Each>
void list_loaded_code(Each each) {
    list_loaded_code([](const LoadedCode& code, void* data) { (*static_cast<Each*>(data))(code); },
                     &each);
}

}  // namespace tarn::exceptions
