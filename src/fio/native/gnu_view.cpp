// Units that both dialects use: each keeps the other's picture of the connection true.
#include "fio/gnu/position.h"
#include "fio/native/connect.h"
#include "platform/kernel/error.h"

namespace tarn::fio::native {

void describe_to_gnu(Unit& unit) {
    const IOStatus& status = unit.status;
    GnuConnection& gnu = unit.gnu;
    gnu.access = status.direct        ? Access::direct
                 : status.transparent ? Access::stream
                                      : Access::sequential;
    gnu.form = status.formatted ? Form::formatted : Form::unformatted;
    gnu.action = !status.may_write  ? Action::read
                 : !status.may_read ? Action::write
                                    : Action::readwrite;
    gnu.modes.blank = status.blank_null ? Blank::null : Blank::zero;
    gnu.modes.delim = status.delim_quote        ? Delim::quote
                      : status.delim_apostrophe ? Delim::apostrophe
                                                : Delim::none;
    gnu.modes.pad = !status.pad_no;
    gnu.delim_given = status.delim_quote || status.delim_apostrophe;
    gnu.native_records = true;
    gnu.carriage = CarriageControl::list;
    gnu.share = unit.share;
    gnu.name = unit.file.path;
    gnu.record_open = false;
    gnu.open_column = 0;
    gnu.last_was_write = false;
    gnu.end = EndState::before;
    gnu.record_number = 0;
}

bool take_over_from_gnu(Unit& unit) {
    if (unit.dialect != &gnu_dialect) return true;
    GnuConnection& gnu = unit.gnu;
    unit.status.end_of_file = gnu.end == EndState::after;
    if (is_write(current().action)) {
        // The native record goes on behind what a non-advancing gnu WRITE put out. Behind data
        // that was read it ends the file, as it would in a gnu statement.
        if (!gnu.last_was_write) unit.status.read_mode = true;
    } else if (gnu.last_was_write) {
        int err = 0;
        end_output(unit, err);
        if (err != 0) return report_file_error(platform::platform_error(err), "RdSeqFrm");
    }
    if (gnu.record_open) unit.saved_length = 0;
    gnu.record_open = false;
    return true;
}

void hand_over_to_gnu(Unit& unit) {
    const IO_type& io = current();
    GnuConnection& gnu = unit.gnu;
    gnu.record_open = false;
    gnu.last_was_write = is_write(io.action);
    gnu.end = unit.status.end_of_file ? EndState::after : EndState::before;
    gnu.record_number = unit.current_record;
}

}  // namespace tarn::fio::native
