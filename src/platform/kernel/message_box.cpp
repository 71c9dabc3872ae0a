#include "platform/kernel/message_box.h"

#include <string>

#include "platform/kernel/console.h"

namespace tarn::platform {

int (*message_box_window)(const char*, const char*, std::uint32_t) = nullptr;

int message_box(const char* title, const char* text, std::uint32_t style) {
    if (message_box_window) {
        if (int button = message_box_window(title, text, style)) return button;
    }
    std::string line = text;
    if (line.empty() || line.back() != '\n') line.push_back('\n');
    write_error_output(line);
    bool second = (style & mb_ok_cancel) != 0 && (style & mb_default_button_2) != 0;
    return second ? id_cancel : id_ok;
}

}  // namespace tarn::platform
