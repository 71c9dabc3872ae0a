// A report in windows.
#pragma once

#include "diagnostics/report_cells.h"

namespace tarn::diagnostics {

// Shows it until its user has read it. False: there is nobody to see it, or one is shown already.
bool show_report(const Report& report);

}  // namespace tarn::diagnostics
