// CLOSE in the gnu dialect.
#pragma once

#include <string_view>

#include "fio/gnu/fault.h"

namespace tarn::fio {

// `status`: STATUS=, without an address when it wasn't given.
void close_unit(Caller& caller, std::string_view status);

}  // namespace tarn::fio
