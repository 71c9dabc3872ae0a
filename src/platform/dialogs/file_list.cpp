#include "platform/dialogs/file_list.h"

#include <cstdio>
#include <ctime>
#include <sys/stat.h>
#include <utility>

#include "platform/base/text.h"
#include "platform/controls/look.h"
#include "platform/gdi/paint.h"
#include "platform/gdi/theme.h"

namespace tarn::platform {

namespace {

// Where the columns of size and date begin, from the right edge of a row.
constexpr std::int32_t size_column = 210, date_column = 130;
constexpr std::int32_t icon_left = 8, icon_size = 16, text_left = 32, edge = 8;

// A folder with its tab; amber, as everybody knows them.
void draw_folder(HDC dc, float x, float y) {
    const Theme& look = theme();
    const COLORREF body = look.dark ? RGB(214, 168, 76) : RGB(232, 178, 70);
    const COLORREF back = blend(body, RGB(0, 0, 0), 0.18F);
    fill_rounded(dc, {x + 1, y + 2, x + 8, y + 8}, 1.5F, back);
    fill_rounded(dc, {x + 1, y + 3.5F, x + 15, y + 10}, 1.5F, back);
    fill_rounded(dc, {x + 1, y + 5.5F, x + 15, y + 14}, 1.5F, body);
}

// A sheet with a corner turned down and some lines on it.
void draw_sheet(HDC dc, float x, float y) {
    const Theme& look = theme();
    const COLORREF line = look.text_muted;
    const PointF sheet[] = {
        {x + 3, y + 1}, {x + 9.5F, y + 1}, {x + 13, y + 4.5F}, {x + 13, y + 15}, {x + 3, y + 15}};
    fill_path(dc, sheet,
              look.dark ? blend(look.window, RGB(255, 255, 255), 0.1F) : RGB(255, 255, 255));
    stroke_path(dc, sheet, 1.0F, line, 1.0F, true);
    const PointF corner[] = {{x + 9.5F, y + 1}, {x + 9.5F, y + 4.5F}, {x + 13, y + 4.5F}};
    stroke_path(dc, corner, 1.0F, line);
    for (const float at : {7.5F, 10.0F, 12.5F}) {
        const PointF words[] = {{x + 5.5F, y + at}, {x + 10.5F, y + at}};
        stroke_path(dc, words, 0.8F, line, 0.6F);
    }
}

std::string date_text(std::time_t when) {
    std::tm parts{};
    if (!localtime_r(&when, &parts)) return {};
    char text[32];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &parts);
    return {text, length};
}

// What a scroll bar leaves of the list, whether or not there is one: the columns stay where their
// names are.
std::int32_t columns_width(std::int32_t list_width) {
    return list_width - GetSystemMetrics(SM_CXVSCROLL) - 2;
}
RECT columns_of(const DRAWITEMSTRUCT& item) {
    RECT list, row = item.rcItem;
    GetWindowRect(item.hwndItem, list);
    row.right = row.left + columns_width(list.width());
    return row;
}

bool has_columns(const RECT& row) {
    return row.width() > 2 * size_column;
}
RECT size_part(const RECT& row) {
    return {row.right - size_column, row.top, row.right - date_column - 16, row.bottom};
}
RECT date_part(const RECT& row) {
    return {row.right - date_column, row.top, row.right - edge, row.bottom};
}

}  // namespace

std::string shown_name(const std::string& name) {
    std::string text;
    for (std::size_t at = 0; at < name.size();) append_utf8(text, next_code_point(name, at));
    return text;
}

std::string size_text(std::int64_t bytes) {
    constexpr const char* units[] = {"B", "KB", "MB", "GB", "TB", "PB"};
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; size >= 999.5 && unit + 1 < std::size(units); ++unit) size /= 1024.0;
    char text[32];
    std::snprintf(text, sizeof text, unit > 0 && size < 9.95 ? "%.1f %s" : "%.0f %s", size,
                  units[unit]);
    return text;
}

void FileList::set(std::string path, std::vector<FolderEntry> found) {
    folder = std::move(path);
    entries = std::move(found);
    details.assign(entries.size(), {});
}

const FileList::Details& FileList::details_of(std::size_t index) {
    Details& known = details[index];
    if (known.known) return known;
    known.known = true;
    struct stat facts {};
    if (stat((folder + "/" + entries[index].name).c_str(), &facts) != 0) return known;
    if (!entries[index].folder) known.size = size_text(facts.st_size);
    known.date = date_text(facts.st_mtime);
    return known;
}

void FileList::draw(const DRAWITEMSTRUCT& item, bool focused) {
    if (item.itemID >= entries.size()) return;
    const FolderEntry& entry = entries[item.itemID];
    const Theme& look = theme();
    const RECT row = columns_of(item);
    COLORREF text = look.text, muted = look.text_muted;
    FillRect(item.hDC, item.rcItem, GetSysColorBrush(COLOR_WINDOW));
    if ((item.itemState & ODS_SELECTED) != 0) {
        const COLORREF back = focused ? look.selection : look.selection_inactive;
        fill_rounded(item.hDC, to_f(item.rcItem), 0, back);
        text = muted = focused ? look.selection_text : readable(look.text, back);
    }
    const auto x = static_cast<float>(row.left + icon_left);
    const auto y = static_cast<float>(row.top + (row.height() - icon_size) / 2);
    (entry.folder ? draw_folder : draw_sheet)(item.hDC, x, y);
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, text);
    const bool columns = has_columns(row);
    RECT name{row.left + text_left, row.top, row.right - (columns ? size_column : edge),
              row.bottom};
    draw_line(item.hDC, shown_name(entry.name), name, DT_LEFT | DT_NOPREFIX | DT_END_ELLIPSIS);
    if (!columns) return;
    const Details& more = details_of(item.itemID);
    SetTextColor(item.hDC, muted);
    draw_line(item.hDC, more.size, size_part(row), DT_RIGHT | DT_NOPREFIX);
    draw_line(item.hDC, more.date, date_part(row), DT_LEFT | DT_NOPREFIX);
}

void draw_column_names(HDC dc, RECT row) {
    row.right = row.left + columns_width(row.width());
    if (!has_columns(row)) return;
    SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, theme().text);
    draw_line(dc, "Size", size_part(row), DT_RIGHT);
    draw_line(dc, "Changed", date_part(row), DT_LEFT);
}

}  // namespace tarn::platform
