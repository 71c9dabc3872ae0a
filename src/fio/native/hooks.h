// What the rooms above give the native dialect at their start, and the parts of the dialect that
// stand apart from it. A null hook is a feature that this build doesn't have: the statement that
// asks for it fails by the ordinary road, so that IOSTAT= and ERR= catch it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::fio::native {

struct Hooks {
    // Text windows and edit boxes (units of kind 2). `text` has its line end, if any.
    void (*window_flush)() = nullptr;  // shows what the console route still holds
    void (*window_write)(void* window, const char* text, std::size_t count) = nullptr;
    void (*window_clear)(void* window) = nullptr;
    void (*edit_box_insert)(void* box, const char* text) = nullptr;  // at the top of its text

    // The printer's text routes, for OPEN_TO_PRINTER# and OPEN_TO_HTML_PRINTER#.
    void (*print_string)(std::int32_t unit, const char* text, std::size_t count) = nullptr;
    void (*print_close)(std::int32_t unit) = nullptr;
    void (*print_html_string)(std::int32_t unit, const char* text, std::size_t count) = nullptr;
    void (*print_html_close)(std::int32_t unit) = nullptr;


    // An attached debugger that takes the W32STREAM_ results.
    void (*debugger_result)(const char* text) = nullptr;
    void (*debugger_status)(const std::uint32_t (&words)[4]) = nullptr;
};
Hooks& hooks();

}  // namespace tarn::fio::native
