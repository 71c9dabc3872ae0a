// Option lists: `[word,word=value,...]` behind a code, and colour specifications.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "winio/buttons.h"
#include "winio/layout.h"

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

// Does a `[` behind the code open its options? With `?` it may open the help text instead: it does
// unless another `[` or an `@` follows its closing bracket.
bool opens_options(const code_call& call);
// The words of a list one after the other, each folded to lower case and with its `=`; false at the
// end. An invalid word ends the list.
class option_reader {
  public:
    option_reader(code_call& call, std::uint16_t code, const char* code_name, bool fatal = false);
    bool next();
    void resume() { open_ = true; }  // the cursor stands within the list already
    bool is(std::string_view word) const { return word_ == word; }
    std::int32_t position() const { return position_; }

  private:
    code_call& call_;
    const char* const* words_;
    const char* code_name_;
    std::string_view word_;
    std::int32_t position_ = 0;
    bool open_, fatal_;
};

// %em: the look of the window's menus.
struct menu_settings {
    bool enhanced;
    std::int32_t look;  // 0 as the system, 7, 8
    std::int32_t margin_width, item_height;
    COLORREF margin, highlight, background, highlight_border;  // no_colour: the system's
    char *margin_bits, *body_bits;
};
// %th, %bh: when and how the help of controls is shown.
struct tool_properties {
    std::int32_t *variable, *delay;
    bool bubble, at_cursor, no_callback_hide, reads_delay, native, always, no_prefix, no_animate,
        no_fade, balloon, centre, left_align;
    double scaling;
    COLORREF background, text;  // no_colour: the system's
};
tool_properties* get_toolprops(fancy_window* window);  // made when there is none

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
void collect_co_reset(fancy_window& window);
// What the words of a list, tree, graphics or toolbar code say about its arguments and its size.
struct control_options {
    bool user_surface, handle, user_resize, metafile_resize;  // %gr, %dw, %og
    bool variable_size;                                       // %tv
    bool native, alternative;                                 // %br, %sl, %ps
    bool vertical, percentage;                                // %br, %sl
    bool local_font, no_border, flush, limit_height;
    bool square, blinking, iconic, panel_given;
    std::int32_t panel, direction;
    std::int32_t colour_rows;  // %cl
    std::int32_t graphs;       // %pl
    bool x_array, independent, user_drawn, function_given;
    COLORREF background;  // no_colour: none
    std::uint32_t style;
};
// Every other code: its words are checked, and those that count are returned.
// A control that has its record already (%ib, %mb) gets them there.
control_options collect_other_options(code_call& call, window_control* control = nullptr);

}  // namespace tarn::winio
