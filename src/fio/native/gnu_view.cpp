// Units that both dialects use: each keeps the other's picture of the connection true.
#include "fio/native/connect.h"

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
    gnu.carriage = CarriageControl::list;
    gnu.share = unit.share;
    gnu.name = unit.file.path;
    gnu.record_open = false;
    gnu.open_column = 0;
    gnu.last_was_write = false;
    gnu.end = EndState::before;
    gnu.record_number = 0;
    gnu.stream_position = 1;
}

void take_over_from_gnu(Unit& unit) {
    if (unit.dialect != &gnu_dialect) return;
    GnuConnection& gnu = unit.gnu;
    // What a non-advancing gnu WRITE left of its record stands in the file; the native record
    // goes on behind it.
    if (gnu.record_open) unit.saved_length = 0;
    gnu.record_open = false;
    unit.status.end_of_file = gnu.end != EndState::before;
    // A WRITE behind data that was read ends the file there, as it would in a gnu statement.
    if (!gnu.last_was_write) unit.status.read_mode = true;
}

void hand_over_to_gnu(Unit& unit) {
    const IO_type& io = current();
    GnuConnection& gnu = unit.gnu;
    gnu.record_open = false;
    gnu.last_was_write = is_write(io.action);
    gnu.end = unit.status.end_of_file ? EndState::at : EndState::before;
    gnu.record_number = unit.current_record;
    if (unit.status.stream) gnu.stream_position = unit.file.logical_position + 1;
}

}  // namespace tarn::fio::native
