// Texts that messages carry, in three encodings. A procedure of a class with `utf8` gets and gives
// UTF-8. Other procedures get what the A functions were given as it stands, and UTF-8 from the W
// functions; when such a text reaches DefWindowProc unchanged it is still known what it is.
#include <cstring>

#include "platform/base/text.h"
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

constexpr std::size_t longest = 1 << 26;  // of a text from outside

std::string decoded(const void* text, Encoding encoding) {
    if (text == nullptr) return {};
    if (encoding == Encoding::wide) {
        const auto* const wide = static_cast<const char16_t*>(text);
        std::size_t length = 0;
        while (length < longest && wide[length] != 0) ++length;
        return utf8_from_wide({wide, length});
    }
    const auto* const bytes = static_cast<const char*>(text);
    const std::string_view view(bytes, strnlen(bytes, longest));
    return encoding == Encoding::page ? utf8_from_page(view) : std::string(view);
}

// Where a buffer of `size` bytes must end so that no character is split.
std::size_t whole_characters(std::string_view utf8, std::size_t size) {
    if (utf8.size() <= size) return utf8.size();
    while (size > 0 && (static_cast<unsigned char>(utf8[size]) & 0xC0) == 0x80) --size;
    return size;
}

// Fills a buffer of `size` units, its end included; the units written without it.
LRESULT encode_into(std::string_view utf8, Encoding encoding, void* buffer, std::size_t size) {
    if (buffer == nullptr || size == 0) return 0;
    if (encoding == Encoding::wide) {
        const std::u16string wide = wide_from_utf8(utf8);
        const std::size_t count = std::min(wide.size(), size - 1);
        auto* const out = static_cast<char16_t*>(buffer);
        std::memcpy(out, wide.data(), count * sizeof(char16_t));
        out[count] = 0;
        return static_cast<LRESULT>(count);
    }
    const std::string page = encoding == Encoding::page ? page_from_utf8(utf8) : std::string();
    const std::string_view bytes = encoding == Encoding::page ? std::string_view(page) : utf8;
    const std::size_t count = encoding == Encoding::page ? std::min(bytes.size(), size - 1)
                                                         : whole_characters(bytes, size - 1);
    auto* const out = static_cast<char*>(buffer);
    std::memcpy(out, bytes.data(), count);
    out[count] = 0;
    return static_cast<LRESULT>(count);
}

LRESULT encoded_length(std::string_view utf8, Encoding encoding) {
    if (encoding == Encoding::page) return static_cast<LRESULT>(page_from_utf8(utf8).size());
    if (encoding == Encoding::wide) return static_cast<LRESULT>(wide_from_utf8(utf8).size());
    return static_cast<LRESULT>(utf8.size());
}

// How a message of a standard class carries text. The numbers are those classes' own, which this
// room doesn't know by name.
enum class Carries : std::uint8_t {
    nothing,
    given,        // lparam: a text for the window
    taken_sized,  // lparam: a buffer of wparam units
    taken,        // lparam: a buffer that is large enough; the next message below asks how large
    length,       // the result is a length
};
struct TextMessage {
    UINT message;
    Carries carries;
    UINT length_message;  // of `taken`
};
constexpr TextMessage text_messages[] = {
    {WM_SETTEXT, Carries::given, 0},
    {WM_GETTEXT, Carries::taken_sized, 0},
    {WM_GETTEXTLENGTH, Carries::length, 0},
    {0xC2, Carries::given, 0},   // edit: replace the selection
    {0x143, Carries::given, 0},  // combo box: add, insert, find, find exactly
    {0x14A, Carries::given, 0},
    {0x14C, Carries::given, 0},
    {0x158, Carries::given, 0},
    {0x148, Carries::taken, 0x149},
    {0x149, Carries::length, 0x148},
    {0x180, Carries::given, 0},  // list box: the same
    {0x181, Carries::given, 0},
    {0x18F, Carries::given, 0},
    {0x1A2, Carries::given, 0},
    {0x189, Carries::taken, 0x18A},
    {0x18A, Carries::length, 0x189},
    {0x1501, Carries::given, 0},  // edit: cue banner
    {0x1609, Carries::given, 0},  // button: note
};

// Items of a list that its owner draws are numbers, unless it has strings.
bool items_are_numbers(const Window& window, UINT message) {
    constexpr DWORD owner_drawn = 0x10;
    const bool list = message >= 0x180 && message <= 0x1A2;
    const bool combo = message >= 0x143 && message <= 0x158;
    if ((!list && !combo) || (window.style & owner_drawn) == 0) return false;
    return (window.style & (list ? 0x40u : 0x200u)) == 0;
}

const TextMessage* text_message(UINT message) {
    for (const TextMessage& t : text_messages)
        if (t.message == message) return &t;
    return nullptr;
}

// What a window of a UTF-8 class answers to a `taken` message: the length it tells bounds the text.
std::string take_text(Window& window, UINT message, UINT length_message, WPARAM wparam) {
    Pinned w(&window);
    const bool sized = message == WM_GETTEXT;
    const LRESULT length = call(*w, length_message, sized ? 0 : wparam, 0);
    if (length <= 0 || static_cast<std::size_t>(length) > longest || !w.alive()) return {};
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    const LRESULT got =
        call(*w, message, sized ? text.size() : wparam, reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(std::clamp<LRESULT>(got, 0, length)));
    return text;
}

