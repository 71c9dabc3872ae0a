// Cursors and fonts by name (icons and bitmaps: buttons.h). Programs don't carry resources of their
// own yet: what is found are the built-in ones.
#pragma once

#include "platform/base/types.h"
#include "winio/records.h"

namespace tarn::winio {

HCURSOR load_cursor_resource(const char* name);  // 0: none of that name
// Looks for the family; its description goes to `description`.
bool font_exists(const char* name, LOGFONT& description);

}  // namespace tarn::winio
