// Text on its way to the platform, in the window's encoding.
#include "winio/text_layer.h"

#include <cstring>
#include <string>

#include "platform/base/text.h"
#include "winio/records.h"

namespace tarn::winio {

using platform::HDC;
using platform::HMENU;
using platform::HWND;
using platform::LPARAM;
using platform::LRESULT;
using platform::SIZE;
using platform::UINT;
using platform::WPARAM;

namespace {

// What comes back of a window's title or field at most, in UTF-16 units.
constexpr std::int32_t most_title_units = 256;

std::u16string ustrdup(const char* text) {
    return platform::wide_from_utf8(text ? text : "");
}

std::u16string ustrdup(const char* text, std::int32_t length) {
    if (!text) return {};
    const std::size_t count = length < 0 ? std::strlen(text) : static_cast<std::size_t>(length);
    return platform::wide_from_utf8({text, count});
}

// Whole characters only, and a terminating zero. The bytes stored.
std::int32_t store(const char16_t* units, std::size_t count, char* buffer, std::int32_t size) {
    if (size <= 0 || !buffer) return 0;
    const std::string text = platform::utf8_from_wide({units, count});
    std::size_t kept = std::min(text.size(), static_cast<std::size_t>(size - 1));
    while (kept > 0 && kept < text.size() && (text[kept] & 0xC0) == 0x80) --kept;
    std::memcpy(buffer, text.data(), kept);
    buffer[kept] = 0;
    return static_cast<std::int32_t>(kept);
}

}  // namespace

bool utf8_now() {
    const fancy_window* window = current_window();
    if (window && window->flags.open && platform::IsWindow(window->hwnd)) return window->flags.utf8;
    return records().utf8_default;
}

std::int32_t uchrlen(unsigned char first_byte) {
    if (!utf8_now() || first_byte < 0xC0) return 1;
    if (first_byte < 0xE0) return 2;
    if (first_byte < 0xF0) return 3;
    return first_byte < 0xF8 ? 4 : 5;
}

std::int32_t ustrnlen(const char* text, std::int32_t characters) {
    const char* at = text;
    for (; characters > 0 && *at; --characters) {
        for (std::int32_t left = uchrlen(static_cast<unsigned char>(*at)); left > 0 && *at;
             --left) {
            ++at;
        }
    }
    return static_cast<std::int32_t>(at - text);
}

LRESULT SendGetTextMessageAW(HWND hwnd, UINT message, WPARAM size, char* buffer) {
    if (!utf8_now()) {
        return platform::SendMessageA(hwnd, message, size, reinterpret_cast<LPARAM>(buffer));
    }
    // A list's WPARAM is an item, not a size; its texts have 512 characters at most.
    const bool sized = message == platform::WM_GETTEXT;
    std::u16string wide(sized ? size + 1 : 0x10000, u'\0');
    const LRESULT count =
        platform::SendMessageW(hwnd, message, size, reinterpret_cast<LPARAM>(wide.data()));
    if (count < 0) return count;
    const std::size_t units = std::min(static_cast<std::size_t>(count), wide.size());
    return store(wide.data(), units, buffer, sized ? static_cast<std::int32_t>(size) : 513);
}

LRESULT SendSetTextMessageAW(HWND hwnd, UINT message, WPARAM wparam, const char* text) {
    if (!utf8_now()) {
        return platform::SendMessageA(hwnd, message, wparam, reinterpret_cast<LPARAM>(text));
    }
    return platform::SendMessageW(hwnd, message, wparam,
                                  reinterpret_cast<LPARAM>(ustrdup(text).c_str()));
}

bool SetWindowTextAW(HWND hwnd, const char* text) {
    return utf8_now() ? platform::SetWindowTextW(hwnd, ustrdup(text).c_str())
                      : platform::SetWindowTextA(hwnd, text);
}

std::int32_t GetWindowTextAW(HWND hwnd, char* buffer, std::int32_t size) {
    if (!utf8_now()) return platform::GetWindowTextA(hwnd, buffer, size);
    char16_t wide[most_title_units + 1];
    const std::int32_t count = platform::GetWindowTextW(hwnd, wide, most_title_units);
    return store(wide, static_cast<std::size_t>(std::max(count, 0)), buffer, size);
}

std::int32_t DrawTextAW(HDC dc, const char* text, std::int32_t length, platform::RECT& rect,
                        std::uint32_t format) {
    if (!utf8_now()) return platform::DrawTextA(dc, text, length, rect, format);
    const std::u16string wide = ustrdup(text, length);
    return platform::DrawTextW(dc, wide.c_str(), static_cast<std::int32_t>(wide.size()), rect,
                               format);
}

bool TextOutAW(HDC dc, std::int32_t x, std::int32_t y, const char* text, std::int32_t length) {
    if (!utf8_now()) return platform::TextOutA(dc, x, y, text, length);
    const std::u16string wide = ustrdup(text, length);
    return platform::TextOutW(dc, x, y, wide.c_str(), static_cast<std::int32_t>(wide.size()));
}

HWND CreateWindowExAW(platform::DWORD ex_style, const char* class_name, const char* title,
                      platform::DWORD style, std::int32_t x, std::int32_t y, std::int32_t width,
                      std::int32_t height, HWND parent, HMENU menu_or_id, void* parameter) {
    if (!utf8_now()) {
        return platform::CreateWindowExA(ex_style, class_name, title, style, x, y, width, height,
                                         parent, menu_or_id, parameter);
    }
    return platform::CreateWindowExW(ex_style, ustrdup(class_name).c_str(), ustrdup(title).c_str(),
                                     style, x, y, width, height, parent, menu_or_id, parameter);
}

bool AppendMenuAW(HMENU menu, UINT flags, std::uintptr_t id, const char* text) {
    return utf8_now() ? platform::AppendMenuW(menu, flags, id, ustrdup(text).c_str())
                      : platform::AppendMenuA(menu, flags, id, text);
}

bool InsertMenuAW(HMENU menu, UINT position, UINT flags, std::uintptr_t id, const char* text) {
    return utf8_now() ? platform::InsertMenuW(menu, position, flags, id, ustrdup(text).c_str())
                      : platform::InsertMenuA(menu, position, flags, id, text);
}

bool GetTextExtentPoint32AW(HDC dc, const char* text, std::int32_t length, SIZE& size) {
    if (!utf8_now()) return platform::GetTextExtentPoint32A(dc, text, length, size);
    const std::u16string wide = ustrdup(text, length);
    return platform::GetTextExtentPoint32W(dc, wide.c_str(), static_cast<std::int32_t>(wide.size()),
                                           size);
}

bool GetTextExtentPointAW(HDC dc, const char* text, std::int32_t length, SIZE& size) {
    if (!utf8_now()) return platform::GetTextExtentPointA(dc, text, length, size);
    const std::u16string wide = ustrdup(text, length);
    return platform::GetTextExtentPointW(dc, wide.c_str(), static_cast<std::int32_t>(wide.size()),
                                         size);
}

bool copy_text_to_clipboardAW(const char* text) {
    if (!platform::OpenClipboard(HWND{})) return false;
    platform::EmptyClipboard();
    const bool done = platform::set_clipboard_text(utf8_now() ? std::string(text)
                                                              : platform::utf8_from_page(text));
    platform::CloseClipboard();
    return done;
}

}  // namespace tarn::winio
