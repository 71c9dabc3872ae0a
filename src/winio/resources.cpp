#include "winio/resources.h"

#include <cstring>
#include <map>
#include <string>

#include "platform/dialogs/program_resources.h"
#include "platform/gdi/gdi.h"
#include "platform/user/user.h"
#include "winio/layout.h"

namespace tarn::winio {
namespace {

struct named_number {
    const char* name;
    std::int32_t number;
};

std::int32_t find(const char* name, const named_number* table, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (strcasecmp(table[i].name, name) == 0) return table[i].number;
    }
    return 0;
}

// Each file is read once.
HCURSOR cursor_of_file(const std::string& name) {
    static auto* loaded = new std::map<std::string, HCURSOR>;
    const auto [entry, fresh] = loaded->try_emplace(name, HCURSOR{});
    std::string bytes;
    if (fresh && platform::read_picture_resource(platform::resource_kind::cursor, name, bytes)) {
        platform::POINT hot;
        entry->second = platform::CreateIconFromFile(
            reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), true, hot);
    }
    return entry->second;
}

}  // namespace

HCURSOR load_cursor_resource(const char* name) {
    static constexpr named_number cursors[] = {
        {"CURSOR_ARROW", platform::IDC_ARROW},     {"CURSOR_IBEAM", platform::IDC_IBEAM},
        {"CURSOR_WAIT", platform::IDC_WAIT},       {"CURSOR_CROSS", platform::IDC_CROSS},
        {"CURSOR_UPARROW", platform::IDC_UPARROW}, {"CURSOR_SIZE", platform::IDC_SIZEALL},
        {"CURSOR_HAND", platform::IDC_HAND},       {"CURSOR_NO", platform::IDC_NO},
        {"IDC_ARROW", platform::IDC_ARROW},        {"IDC_IBEAM", platform::IDC_IBEAM},
        {"IDC_WAIT", platform::IDC_WAIT},          {"IDC_CROSS", platform::IDC_CROSS},
        {"IDC_UPARROW", platform::IDC_UPARROW},    {"IDC_SIZEALL", platform::IDC_SIZEALL},
        {"IDC_HAND", platform::IDC_HAND},          {"IDC_NO", platform::IDC_NO},
        {"IDC_SIZENS", platform::IDC_SIZENS},      {"IDC_SIZEWE", platform::IDC_SIZEWE},
        {"IDC_SIZENWSE", platform::IDC_SIZENWSE},  {"IDC_SIZENESW", platform::IDC_SIZENESW},
        {"IDC_HELP", platform::IDC_HELP}};
    const std::int32_t which = find(name, cursors, std::size(cursors));
    return which != 0 ? platform::LoadSystemCursor(which) : cursor_of_file(name);
}

bool font_exists(const char* name, LOGFONT& description) {
    struct search {
        LOGFONT* into;
        bool found;
    } looking{&description, false};
    platform::EnumFontFamiliesA(
        measuring_dc(), name,
        [](const LOGFONT& found, const platform::TEXTMETRIC&, platform::DWORD,
           platform::LPARAM parameter) -> std::int32_t {
            auto& into = *reinterpret_cast<search*>(parameter);
            *into.into = found;
            into.found = true;
            return 0;
        },
        reinterpret_cast<platform::LPARAM>(&looking));
    return looking.found;
}

}  // namespace tarn::winio
