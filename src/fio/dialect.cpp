#include "fio/dialect.h"

namespace tarn::fio {

const Dialect native_dialect{
    .line_end = "\r\n",
    .cuts_trailing_blanks = true,
    .drops_control_z = true,
    .expands_tabs = true,
    .drops_carriage_returns = true,
    .scratch_prefix = "F$",
};

const Dialect gnu_dialect{
    .line_end = "\n",
    .cuts_trailing_blanks = false,
    .drops_control_z = false,
    .expands_tabs = false,
    .drops_carriage_returns = false,
    .scratch_prefix = "gfortrantmp",
};

}  // namespace tarn::fio
