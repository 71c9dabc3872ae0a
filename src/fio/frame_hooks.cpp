// What the rooms below ask of Fortran I/O: at the start, before the library's own messages, in a
// failure and at the end.
#include "failure/failure.h"
#include "fio/file/file.h"
#include "fio/handles/handles.h"
#include "fio/native/services.h"
#include "fio/unit.h"
#include "frame/hooks.h"
#include "platform/kernel/console.h"

namespace tarn::fio {
namespace {

std::ptrdiff_t read_console_line(std::string& line) {
    constexpr std::size_t longest = 4096;
    line.resize(longest);
    const std::ptrdiff_t length = sys_consoleRead(line.data(), longest);
    line.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return length;
}

// A failing program has its own report: what can't be written is not added to it.
void write_out_everything() {
    finish_all_units();
    handles::Lost lost;
    handles::flush_all(lost);
}

void install() {
    frame::hooks().preconnect = native::preconnect;
    frame::hooks().close_fortran_units = UnitList_destroyAll;
    frame::hooks().flush_fortran_units = flush_all_units;
    frame::hooks().initialise_fortran_io = handles::set_buffered_default;
    frame::hooks().flush_fortran_handles = handles::finish;
    failure::hooks().flush_everything = write_out_everything;
    failure::hooks().current_io_unit = native::unit_at_work;
    platform::console_hooks().flush_output = flush_console_output;
    platform::console_hooks().read_line = read_console_line;
}
TARN_PREAMBLE(install)

}  // namespace
}  // namespace tarn::fio
