// Option lists of graphics, lists with columns, bars, toolbars and plots: each word is checked;
// those that tell which arguments follow, or how large the control is, are returned.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/base/constants.h"
#include "platform/gdi/theme.h"
#include "winio/options.h"
#include "winio/report.h"

namespace tarn::winio {
namespace {

using word_action = void (*)(const option_reader& words, control_options& found);
// These have their record already.
using block_action = void (*)(const option_reader& words, void* block);

bool is_one_of(const option_reader& words, std::initializer_list<std::string_view> of) {
    for (const std::string_view word : of) {
        if (words.is(word)) return true;
    }
    return false;
}

// ---- Graphics ----------------------------------------------------------------------------------
bool take_background(const option_reader& words, control_options& found, bool owner_draw = false) {
    static constexpr const char* names[] = {"red",   "green", "blue", "yellow",
                                            "white", "gray",  "grey", "black"};
    COLORREF colour = no_colour;
    for (const char* name : names) {
        if (words.is(name)) colour = get_quillpan_colour(name);
    }
    if (words.is("colour=") || words.is("color=")) colour = get_option_colour();
    if (colour == no_colour) return false;
    if (found.background != no_colour) {
        if (owner_draw)
            quillpan_error("?Graphics background colour already defined");
        else
            quillpan_error("?Graphics background colour already defined.");
    } else {
        found.background = colour;
    }
    return true;
}

void gr_word(const option_reader& words, control_options& found) {
    if (take_background(words, found)) return;
    const bool metafile = words.is("metafile_resize");
    if (metafile || words.is("user_resize")) {
        if (metafile ? found.user_resize : found.metafile_resize) {
            quillpan_error("?A graphics box cannot be resized by both user and metafile");
        } else {
            (metafile ? found.metafile_resize : found.user_resize) = true;
        }
    }
    if (words.is("user_surface")) found.user_surface = true;
    if (words.is("handle")) found.handle = true;
    if (words.is("flush")) found.flush = true;
    if (words.is("local_font")) found.local_font = true;
}

void dw_word(const option_reader& words, control_options& found) {
    if (take_background(words, found, true)) return;
    if (words.is("user_resize")) found.user_resize = true;
}

void og_word(const option_reader& words, control_options& found) {
    struct pixel_bit {
        std::string_view word;
        std::uint32_t bits;
    };
    static constexpr pixel_bit bits[] = {{"double", 1},    {"depth16", 2},    {"depth32", 4},
                                         {"alpha", 8},     {"stencil", 0x10}, {"accum", 0x20},
                                         {"stereo", 0x40}, {"static", 0x81}};
    if (take_background(words, found)) return;
    for (const pixel_bit& bit : bits) {
        const std::string buffered = std::string(bit.word) + "_buffered";
        if (words.is(bit.word) || words.is(buffered)) found.style |= bit.bits;
    }
    if (words.is("user_resize")) found.user_resize = true;
    if (words.is("gibber")) quillpan_error("?Gibber is an invalid graphics option");
}

// ---- Bars, sliders, pages ----------------------------------------------------------------------
void br_word(const option_reader& words, control_options& found) {
    if (words.is("left_right")) found.direction = 0;
    if (words.is("right_left")) found.direction = 1;
    if (words.is("top_bottom")) found.direction = 2;
    if (words.is("bottom_top")) found.direction = 3;
    found.vertical = found.direction >= 2;
    if (words.is("no_border")) found.no_border = true;
    if (words.is("percentage")) found.percentage = true;
    if (words.is("ms_style")) found.native = true;
    if (words.is("alt_style")) found.native = false;
    if (words.is("panel=")) {
        found.panel_given = true;
        found.panel = option_integer();
        found.native = true;
    }
}

void sl_word(const option_reader& words, control_options& found) {
    found.native = !words.is("alt_style");
    if (words.is("vertical")) found.vertical = true;
    if (words.is("horizontal")) found.vertical = false;
    if (words.is("alt_style")) found.alternative = true;
    if (words.is("border")) found.style |= platform::WS_BORDER;
}

void ps_word(const option_reader& words, control_options& found) {
    if (words.is("ms_style")) found.native = true;
    if (words.is("alt_style")) found.native = false;
}

// ---- Lists and trees ---------------------------------------------------------------------------
void lv_word(const option_reader& words, control_options& found) {
    if (words.is("no_border")) found.no_border = true;
}

void tv_word(const option_reader& words, control_options& found) {
    if (words.is("variable_size")) found.variable_size = true;
}

void eb_word(const option_reader& words, control_options& found) {
    if (words.is("no_border") || words.is("no_frame")) found.no_border = true;
    if (words.is("limit_height")) found.limit_height = true;
    if (is_one_of(words, {"hscrollbar", "limited_hscrollbar"})) found.style |= platform::WS_HSCROLL;
    if (words.is("vscrollbar")) found.style |= platform::WS_VSCROLL;
}

// ---- Small controls ----------------------------------------------------------------------------
void cl_word(const option_reader& words, control_options& found) {
    if (words.is("b1")) found.colour_rows = 1;
    if (words.is("b2")) found.colour_rows = 2;
    if (words.is("b3")) found.colour_rows = 3;
    if (words.is("iconic")) found.iconic = true;
}

void ld_word(const option_reader& words, control_options& found) {
    if (words.is("square")) found.square = true;
    if (words.is("blinking")) found.blinking = true;
}

void local_font_word(const option_reader& words, control_options& found) {
    if (words.is("local_font")) found.local_font = true;
}

void ib_block(const option_reader& words, void* block) {
    auto& buttons = *static_cast<constructed_button*>(block);
    if (words.is("flat")) buttons.flags |= 1;
    if (words.is("const_width")) buttons.flags |= 2;
    if (words.is("const_height")) buttons.flags |= 4;
    if (words.is("coloured")) buttons.flags |= 8 | 1;
    if (words.is("mouse_hover")) buttons.flags |= 0x20;
}

std::uint32_t option_hexadecimal() {
    return static_cast<std::uint32_t>(std::strtoul(option_value().c_str(), nullptr, 16));
}

std::int32_t button_size() {
    return std::clamp(option_integer(), 1, 1024);
}

void mb_block(const option_reader& words, void* block) {
    auto& bar = *static_cast<multibutton*>(block);
    fancy_window& window = *current_window();
    if (words.is("ILC_bits=")) bar.ilc_flags = option_hexadecimal();
    if (words.is("bt_wd=")) bar.button_width = button_size();
    if (words.is("bt_ht=")) bar.button_height = button_size();
    if (words.is("style_bits=")) bar.style |= option_hexadecimal();
    if (words.is("border")) bar.style |= platform::WS_BORDER;
    if (words.is("adjustable")) {
        bar.style |= 0x20;
        bar.flags |= 8;
    }
    if (words.is("arrows")) bar.flags |= 2;
    if (words.is("strings")) bar.flags |= 0x20;
    if (words.is("list")) bar.flags |= 0x40;
    if (words.is("view")) bar.standard_set = 4 | (bar.standard_set & 1);
    if (words.is("hist")) bar.standard_set = 8 | (bar.standard_set & 1);
    if (words.is("large")) {
        bar.standard_set |= 1;
        bar.button_width = bar.button_height = 24;
    }
    if (words.is("mask=")) bar.mask = get_option_colour();
    if (words.is("bottom")) {
        bar.style |= 3;
        bar.position = 3;
        if (!window.flags.margins_given) window.margin_bottom = 20;
    }
    if (words.is("left")) {
        bar.style |= 0x81;
        bar.position = 0x81;
        if (!window.flags.margins_given) window.margin_left = 16;
        if (window.flags.own_background) quillpan_error("?%%BG can't be used with %%MB[left]");
        window.flags.own_background = false;
        window.background = platform::GetSysColor(platform::COLOR_BTNFACE);
        window.flags.multi_button_left = true;
    }
}

void nothing(const option_reader&, control_options&) {}

// ---- Plots -------------------------------------------------------------------------------------
struct range_word {
    std::string_view word;
    double low, high;
};
constexpr range_word plot_ranges[] = {
    {"style=", 0, 1},      {"x_sigfigs=", 1, 9}, {"y_sigfigs=", 1, 9},     {"smoothing=", 0, 5},
    {"width=", 1, 100},    {"pen_style=", 0, 4}, {"symbol_size=", 1, 255}, {"symbol=", 0, 13},
    {"tick_len=", 1, 100}, {"axes_pen=", 1, 40}, {"frame_pen=", 1, 40},    {"tension=", 0, 10},
};

void bad_plot_value(std::string_view word) {
    if (word.ends_with('=')) word.remove_suffix(1);
    quillpan_error("?Invalid %.*s value in %%PL specification", static_cast<int>(word.size()),
                   word.data());
}

bool value_is_one_of(std::initializer_list<std::string_view> of) {
    for (const std::string_view word : of) {
        if (option_value().size() == word.size() &&
            strncasecmp(option_value().c_str(), word.data(), word.size()) == 0) {
            return true;
        }
    }
    return false;
}

bool margin_is_right() {
    const char* at = option_value().c_str();
    const bool listed = *at == '(';
    int count = 0;
    at += listed;
    for (;;) {
        char* end = nullptr;
        const long number = std::strtol(at, &end, 10);
        if (end == at || number < 0 || number > 1000) return false;
        ++count;
        at = end;
        if (*at != ',') break;
        ++at;
    }
    return listed ? count == 4 && *at == ')' : count == 1 && *at == 0;
}

class plot_words {
  public:
    plot_words(code_call& call, control_options& found) : call_(call), found_(found) {}

