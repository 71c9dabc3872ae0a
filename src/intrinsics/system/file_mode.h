// The modes of files as texts: octal numbers and the language of chmod.
#pragma once

#include <optional>
#include <string_view>
#include <sys/types.h>

namespace tarn::intrinsics {

struct ModeBefore {
    mode_t mode = 0;  // with the kind of the file
    mode_t mask = 0;  // the process's umask
};

// Whether the text is an octal number, which needs no mode before it.
bool is_octal_mode(std::string_view text);
// The permission bits that a text such as "755" or "u+rw,go=r" makes of a file's mode; none for a
// text that isn't one.
std::optional<mode_t> changed_mode(std::string_view text, const ModeBefore& before);

}  // namespace tarn::intrinsics