class Transfer {
  public:
    Transfer(const void* text, UINT message, Encoding encoding) : saved_(state().transfer) {
        state().transfer = {text, message, encoding};
    }
    ~Transfer() { state().transfer = saved_; }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

  private:
    TextTransfer saved_;
};

LRESULT send_to_utf8_class(Window& window, const TextMessage& t, WPARAM wparam, LPARAM lparam,
                           Encoding encoding) {
    const UINT message = t.message;
    switch (t.carries) {
        case Carries::given: {
            if (lparam == 0) return call(window, message, wparam, lparam);
            const std::string text = decoded(reinterpret_cast<const void*>(lparam), encoding);
            return call(window, message, wparam, reinterpret_cast<LPARAM>(text.c_str()));
        }
        case Carries::taken_sized:
            return encode_into(take_text(window, message, WM_GETTEXTLENGTH, 0), encoding,
                               reinterpret_cast<void*>(lparam), wparam);
        case Carries::length: {
            const UINT taker = message == WM_GETTEXTLENGTH ? UINT{WM_GETTEXT} : t.length_message;
            const LRESULT plain = call(window, message, wparam, lparam);
            if (plain <= 0) return plain;
            return encoded_length(take_text(window, taker, message, wparam), encoding);
        }
        case Carries::taken: {
            const LRESULT length = call(window, t.length_message, wparam, 0);
            if (length < 0) return length;
            return encode_into(take_text(window, message, t.length_message, wparam), encoding,
                               reinterpret_cast<void*>(lparam),
                               static_cast<std::size_t>(length) + 1);
        }
        default:
            return call(window, message, wparam, lparam);
    }
}

}  // namespace

LRESULT send_text_message(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam,
                          Encoding encoding) {
    Window* const window = find(hwnd);
    if (window == nullptr) return 0;
    if (window->cls->utf8) {
        if (encoding == Encoding::utf8 || message >= WM_USER + 0x1300)
            return call(*window, message, wparam, lparam);
        const TextMessage* const t = text_message(message);
        if (t == nullptr || items_are_numbers(*window, message))
            return call(*window, message, wparam, lparam);
        return send_to_utf8_class(*window, *t, wparam, lparam, encoding);
    }
    if (message == WM_SETTEXT && encoding == Encoding::wide) {
        const std::string text = decoded(reinterpret_cast<const void*>(lparam), encoding);
        const Transfer transfer(text.c_str(), message, Encoding::utf8);
        return call(*window, message, wparam, reinterpret_cast<LPARAM>(text.c_str()));
    }
    if (message == WM_SETTEXT || message == WM_GETTEXT || message == WM_GETTEXTLENGTH) {
        const Transfer transfer(reinterpret_cast<const void*>(lparam), message, encoding);
        return call(*window, message, wparam, lparam);
    }
    return call(*window, message, wparam, lparam);
}

// ---- The title ---------------------------------------------------------------------------------
void title_changed(Window& window) {
    if (window.top && window.top->opened) display().set_title(display_id(window), window.title);
    if (has_caption_of_ours(window)) invalidate_frame(window);
}

LRESULT default_text(Window& window, UINT message, WPARAM wparam, LPARAM lparam,
                     Encoding encoding) {
    const TextTransfer& transfer = state().transfer;
    auto* const text = reinterpret_cast<void*>(lparam);
    if (window.cls->utf8)
        encoding = Encoding::utf8;
    else if (transfer.message == message && transfer.text == text)
        encoding = transfer.encoding;
    switch (message) {
        case WM_SETTEXT: {
            std::string title = decoded(text, encoding);
            if (title == window.title) return 1;
            window.title = std::move(title);
            title_changed(window);
            return 1;
        }
        case WM_GETTEXT:
            return encode_into(window.title, encoding, text, wparam);
        default:
            return encoded_length(window.title, encoding);
    }
}

bool SetWindowTextA(HWND hwnd, const char* text) {
    return SendMessageA(hwnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) > 0;
}

bool SetWindowTextW(HWND hwnd, const char16_t* text) {
    return SendMessageW(hwnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) > 0;
}

bool set_window_text(HWND hwnd, std::string_view utf8) {
    const std::string text(utf8);
    return send_message(hwnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str())) > 0;
}

std::int32_t GetWindowTextA(HWND hwnd, char* buffer, std::int32_t size) {
    if (buffer == nullptr || size <= 0) return 0;
    buffer[0] = 0;
    return static_cast<std::int32_t>(SendMessageA(hwnd, WM_GETTEXT, static_cast<WPARAM>(size),
                                                  reinterpret_cast<LPARAM>(buffer)));
}

std::int32_t GetWindowTextW(HWND hwnd, char16_t* buffer, std::int32_t size) {
    if (buffer == nullptr || size <= 0) return 0;
    buffer[0] = 0;
    return static_cast<std::int32_t>(SendMessageW(hwnd, WM_GETTEXT, static_cast<WPARAM>(size),
                                                  reinterpret_cast<LPARAM>(buffer)));
}

std::int32_t GetWindowTextLengthA(HWND hwnd) {
    return static_cast<std::int32_t>(SendMessageA(hwnd, WM_GETTEXTLENGTH, 0, 0));
}

std::string window_text(HWND hwnd) {
    const LRESULT length = send_message(hwnd, WM_GETTEXTLENGTH, 0, 0);
    if (length <= 0 || static_cast<std::size_t>(length) > longest) return {};
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    const LRESULT got =
        send_message(hwnd, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(std::clamp<LRESULT>(got, 0, length)));
    return text;
}

}  // namespace tarn::platform
