// Process-wide switches: __quillpan_option.
#include <string>

#include "winio/callbacks.h"
#include "winio/options.h"

namespace tarn::winio {
namespace {

enum class switch_word : std::int32_t {
    rgb_colours = 1,
    no_rgb_colours,
    utf8,
    no_utf8,
    old_resize,
    no_old_resize,
    alt_open_save,
    no_alt_open_save,
    hide_error,
    show_error,
    fatal_error,
    undef,
    no_undef,
    rs_read_only,
    safe_cb,
    no_safe_cb,
    limit_errors,
    gdi_images,
    no_gdi_images,
    no_pl_dy_limit,
    pl_dy_limit,
    overwrite_prompt,
};

void set_switch(switch_word which) {
    using enum switch_word;
    options_state& all = options();
    switch (which) {
        case rgb_colours:
        case no_rgb_colours:
            all.rgb_colours = which == rgb_colours;
            return;
        case utf8:
        case no_utf8:
            records().utf8_default = which == utf8;
            return;
        case old_resize:
        case no_old_resize:
            records().old_resize = which == old_resize;
            return;
        case alt_open_save:
        case no_alt_open_save:
            all.alt_open_save = which == alt_open_save;
            return;
        case hide_error:
        case show_error:
        case fatal_error:
            all.error_level =
                static_cast<std::int32_t>(which) - static_cast<std::int32_t>(hide_error);
            return;
        case undef:
        case no_undef:
            all.undefined_tests = which == undef;
            return;
        case rs_read_only:
            all.rewrite_read_only = true;
            return;
        case safe_cb:
        case no_safe_cb:
            all.trust_descriptor_callbacks = which == safe_cb;
            return;
        case limit_errors:
            all.limit_errors = true;
            return;
        case gdi_images:
        case no_gdi_images:
            all.gdi_images = which == gdi_images;
            return;
        case no_pl_dy_limit:
        case pl_dy_limit:
            all.no_plot_depth_limit = which == no_pl_dy_limit;
            return;
        case overwrite_prompt:
            all.overwrite_prompt = true;
            return;
    }
}

}  // namespace

options_state& options() {
    static constinit options_state all{};
    return all;
}

void set_quillpan_option(const char* text) {
    static constexpr const char* words[] = {
        "rgb_colours",     "_rgb_colours",     "utf8",          "_utf8",
        "old_resize",      "_old_resize",      "alt_open_save", "_alt_open_save",
        "hide_error",      "show_error",       "fatal_error",   "undef",
        "_undef",          "rs_read_only",     "safe_cb",       "_safe_cb",
        "limit_errors",    "gdi+images",       "_gdi+images",   "no_pl_dy_limit",
        "_no_pl_dy_limit", "overwrite_prompt", nullptr,
    };
    initialise_quillpan_plus();
    const std::string bracketed = "[" + std::string(text ? text : "") + "]";
    const char* cursor = bracketed.c_str();
    std::int32_t word = get_format_option(cursor, words, "quillpan_option@", false);
    for (; word > 0; word = get_format_option(cursor, words, "quillpan_option@", false))
        set_switch(static_cast<switch_word>(word));
}

}  // namespace tarn::winio
