// DrawText: a text broken into lines and laid into a rectangle.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "platform/base/text.h"
#include "platform/gdi/text_run.h"

namespace tarn::platform {

namespace {

// A text without its prefixes, and the byte that a mnemonic's line goes under (npos: none).
struct Plain {
    std::string text;
    std::size_t mnemonic = std::string::npos;
};

// `&` marks the next character, `&&` is an ampersand. The last mark counts.
Plain without_prefixes(std::string_view text) {
    Plain plain;
    plain.text.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&') {
            if (++i == text.size()) break;
            if (text[i] != '&') plain.mnemonic = plain.text.size();
        }
        plain.text.push_back(text[i]);
    }
    return plain;
}

struct Line {
    std::size_t begin, end;  // bytes of the text
    float width;
};

// Lays texts out with one font; tabs go to every eighth average width.
class Layout {
  public:
    Layout(FontInstance& font, std::string_view text, std::uint32_t format)
        : font_(font),
          text_(text),
          format_(format),
          tab_(8.0F * static_cast<float>(font.metric.tmAveCharWidth)) {}

    // `room`: where a line must end when words are broken.
    std::vector<Line> lines(float room) const {
        std::vector<Line> result;
        if ((format_ & DT_SINGLELINE) != 0) {
            result.push_back({0, text_.size(), width(0, text_.size())});
            return result;
        }
        std::size_t begin = 0;
        while (begin < text_.size()) {
            const std::size_t end = std::min(text_.find_first_of("\r\n", begin), text_.size());
            add_paragraph(result, begin, end, room);
            begin = end;
            if (begin < text_.size() && text_[begin] == '\r') ++begin;
            if (begin < text_.size() && text_[begin] == '\n' &&
                (begin == end || text_[begin - 1] == '\r')) {
                ++begin;
            }
        }
        return result;
    }

    float width(std::size_t begin, std::size_t end) const {
        if ((format_ & DT_EXPANDTABS) == 0) {
            return text_width(font_, text_.substr(begin, end - begin));
        }
        float x = 0;
        for_each_piece(begin, end, [&](std::size_t from, std::size_t to, float at) {
            x = at + text_width(font_, text_.substr(from, to - from));
        });
        return x;
    }

    // The pieces between tabs and where they begin.
    template <typename Visit>
    void for_each_piece(std::size_t begin, std::size_t end, Visit visit) const {
        float x = 0;
        while (begin <= end) {
            const bool tabs = (format_ & DT_EXPANDTABS) != 0;
            const std::size_t to = tabs ? std::min(text_.find('\t', begin), end) : end;
            visit(begin, to, x);
            if (to == end) return;
            x += text_width(font_, text_.substr(begin, to - begin));
            x = (std::floor(x / tab_) + 1) * tab_;
            begin = to + 1;
        }
    }

  private:
    // A word that is wider than the room stays whole on a line of its own.
    void add_paragraph(std::vector<Line>& result, std::size_t begin, std::size_t end,
                       float room) const {
        while ((format_ & DT_WORDBREAK) != 0 && width(begin, end) > room) {
            std::size_t fits = begin, at = begin;
            while (at < end) {
                const std::size_t word = std::min(text_.find_first_not_of(' ', at), end);
                const std::size_t stop = std::min(text_.find(' ', word), end);
                if (fits != begin && width(begin, stop) > room) break;
                fits = at = stop;
                if (width(begin, stop) > room) break;
            }
            if (fits == end) break;
            result.push_back({begin, fits, width(begin, fits)});
            begin = std::min(text_.find_first_not_of(' ', fits), end);
            if (begin == end) return;
        }
        result.push_back({begin, end, width(begin, end)});
    }

    FontInstance& font_;
    std::string_view text_;
    std::uint32_t format_;
    float tab_;
};

// The beginning of `text` that fits into `room` with an ellipsis behind it.
std::string shortened(FontInstance& font, std::string_view text, float room) {
    constexpr std::string_view dots = "...";
    const float left = room + 0.5F - text_width(font, dots);
    float x = 0;
    std::size_t end = 0;
    for (std::size_t at = 0; at < text.size(); end = at) {
        x += font.code(next_code_point(text, at)).advance;
        if (x > left) break;
    }
    while (end > 0 && text[end - 1] == ' ') --end;
    return std::string(text.substr(0, end)) += dots;
}

std::int32_t aligned(std::uint32_t format, std::int32_t left, std::int32_t room,
                     std::int32_t width) {
    if ((format & DT_CENTER) != 0) return left + (room - width) / 2;
    return (format & DT_RIGHT) != 0 ? left + room - width : left;
}

