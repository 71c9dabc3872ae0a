// Native unformatted statements on files that a gnu statement connected: their records have another
// layout, which the gnu side knows.
#include "fio/gnu/unformatted.h"
#include "fio/native/connect.h"
#include "fio/native/unformatted.h"
#include "platform/kernel/error.h"

namespace tarn::fio::native {
namespace {

bool settle(IO_type& io) {
    const Caller& caller = io.gnu_caller;
    switch (caller.outcome) {
        case Outcome::ok:
            return true;
        case Outcome::end:
            return IO_end_of_file();
        default:
            break;
    }
    const char* const where = is_read(io.action) ? "RdSeqUnf" : "WrSeqUnf";
    if (caller.system_error == 0) return IO_error(caller.fault_number) && false;
    return report_file_error(platform::platform_error(caller.system_error), where) && false;
}

}  // namespace

bool begin_gnu_record(IO_type& io) {
    io.gnu_caller = Caller{};
    io.gnu_caller.unit = io.unit_number;
    io.gnu_caller.catches_error = io.gnu_caller.catches_end = true;
    io.gnu_record = begin_unformatted_on(*io.unit, io.gnu_caller, is_read(io.action), io.record_no);
    return settle(io);
}

bool move_gnu_bytes(IO_type& io, char* bytes, std::int32_t size, std::int64_t count) {
    transfer_items(*io.gnu_record, ItemType::integer, bytes, size, static_cast<std::size_t>(size),
                   size, static_cast<std::size_t>(count));
    return settle(io);
}

bool end_gnu_record(IO_type& io) {
    end_unformatted_on(io.gnu_record);
    io.gnu_record = nullptr;
    return settle(io);
}

}  // namespace tarn::fio::native