    void take(const option_reader& words) {
        check_ranges(words);
        check_names(words);
        count_per_graph(words);
        if (words.is("x_array")) found_.x_array = true;
        if (words.is("independent")) found_.independent = true;
        if (words.is("user_drawn")) found_.user_drawn = true;
        if (words.is("function=")) found_.function_given = true;
        if (words.is("handle")) found_.handle = true;
        if (words.is("n_graphs=")) {
            const std::int32_t graphs = option_integer();
            if (graphs < 1 || graphs > allowed_) {
                quillpan_error("Too many graphs. Set n_graphs in an initial call to winop@/$");
            } else {
                found_.graphs = graphs;
            }
        }
        if (words.is("graph=")) {
            const std::int32_t graph = option_integer();
            if (graph < 1 || graph > allowed_) {
                bad_plot_value("graph=");
            } else {
                graph_ = graph;
            }
        }
    }
    // The list is read twice: what it says of its graphs is known before the rest is checked.
    void allow(std::int32_t graphs) { allowed_ = graphs; }

  private:
    static void check_ranges(const option_reader& words) {
        for (const range_word& range : plot_ranges) {
            if (!words.is(range.word)) continue;
            const double value = std::strtod(option_value().c_str(), nullptr);
            if (!(value >= range.low && value <= range.high)) bad_plot_value(range.word);
        }
    }

