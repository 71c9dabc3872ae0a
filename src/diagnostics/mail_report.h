// A report by mail, for programs whose maker wants one. Beside the executable lies a file of the
// same name with the extension .ini:
//
//     [EmailReport]
//     ToAddr=help@example.org
//     Subject=Application failure report
//     Method=2
//
// The user's browser opens a page that makes the user's mail program open a letter; nothing leaves
// the machine before the user sends that. With Method=0 the page has a button for it.
#pragma once

#include <string>
#include <string_view>

namespace tarn::diagnostics {

// Whether the program's maker wants reports.
bool mail_is_set_up();
// Makes the page of a report and opens it. Gives the page's path, empty where there is none.
std::string send_mail(std::string_view report);

// For tests: the parts of it.
std::string settings_path(std::string_view program);
std::string mail_page(int method, std::string_view address, std::string_view subject,
                      std::string_view report);

}  // namespace tarn::diagnostics
