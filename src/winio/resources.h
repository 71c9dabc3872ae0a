// Cursors and fonts by name (icons and bitmaps: buttons.h).
#pragma once

#include "platform/base/types.h"
#include "winio/records.h"

namespace tarn::winio {

HCURSOR load_cursor_resource(const char* name);  // built-in, or a file; 0: none
// Looks for the family; its description goes to `description`.
bool font_exists(const char* name, LOGFONT& description);

}  // namespace tarn::winio
