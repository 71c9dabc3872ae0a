// Option lists: `[word,word=value,...]` behind a code, and colour specifications.
#pragma once

#include <cstdint>
#include <string>

#include "winio/builder.h"

namespace tarn::winio {

const char* const* get_quillpan_options(std::uint16_t code);  // null-terminated; null: none
// Position of the next word from 1; 0 at the end; -1 after an invalid word unless `fatal`.
std::int32_t get_format_option(const char*& cursor, const char* const* words, const char* code_name,
                               bool fatal);
std::string& option_value();  // of the last `word=value`
std::int32_t option_integer();
COLORREF get_user_colour(const char*& cursor);  // no_colour and a message on error
COLORREF get_quillpan_colour(const char* name);
COLORREF get_option_colour();
word get_option_WPARAM();
void extend_option_value(const char*& cursor);
bool check_sq_bra(const char* text, const char* code_name);
bool get_float(const char*& cursor, double& result);  // `[number]` of %ts

// One collector a code, run on the record that the code has just made. A null control is a
// counting pass: only what changes the number of arguments counts.
void collect_rd_rf_options(code_call& call, window_control* control);
void collect_rs_re_options(code_call& call, window_control* control);
void collect_ls_options(code_call& call, window_control* control);
void collect_ms_options(code_call& call, window_control* control);
void collect_el_options(code_call& call, window_control* control);
void collect_button_options(code_call& call, Xbutton& button, bool preload);
void collect_box_options(code_call& call, box& into);
void collect_co_options(code_call& call);
void collect_cw_options(code_call& call, window_control* control);
void collect_sy_options(code_call& call);
void collect_ww_options(code_call& call);
void collect_lw_options(code_call& call);
void collect_ch_options(code_call& call, window_control* control);
void collect_he_options(code_call& call, window_control* control);
void collect_ws_options(code_call& call, window_control* control);
void collect_em_options(code_call& call);
void collect_th_options(code_call& call);
void collect_tx_options(code_call& call, window_control* control);
// Every other code: its words are checked and stored where its record has a place.
void collect_other_options(code_call& call, window_control* control);

}  // namespace tarn::winio
