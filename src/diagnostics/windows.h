// The windows of a report. Each runs until its user closes it.
#pragma once

#include <cstdint>

#include "diagnostics/report_cells.h"
#include "platform/base/types.h"

namespace tarn::diagnostics {

// The failure and who called, to be read, copied, saved or sent. True: the user asked for details.
bool run_traceback_dialog(const Report& report);
// The state of the machine. False: no window could be made.
bool run_exception_window(const Report& report);
// Memory from an address on; the floating-point units.
void run_memory_window(platform::HWND owner, std::uintptr_t address);
void run_floating_window(platform::HWND owner, const Report& report);

// The procedures of the first two.
std::intptr_t traceback_procedure(platform::HWND dialog, platform::UINT message,
                                  platform::WPARAM wparam, platform::LPARAM lparam);
std::intptr_t exception_procedure(platform::HWND window, platform::UINT message,
                                  platform::WPARAM wparam, platform::LPARAM lparam);

// Text for an edit box or a label, in a fixed font where columns stand in it.
void show_text(platform::HWND dialog, std::int32_t item, std::string_view text);
void show_columns(platform::HWND dialog, std::int32_t item, std::string_view text);
void show_headline(platform::HWND dialog, std::int32_t icon, std::int32_t item,
                   const std::string& text);

// The style of an edit box that shows a text and takes none; bars only where they scroll something.
platform::DWORD box_style(std::string_view text, std::size_t lines, std::size_t columns);
// How many lines a label of that width has.
std::int32_t label_lines(std::string_view text, std::size_t columns);
// Such boxes stand out of the window as what can be read in.
std::intptr_t box_colours(platform::HWND dialog, platform::WPARAM dc, platform::LPARAM control);

}  // namespace tarn::diagnostics
