// The one report of the window library: a question to the user, or the end of the program.
#pragma once

namespace tarn::textwin {

// What the room above knows of an error on its way. Null: nothing.
struct ErrorHooks {
    bool (*reports_off)() = nullptr;            // the option scanner only tries something
    bool (*takes_text)(const char*) = nullptr;  // check mode: the caller's buffer gets it, no more
    void (*passive)(const char*) = nullptr;     // the handler of __set_passive_winio, if one is set
    void (*remember)(const char*) = nullptr;    // ERROR_REPORT
};
ErrorHooks& error_hooks();

// Returns for a recoverable error that the user ignores. On a display that nobody watches a
// recoverable one is written to standard error and ignored.
void report_error(const char* text, bool recoverable);

}  // namespace tarn::textwin
