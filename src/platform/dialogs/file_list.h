// The list of a file dialog: its entries as they are drawn.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/dialogs/folder.h"
#include "platform/user/user.h"

namespace tarn::platform {

inline constexpr std::int32_t file_row_height = 24;

// A name of the system as text to show: what isn't UTF-8 can't be told.
std::string shown_name(const std::string& name);

struct FileList {
    std::string folder;
    std::vector<FolderEntry> entries;
    // Asked for when a row is first drawn: a folder may hold thousands.
    struct Details {
        bool known = false;
        std::string size, date;
    };
    std::vector<Details> details;

    void set(std::string path, std::vector<FolderEntry> found);
    const Details& details_of(std::size_t index);
    void draw(const DRAWITEMSTRUCT& item, bool focused);
};

// The names of the columns, in a row above the list and as wide.
void draw_column_names(HDC dc, RECT row);
std::string size_text(std::int64_t bytes);

}  // namespace tarn::platform
