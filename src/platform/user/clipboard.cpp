// Clipboard and PRIMARY. The display keeps text with LF; programs know CR LF.
#include "platform/gdi/paint.h"
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

std::string with_line_feeds(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool pair = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (!pair) out.push_back(text[i]);
    }
    return out;
}

}  // namespace

std::string with_cr_lf(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) out.push_back('\r');
        out.push_back(text[i]);
    }
    return out;
}

// One program is one owner here: opening only keeps the order of calls.
bool OpenClipboard(HWND hwnd) {
    state().clipboard_owner = hwnd;
    return true;
}

bool CloseClipboard() {
    state().clipboard_owner = HWND{};
    return true;
}

bool EmptyClipboard() {
    display().offer_text(false, {});
    return true;
}

bool IsClipboardFormatAvailable(UINT format) {
    return (format == CF_TEXT || format == CF_UNICODETEXT) && display().has_text(false);
}

bool set_clipboard_text(std::string_view utf8) {
    display().offer_text(false, with_line_feeds(utf8));
    return true;
}

bool clipboard_text(std::string& utf8) {
    utf8.clear();
    if (!display().request_text(false, utf8)) return false;
    utf8 = with_line_feeds(utf8);
    return true;
}

bool set_clipboard_bitmap(HBITMAP bitmap) {
    SIZE size;
    if (!GetBitmapSize(bitmap, size) || size.cx <= 0 || size.cy <= 0) return false;
    const HDC dc = CreateCompatibleDC(HDC{});
    const HGDIOBJ old = SelectObject(dc, bitmap);
    std::vector<unsigned char> png;
    if (const Surface* const picture = surface_of(dc)) png = encode_png(*picture);
    SelectObject(dc, old);
    DeleteDC(dc);
    if (png.empty()) return false;
    display().offer_image({reinterpret_cast<const char*>(png.data()), png.size()});
    return true;
}

void set_primary_text(std::string_view utf8) {
    display().offer_text(true, with_line_feeds(utf8));
}

bool primary_text(std::string& utf8) {
    utf8.clear();
    if (!display().request_text(true, utf8)) return false;
    utf8 = with_line_feeds(utf8);
    return true;
}

}  // namespace tarn::platform
