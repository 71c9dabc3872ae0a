// What the files of the scanner share: one pass over a format, and what a call keeps beside it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "winio/builder.h"

namespace tarn::winio {

// Walks one format, from `format` to its terminating zero. True: it ended with `&`.
// How many constructions wait for a nested one; back to that many, if a call-back has left the
// window that it began.
std::size_t suspended_constructions();
void return_to_construction(std::size_t depth);
bool scan_format(const char* format, argument_source& arguments);
// Of the window under construction nothing stays for the next one: one-shot values may point to
// what dies with the window.
void end_construction();
// The same, and for every construction that waits for a nested one.
void drop_constructions();

// ---- Preloading of options
enum class preload : std::uint8_t { idle, opened, adding };
struct preload_state {
    preload at = preload::idle;
};
preload_state& preloading();
// Before every code: brackets of %bo and %eo, and `[[`. False: the code is refused.
void process_preload_state(code_call& call);
// While options are preloaded the code only adds its own to the block; false: it is on its own.
bool add_preloaded_options(code_call& call);
void drop_preloaded_block();
// Behind every code: a second `]` ends what `[[` began.
void end_preload_at_bracket(code_call& call);
void winop(const char* text);
// `%0.10e` and the like: the value goes before the last bracket of the text.
void winop_with(const char* text, const std::string& value, const char* routine);

// ---- The queue of arguments for the next call
struct argument_queue {
    std::vector<word> words;
    std::string descriptor;
    std::vector<std::int32_t> lengths;
    bool empty() const { return words.empty(); }
    void clear();
};
argument_queue& queued_arguments();
// A slot of the queue, and its token in the descriptor.
word* get_aux_arg_pointer(std::size_t size, const char* token);
void queue_character(const char* text, std::int32_t length);

// ---- Styles, class settings, checking
void winstyle(const char* format);
void winclass(const char* format);
// A report goes to `buffer` (null ends check mode), which has room for `check_report_size` bytes.
inline constexpr std::size_t check_report_size = 2048;
void winio_check(char* buffer, const char* const* names, bool wide);
void set_passive_winio(void (*hook)(const char* text));

// How a Fortran program calls. `lengths` of its character arguments in order; descriptor and
// spellings (argument_source) may be null.
std::int32_t winio_fortran(const char* format, std::int32_t length, const word* words,
                           std::int32_t count, const std::int32_t* lengths,
                           std::int32_t length_count, const char* descriptor,
                           const char* const* spellings);

}  // namespace tarn::winio