    void check_names(const option_reader& words) {
        if (words.is("scale=") &&
            !value_is_one_of({"linear", "linear_log", "log_linear", "log_log", "logx_liny",
                              "linx_logy", "semilogx", "semilogy"})) {
            bad_plot_value("scale=");
        }
        if (words.is("link=") &&
            !value_is_one_of({"none", "lines", "curves", "columns", "bars", "user"})) {
            bad_plot_value("link=");
        }
        if (words.is("margin=")) {
            if (option_value().starts_with('(')) extend_option_value(call_.format);
            if (!margin_is_right()) bad_plot_value("margin=");
        }
        if (is_one_of(words, {"x_axis=", "y_axis="}) &&
            option_value().find("@(") != std::string::npos) {
            extend_option_value(call_.format);
        }
    }

    // Each of these goes to the graph of the last `graph=`, or to the next one that has none.
    void count_per_graph(const option_reader& words) {
        static constexpr std::string_view per_graph[] = {
            "colour=", "color=", "style=",       "width=",   "pen_style=",
            "symbol=", "link=",  "symbol_size=", "function="};
        for (std::size_t i = 0; i < std::size(per_graph); ++i) {
            if (!words.is(per_graph[i]) || graph_ != 0) continue;
            const std::size_t counter = i == 1 ? 0 : i;  // two spellings
            if (++used_[counter] > allowed_) {
                std::string_view word = per_graph[i];
                word.remove_suffix(1);
                quillpan_error("?Too many %.*s specified for %%PL plot",
                               static_cast<int>(word.size()), word.data());
            }
        }
        if (is_one_of(words, {"colour=", "color="})) get_option_colour();
    }

