// Window classes, the words of a window, and finding windows by name.
#include <cstring>

#include "platform/base/text.h"
#include "platform/gdi/theme.h"
#include "platform/user/state.h"

namespace tarn::platform {

namespace {

constexpr std::size_t most_classes = 4096;
constexpr std::int32_t most_extra = 4096;  // bytes of a window of its class

char folded(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool same_name(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (folded(a[i]) != folded(b[i])) return false;
    return true;
}

}  // namespace

WindowClass* find_class(std::string_view name) {
    for (const auto& c : state().windows.classes)
        if (same_name(c->name, name)) return c.get();
    return nullptr;
}

bool RegisterClassA(const WNDCLASS& description) {
    auto& classes = state().windows.classes;
    // The first sign of windows: from here on the desktop is asked for its look.
    desktop_is_dark = [] { return display().dark(); };
    if (description.lpszClassName.empty() || description.lpfnWndProc == nullptr ||
        description.cbWndExtra < 0 || description.cbWndExtra > most_extra ||
        classes.size() >= most_classes || find_class(description.lpszClassName) != nullptr)
        return false;
    auto made = std::make_unique<WindowClass>();
    made->name = description.lpszClassName;
    made->style = description.style;
    made->procedure = description.lpfnWndProc;
    made->class_extra = description.cbClsExtra;
    made->window_extra = description.cbWndExtra;
    made->icon = description.hIcon;
    made->cursor = description.hCursor;
    made->background = description.hbrBackground;
    made->utf8 = description.utf8;
    classes.push_back(std::move(made));
    return true;
}

bool UnregisterClassA(const char* name) {
    auto& classes = state().windows.classes;
    for (std::size_t i = 0; name != nullptr && i < classes.size(); ++i) {
        if (!same_name(classes[i]->name, name)) continue;
        if (classes[i]->windows > 0) return false;
        classes.erase(classes.begin() + static_cast<std::ptrdiff_t>(i));
        return true;
    }
    return false;
}

bool GetClassInfoA(const char* name, WNDCLASS& description) {
    const WindowClass* const c = name != nullptr ? find_class(name) : nullptr;
    if (c == nullptr) return false;
    description = {.style = c->style,
                   .lpfnWndProc = c->procedure,
                   .cbClsExtra = c->class_extra,
                   .cbWndExtra = c->window_extra,
                   .hIcon = c->icon,
                   .hCursor = c->cursor,
                   .hbrBackground = c->background,
                   .lpszClassName = c->name,
                   .utf8 = c->utf8};
    return true;
}

std::int32_t GetClassNameA(HWND hwnd, char* buffer, std::int32_t size) {
    const Window* const window = find(hwnd);
    if (window == nullptr || buffer == nullptr || size <= 0) return 0;
    const auto length = std::min(window->cls->name.size(), static_cast<std::size_t>(size - 1));
    std::memcpy(buffer, window->cls->name.data(), length);
    buffer[length] = 0;
    return static_cast<std::int32_t>(length);
}

HWND FindWindowA(const char* class_name, const char* title) {
    const std::string wanted = title != nullptr ? utf8_from_page(title) : std::string();
    for (const Window* w = top_levels(); w != nullptr; w = w->below) {
        if (class_name != nullptr && !same_name(w->cls->name, class_name)) continue;
        if (title == nullptr || w->title == wanted) return w->handle;
    }
    return {};
}

// ---- Words -------------------------------------------------------------------------------------
// Extra bytes hold addresses where 8 of them are left, and 4-byte numbers where not.
LPARAM GetWindowLong(HWND hwnd, std::int32_t index) {
    const Window* const window = find(hwnd);
    if (window == nullptr) return 0;
    switch (index) {
        case GWL_WNDPROC:
            return reinterpret_cast<LPARAM>(window->procedure);
        case GWL_HWNDPARENT:
            return GetParent(hwnd);
        case GWL_ID:
            return window->id;
        case GWL_STYLE:
            return static_cast<LPARAM>(window->style);
        case GWL_EXSTYLE:
            return static_cast<LPARAM>(window->ex_style);
        case GWL_USERDATA:
            return window->user_data;
        default:
            break;
    }
    const std::int32_t size = window->cls->window_extra;
    if (index >= 0 && index <= size - 8) {
        LPARAM value;
        std::memcpy(&value, window->extra.get() + index, sizeof value);
        return value;
    }
    if (index >= 0 && index <= size - 4) {
        std::int32_t value;
        std::memcpy(&value, window->extra.get() + index, sizeof value);
        return value;
    }
    return 0;
}

LPARAM SetWindowLong(HWND hwnd, std::int32_t index, LPARAM value) {
    Window* const window = find(hwnd);
    if (window == nullptr) return 0;
    const LPARAM old = GetWindowLong(hwnd, index);
    switch (index) {
        case GWL_WNDPROC:
            window->procedure = reinterpret_cast<WNDPROC>(value);
            return old;
        case GWL_HWNDPARENT:
            if (!window->is_child()) {
                Window* const owner = find(HWND{static_cast<std::int32_t>(value)});
                window->owner = owner != nullptr ? &top_of(*owner) : nullptr;
                if (window->owner == window) window->owner = nullptr;
                options_changed(*window);
            }
            return old;
        case GWL_ID:
            window->id = value;
            return old;
        case GWL_STYLE:
            window->style = static_cast<DWORD>(value);
            children_changed(window->parent);
            if (!window->shows()) forget_updates(*window);
            return old;
        case GWL_EXSTYLE:
            window->ex_style = static_cast<DWORD>(value);
            children_changed(window->parent);
            return old;
        case GWL_USERDATA:
            window->user_data = value;
            return old;
        default:
            break;
    }
    const std::int32_t size = window->cls->window_extra;
    if (index >= 0 && index <= size - 8) {
        std::memcpy(window->extra.get() + index, &value, sizeof value);
    } else if (index >= 0 && index <= size - 4) {
        const auto narrow = static_cast<std::int32_t>(value);
        std::memcpy(window->extra.get() + index, &narrow, sizeof narrow);
    }
    return old;
}

}  // namespace tarn::platform
