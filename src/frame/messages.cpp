#include "frame/messages.h"

#include <cstdarg>
#include <cstdio>

#include "frame/hooks.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "platform/kernel/message_box.h"
#include "platform/kernel/module.h"

namespace tarn::frame {
namespace {

void show(const char* format, va_list arguments) {
    char text[2048];
    std::vsnprintf(text, sizeof text, format, arguments);
    platform::message_box(message_title(), text,
                          platform::mb_set_foreground | platform::mb_icon_hand);
}

}  // namespace

const char* message_title() {
    const char* title = hooks().exception_title ? hooks().exception_title() : nullptr;
    return title ? title : platform::program_path().c_str();
}

void show_message(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    show(format, arguments);
    va_end(arguments);
}

void debug_message(const char* format, ...) {
    if (!state().message_debug) return;
    va_list arguments;
    va_start(arguments, format);
    show(format, arguments);
    va_end(arguments);
}

}  // namespace tarn::frame

extern "C" {

TARN_EXPORT const char* __get_title() {
    return tarn::frame::message_title();
}

TARN_EXPORT void __mdebug(int on) {
    tarn::frame::state().message_debug = on != 0;
}

TARN_EXPORT void mprintf0(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    tarn::frame::show(format, arguments);
    va_end(arguments);
}

TARN_EXPORT void mprintf(const char* format, ...) {
    if (!tarn::frame::state().message_debug) return;
    va_list arguments;
    va_start(arguments, format);
    tarn::frame::show(format, arguments);
    va_end(arguments);
}
}