    code_call& call_;
    control_options& found_;
    std::int32_t allowed_ = 10;
    std::int32_t graph_ = 0;
    std::int32_t used_[9] = {};
};

// How many graphs the list asks for; no report, and the cursor stays.
std::int32_t graphs_asked_for(const code_call& call) {
    constexpr std::int32_t standard = 10;
    const char* at = std::strstr(call.format, "n_graphs=");
    const char* end = std::strchr(call.format, ']');
    if (*call.format != '[' || !at || !end || at > end) return standard;
    const int graphs = std::atoi(at + std::strlen("n_graphs="));
    return graphs >= 1 && graphs <= 10000 ? graphs : standard;
}

void collect_plot(code_call& call, control_options& found) {
    option_reader words(call, code_of('P', 'L'), "%PL", true);
    plot_words plot(call, found);
    found.graphs = 1;
    plot.allow(graphs_asked_for(call));
    while (words.next()) plot.take(words);
}

// ---- The table ---------------------------------------------------------------------------------
struct collector {
    std::uint16_t code;
    const char* name;  // in messages
    word_action act;
    block_action fill = nullptr;
};

const collector* collector_of(std::uint16_t code) {
    static const collector collectors[] = {
        {code_of('B', 'R'), "%BR", br_word},
        {code_of('B', 'V'), "%BV", lv_word},
        {code_of('C', 'L'), "%CL", cl_word},
        {code_of('D', 'W'), "%DW", dw_word},
        {code_of('E', 'B'), "%EB", eb_word},
        {code_of('E', 'Q'), "%EQ", local_font_word},
        {code_of('G', 'R'), "%GR", gr_word},
        {code_of('I', 'B'), "%IB or %SE", nothing, ib_block},
        {code_of('L', 'D'), "%LD", ld_word},
        {code_of('L', 'V'), "%LV", lv_word},
        {code_of('M', 'B'), "%MB", nothing, mb_block},
        {code_of('O', 'G'), "%OG", og_word},
        {code_of('P', 'B'), "%PB", local_font_word},
        {code_of('P', 'S'), "%PS", ps_word},
        {code_of('S', 'B'), "%SB", nothing},
        {code_of('S', 'L'), "%SL", sl_word},
        {code_of('T', 'V'), "%TV", tv_word},
    };
    for (const collector& entry : collectors) {
        if (entry.code == code) return &entry;
    }
    return nullptr;
}

}  // namespace

control_options collect_other_options(code_call& call, window_control* control) {
    control_options found{};
    found.background = no_colour;
    found.colour_rows = 2;
    if (call.code == code_of('P', 'L')) {
        collect_plot(call, found);
        return found;
    }
    const collector* entry = collector_of(call.code);
    if (!entry) return found;
    option_reader words(call, call.code, entry->name);
    while (words.next()) {
        entry->act(words, found);
        if (entry->fill && control && control->block) entry->fill(words, control->block);
    }
    if (call.code == code_of('B', 'R') && found.percentage && found.vertical) {
        quillpan_error("?Percentage option only permitted on horizontal bars");
        found.percentage = false;
    }
    return found;
}

}  // namespace tarn::winio
