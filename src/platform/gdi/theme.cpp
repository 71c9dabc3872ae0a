#include "platform/gdi/theme.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include "platform/base/constants.h"

namespace tarn::platform {

namespace {

// As colours are written elsewhere: red first.
constexpr COLORREF web(std::uint32_t rgb) {
    return (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16;
}

constexpr Theme light_theme{
    .dark = false,
    .window = web(0xFFFFFF),
    .face = web(0xF3F4F6),
    .text = web(0x1B1F24),
    .text_muted = web(0x57606A),
    .text_disabled = web(0x949DA7),
    .text_placeholder = web(0x6B747E),
    .border = web(0xD3D8DE),
    .border_strong = web(0x868F99),
    .border_hover = web(0xA9B2BC),
    .accent = web(0x1F6BD0),
    .accent_hover = web(0x1A5FBB),
    .accent_pressed = web(0x15509F),
    .accent_text = web(0xFFFFFF),
    .button = web(0xFDFDFE),
    .button_hover = web(0xF1F6FD),
    .button_pressed = web(0xE0EAF8),
    .button_disabled = web(0xF0F1F3),
    .selection = web(0x1F6BD0),
    .selection_text = web(0xFFFFFF),
    .selection_inactive = web(0xDCE1E7),
    .menu = web(0xFFFFFF),
    .menu_hover = web(0xE6EFFB),
    .menu_border = web(0xCDD3DA),
    .caption = web(0xE7EAEE),
    .caption_text = web(0x1B1F24),
    .caption_inactive = web(0xF3F4F6),
    .caption_inactive_text = web(0x626B75),
    .scroll_track = web(0xF0F1F4),
    .scroll_thumb = web(0xC3C9D0),
    .scroll_thumb_hover = web(0x99A2AC),
    .focus_ring = web(0x1F6BD0),
    .tooltip = web(0x2B3036),
    .tooltip_text = web(0xF4F6F8),
    .danger = web(0xCF2F3A),
    .warning = web(0xF2A60D),
    .success = web(0x1E8545),
    .information = web(0x1F6BD0),
    .corner = 4.0F,
    .small_corner = 3.0F,
};

constexpr Theme dark_theme{
    .dark = true,
    .window = web(0x1C1F24),
    .face = web(0x25282E),
    .text = web(0xE8EBEF),
    .text_muted = web(0xAAB2BC),
    .text_disabled = web(0x69727C),
    .text_placeholder = web(0x8E97A1),
    .border = web(0x3C424A),
    .border_strong = web(0x7A848F),
    .border_hover = web(0x5B646E),
    .accent = web(0x5AA0F7),
    .accent_hover = web(0x75B1FA),
    .accent_pressed = web(0x4A8DE0),
    .accent_text = web(0x0B1826),
    .button = web(0x32363D),
    .button_hover = web(0x3A4049),
    .button_pressed = web(0x2A3645),
    .button_disabled = web(0x292C32),
    .selection = web(0x2A62AE),
    .selection_text = web(0xFFFFFF),
    .selection_inactive = web(0x3D434C),
    .menu = web(0x2A2E34),
    .menu_hover = web(0x374A63),
    .menu_border = web(0x454C55),
    .caption = web(0x2E3238),
    .caption_text = web(0xE8EBEF),
    .caption_inactive = web(0x25282E),
    .caption_inactive_text = web(0x9AA3AD),
    .scroll_track = web(0x282B31),
    .scroll_thumb = web(0x535B65),
    .scroll_thumb_hover = web(0x727C87),
    .focus_ring = web(0x5AA0F7),
    .tooltip = web(0x3D434B),
    .tooltip_text = web(0xF0F2F5),
    .danger = web(0xF0626A),
    .warning = web(0xF2B134),
    .success = web(0x4CB872),
    .information = web(0x5AA0F7),
    .corner = 4.0F,
    .small_corner = 3.0F,
};

std::string_view chosen_by_user() {
    const char* wish = std::getenv("TARN_THEME");
    return wish != nullptr ? wish : "";
}

const Theme*& current() {
    static const Theme* chosen = [] {
        bool dark = chosen_by_user() == "dark";
        if (!theme_is_chosen() && desktop_is_dark != nullptr) dark = desktop_is_dark();
        return dark ? &dark_theme : &light_theme;
    }();
    return chosen;
}

// Of each system colour by its number.
constexpr COLORREF Theme::*system_colours[] = {
    &Theme::scroll_track,           // COLOR_SCROLLBAR
    &Theme::face,                   // COLOR_BACKGROUND
    &Theme::caption,                // COLOR_ACTIVECAPTION
    &Theme::caption_inactive,       // COLOR_INACTIVECAPTION
    &Theme::menu,                   // COLOR_MENU
    &Theme::window,                 // COLOR_WINDOW
    &Theme::border_strong,          // COLOR_WINDOWFRAME
    &Theme::text,                   // COLOR_MENUTEXT
    &Theme::text,                   // COLOR_WINDOWTEXT
    &Theme::caption_text,           // COLOR_CAPTIONTEXT
    &Theme::border,                 // COLOR_ACTIVEBORDER
    &Theme::border,                 // COLOR_INACTIVEBORDER
    &Theme::border,                 // COLOR_APPWORKSPACE
    &Theme::selection,              // COLOR_HIGHLIGHT
    &Theme::selection_text,         // COLOR_HIGHLIGHTTEXT
    &Theme::face,                   // COLOR_BTNFACE
    &Theme::border_hover,           // COLOR_BTNSHADOW
    &Theme::text_disabled,          // COLOR_GRAYTEXT
    &Theme::text,                   // COLOR_BTNTEXT
    &Theme::caption_inactive_text,  // COLOR_INACTIVECAPTIONTEXT
    &Theme::button,                 // COLOR_BTNHIGHLIGHT
    &Theme::border_strong,          // COLOR_3DDKSHADOW
    &Theme::border,                 // COLOR_3DLIGHT
    &Theme::tooltip_text,           // COLOR_INFOTEXT
    &Theme::tooltip,                // COLOR_INFOBK
};

// Asked for with every text that is drawn: worked out once a level.
float linear_part(std::uint32_t byte) {
    static const auto* const levels = [] {
        auto* all = new std::array<float, 256>;
        for (std::size_t i = 0; i < all->size(); ++i) {
            const float part = static_cast<float>(i) / 255.0F;
            (*all)[i] = part <= 0.04045F ? part / 12.92F : std::pow((part + 0.055F) / 1.055F, 2.4F);
        }
        return all;
    }();
    return (*levels)[byte & 0xFF];
}

float luminance(COLORREF colour) {
    return 0.2126F * linear_part(colour) + 0.7152F * linear_part(colour >> 8) +
           0.0722F * linear_part(colour >> 16);
}

}  // namespace

bool (*desktop_is_dark)() = nullptr;

bool theme_is_chosen() {
    return chosen_by_user() == "dark" || chosen_by_user() == "light";
}

const Theme& theme() {
    return *current();
}

void set_theme(bool dark) {
    current() = dark ? &dark_theme : &light_theme;
    // Programs and classes hold these brushes.
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(std::size(system_colours)); ++i)
        static_cast<void>(GetSysColorBrush(i));
}

COLORREF in_this_theme(COLORREF colour) {
    const Theme& other = theme().dark ? light_theme : dark_theme;
    for (COLORREF Theme::*each : {&Theme::face, &Theme::window, &Theme::text, &Theme::text_muted,
                                  &Theme::text_disabled, &Theme::text_placeholder}) {
        if (colour == other.*each) return theme().*each;
    }
    return colour;
}

COLORREF GetSysColor(std::int32_t which) {
    if (which < 0 || which >= static_cast<std::int32_t>(std::size(system_colours))) return 0;
    return theme().*system_colours[which];
}

COLORREF blend(COLORREF a, COLORREF b, float part) {
    const float t = std::clamp(part, 0.0F, 1.0F);
    COLORREF mixed = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const auto from = static_cast<float>(a >> shift & 0xFF);
        const auto to = static_cast<float>(b >> shift & 0xFF);
        mixed |= static_cast<COLORREF>(std::lround(from + (to - from) * t)) << shift;
    }
    return mixed;
}

float contrast(COLORREF a, COLORREF b) {
    const float x = luminance(a), y = luminance(b);
    return (std::max(x, y) + 0.05F) / (std::min(x, y) + 0.05F);
}

// The hue stays as long as it can: red on white becomes a darker red and not black.
COLORREF readable(COLORREF text, COLORREF background) {
    constexpr float enough = 4.5F;
    constexpr int steps = 16;
    if (contrast(text, background) >= enough) return text;
    const COLORREF black = 0, white = RGB(255, 255, 255);
    const COLORREF end = contrast(black, background) >= contrast(white, background) ? black : white;
    for (int i = 1; i < steps; ++i) {
        const COLORREF nearer = blend(text, end, static_cast<float>(i) / steps);
        if (contrast(nearer, background) >= enough) return nearer;
    }
    return end;
}

}  // namespace tarn::platform
