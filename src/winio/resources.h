// Pictures and fonts by name. Programs don't carry resources of their own yet: what is found are
// the built-in ones, and picture files.
#pragma once

#include "platform/base/types.h"
#include "winio/records.h"

namespace tarn::winio {

HICON load_icon_resource(const char* name);      // 0: none of that name
HCURSOR load_cursor_resource(const char* name);  // 0: none of that name
// Looks for the family; its description goes to `description`.
bool font_exists(const char* name, LOGFONT& description);

}  // namespace tarn::winio
