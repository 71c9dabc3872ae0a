// The words of each code's option list. Their order is part of the interface: a word is known by
// its position. Stored as plain text, so that the library carries no table of addresses; a table of
// pointers is made when a code's words are first asked for.
#include <array>
#include <cctype>
#include <cstring>

#include "winio/options.h"

namespace tarn::winio {
namespace {

struct option_list {
    char letters[3];
    const char words[720];  // each ends with a blank; long enough for the longest, %pl's
};

constexpr option_list lists[] = {
    {"bn", "icon= font= font_size= split text= return= vfill= colour= bk_colour= notes= "},
    {"br",
     "left_right right_left top_bottom bottom_top no_border percentage smooth not_smooth ms_style "
     "alt_style panel= "},
    {"bv",
     "no_border has_lines lines_at_root has_buttons edit_labels show_selection_always drag_drop "
     "paired_bitmaps sort use_icons mouse_click 4bits 24bits bitmap_size= "},
    {"cd",
     "hwndowner title= file initialdir flags saving filter= maxfiles showreadonly shortfile "
     "rootdir filter_item_selected no_overwrite_prompt "},
    {"ch", "vscrollbar hscrollbar "},
    {"cl", "b1 b2 b3 title1= title2= iconic "},
    {"co",
     "data_border no_data_border full_check check_on_focus_loss right_justify left_justify "
     "read_only not_read_only client_edge no_client_edge warn_on_edit alert_on_update "
     "warn_on_update limit_on_update stet_on_update no_min_height min_height "},
    {"cw", "hscroll vscroll local_font border "},
    {"dw", "full_mouse_input user_resize red green blue yellow white gray grey black "},
    {"eb",
     "hscrollbar vscrollbar no_hscroll no_vscroll alt_edit fixed_font no_border read_only use_tabs "
     "hook_focus user_colours undo limited_hscrollbar no_frame no_cursor_snap "
     "report_double_clicks report_right_clicks extended line_colours limit_height "},
    {"el", "extended height= no_box vertical_fill= font_pitch= font_set= "},
    {"em", "w8 w7 auto colour= background= border= marginbits= bits= theme1 theme2 height= "},
    {"eq", "local_font "},
    {"gr",
     "metafile_resize user_resize rgb_colours red green blue yellow white gray grey black "
     "full_mouse_input box_selection line_selection user_surface transparent flush popup "
     "free_selection colour= color= vga_colours smooth4 smooth8 keep_aspect_ratio handle hscroll "
     "vscroll local_font "},
    {"he", "flush "},
    {"ib", "flat const_width const_height coloured fast_copy mouse_hover "},
    {"ld", "square blinking "},
    {"ls",
     "hscrollbar extended multicolumn no_border limit_height height= no_box hover confirm "
     "vertical_fill= fixed_width constant_data font_pitch= font_set= sort icons colors "},
    {"lv",
     "single_selection edit_labels no_column_headers show_selection_always no_label_wrap align_top "
     "align_left no_border edit_cells no_cell_border drag_drop user_font grid_lines "
     "full_row_select check_boxes go_down_on_return no_scroll autosize_last_column "
     "no_autosize_last_column 4bits 24bits "},
    {"lw", "owned "},
    {"mb",
     "ILC_bits= bt_wd= bt_ht= style_bits= adjustable arrows bottom border left view hist large "
     "mask= strings list "},
    {"ms", "limit_height height= no_box vertical_fill= "},
    {"ob",
     "panelled thin_panelled shaded status named_l named_c named_r named no_border scored nameless "
     "bottom_exit invisible raised depressed space line_colour rounded thin_margin "},
    {"og",
     "double_buffered depth16_buffered depth32_buffered stencil_buffered accum_buffered double "
     "depth16 depth32 stencil accum user_resize gibber red green blue yellow white gray grey black "
     "static alpha_buffered alpha stereo_buffered stereo "},
    {"pb", "sorted local_font "},
    {"pl",
     "scale= x_array x_axis= y_axis= title= y_min= y_max= colour= color= n_graphs= user_drawn "
     "style= native x_sigfigs= y_sigfigs= smoothing= width= pen_style= dx= dy= independent x_min= "
     "x_max= symbol_size= framed symbol= link= graph= margin= tick_len= etched axes_pen= "
     "logy_filter fixed_aspect external_ticks stacked gridlines frame full_mouse_input "
     "box_selection line_selection free_selection external frame_pen= title_hfont= function= "
     "handle hscroll vscroll locked params= file= tension= xaxis= yaxis= buffered "},
    {"ps", "bottom hot_track ms_style alt_style frame tooltips "},
    {"rd", "initially_blank wide radix= fmt= "},
    {"rs",
     "password lowercase uppercase no_hscroll no_vscroll hscrollbar vscrollbar centre_text "
     "right_text keep_focus no_additional_depth "},
    {"sb", "sizegrip tooltips "},
    {"sl",
     "vertical horizontal both top_or_left no_ticks auto_ticks tick_frequency= thumb_length= "
     "selection_min= selection_max= tooltips= border ms_style alt_style "},
    {"sy",
     "3d no_border thin_border 3d_depressed 3d_raised 3d_thin independent no_sysmenu topmost "
     "toolwindow "},
    {"th",
     "at_cursor no_callback_hide delay ms_style always_tip no_prefix no_animate no_fade balloon "
     "centre_tip left_align scaling= scale= backcolor= textcolor= "},
    {"tv", "fixed_font keep_focus variable_size "},
    {"tx", "full_mouse_input full_char_input use_tabs no_popup_menu "},
    {"ws",
     "left center right icon blackrect grayrect whiterect blackframe grayframe whiteframe useritem "
     "simple border "},
    {"ww",
     "no_caption no_maxminbox no_maxbox no_minbox no_sysmenu maximise maximize minimise minimize "
     "topmost volatile no_frame no_border casts_shaddow casts_shadow inactive no_edge invisible "
     "fixed_size super_maximise super_maximize naked thin_border independent toolwindow "
     "not_fixed_size isolate shadowed "},
};
constexpr std::size_t list_count = std::size(lists);

// Codes that share another's words.
struct shared_list {
    char code[3], words_of[3];
};
constexpr shared_list shared[] = {{"lb", "ls"}, {"rf", "rd"}, {"re", "rs"}};

const char** split_words(const char* words) {
    const std::size_t length = std::strlen(words);
    std::size_t count = 0;
    for (const char* p = words; *p; ++p) count += *p == ' ';
    // The pointers, the null behind them, then the words themselves.
    auto* table =
        static_cast<const char**>(allocate_zeroed((count + 1) * sizeof(const char*) + length + 1));
    char* text = reinterpret_cast<char*>(table + count + 1);
    std::memcpy(text, words, length);
    for (std::size_t i = 0; i < count; ++i) {
        table[i] = text;
        text = std::strchr(text, ' ');
        *text++ = 0;
    }
    return table;
}

}  // namespace

const char* const* get_quillpan_options(std::uint16_t code) {
    static std::array<const char**, list_count> tables;
    char letters[2] = {static_cast<char>(std::tolower(code >> 8)),
                       static_cast<char>(std::tolower(code & 0xFF))};
    for (const shared_list& same : shared) {
        if (std::memcmp(same.code, letters, 2) == 0) std::memcpy(letters, same.words_of, 2);
    }
    for (std::size_t i = 0; i < list_count; ++i) {
        if (std::memcmp(lists[i].letters, letters, 2) != 0) continue;
        if (!tables[i]) tables[i] = split_words(lists[i].words);
        return tables[i];
    }
    return nullptr;
}

}  // namespace tarn::winio