struct Placement {
    RECT rect;
    std::uint32_t format;
    const RECT* bounds;
};

void draw_placed(DeviceContext& dc, FontInstance& font, const Plain& plain, const Layout& layout,
                 const Line& line, std::int32_t y, const Placement& place) {
    const std::int32_t x =
        aligned(place.format, place.rect.left, place.rect.width(), whole_width(line.width));
    if (dc.state.back_mode == OPAQUE) {
        fill_text_background(dc, static_cast<float>(x), y, line.width, place.bounds);
    }
    const std::string_view text = plain.text;
    layout.for_each_piece(line.begin, line.end, [&](std::size_t from, std::size_t to, float at) {
        const float left = static_cast<float>(x) + at;
        draw_line(dc, left, y, text.substr(from, to - from), place.bounds);
        const bool marked =
            plain.mnemonic >= from && plain.mnemonic < to && (place.format & DT_HIDEPREFIX) == 0;
        if (!marked) return;
        const float before = text_width(font, text.substr(from, plain.mnemonic - from));
        std::size_t end = plain.mnemonic;
        next_code_point(text, end);
        const float width = text_width(font, text.substr(plain.mnemonic, end - plain.mnemonic));
        underline(dc, left + before, y, width, place.bounds);
    });
}

// Centred and bottom texts are for one line only.
std::int32_t first_top(const RECT& rect, std::uint32_t format, std::int32_t height) {
    if ((format & DT_SINGLELINE) == 0) return rect.top;
    if ((format & DT_VCENTER) != 0) return rect.top + (rect.height() - height) / 2;
    return (format & DT_BOTTOM) != 0 ? rect.bottom - height : rect.top;
}

template <typename Char>
bool given_text(const Char* text, std::int32_t length, std::basic_string_view<Char>& view) {
    if (text == nullptr || length < -1) return false;
    view = length == -1 ? std::basic_string_view<Char>(text)
                        : std::basic_string_view<Char>(text, static_cast<std::size_t>(length));
    return true;
}

}  // namespace

std::int32_t draw_text(HDC handle, std::string_view utf8, RECT& rect, std::uint32_t format) {
    DeviceContext* dc = find_context(handle);
    if (dc == nullptr) return 0;
    FontInstance& font = instance_of(*dc->state.font);
    rect = tame(rect);
    Plain plain;
    if ((format & DT_NOPREFIX) != 0) {
        plain.text = utf8;
    } else {
        plain = without_prefixes(utf8);
    }
    const auto room = static_cast<float>(rect.width());
    const bool single = (format & DT_SINGLELINE) != 0;
    if (single && (format & DT_END_ELLIPSIS) != 0 && (format & DT_CALCRECT) == 0 &&
        text_width(font, plain.text) > room + 0.5F) {
        plain.text = shortened(font, plain.text, room);
        if (plain.mnemonic + 3 >= plain.text.size()) plain.mnemonic = std::string::npos;
    }
    const Layout layout(font, plain.text, format);
    const std::vector<Line> lines = layout.lines(room);
    const std::int32_t line_height = font.ascent + font.descent;
    const std::int32_t height = tame(std::int64_t(lines.size()) * line_height);
    const std::int32_t top = first_top(rect, format, height);
    if ((format & DT_CALCRECT) != 0) {
        std::int32_t widest = 0;
        for (const Line& line : lines) widest = std::max(widest, whole_width(line.width));
        rect.right = rect.left + widest;
        rect.bottom = top + height;
        return top + height - rect.top;
    }
    const RECT real = dc->real(rect);
    const Placement place{rect, format, (format & DT_NOCLIP) != 0 ? nullptr : &real};
    std::int32_t y = top;
    for (const Line& line : lines) {
        if (y >= (place.bounds != nullptr ? rect.bottom : coordinate_limit)) break;
        draw_placed(*dc, font, plain, layout, line, y, place);
        y += line_height;
    }
    return top + height - rect.top;
}

std::int32_t DrawTextA(HDC dc, const char* text, std::int32_t length, RECT& rect,
                       std::uint32_t format) {
    std::string_view view;
    return given_text(text, length, view) ? draw_text(dc, utf8_from_page(view), rect, format) : 0;
}

std::int32_t DrawTextW(HDC dc, const char16_t* text, std::int32_t length, RECT& rect,
                       std::uint32_t format) {
    std::u16string_view view;
    return given_text(text, length, view) ? draw_text(dc, utf8_from_wide(view), rect, format) : 0;
}

}  // namespace tarn::platform
