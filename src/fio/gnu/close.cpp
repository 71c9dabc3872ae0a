#include "fio/gnu/close.h"

#include <string>

#include "failure/failure.h"
#include "fio/gnu/connection.h"
#include "fio/gnu/keyword.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

enum class CloseStatus : std::uint8_t { unspecified, keep, remove };

constexpr Word<CloseStatus> status_words[] = {{"KEEP", CloseStatus::keep},
                                              {"DELETE", CloseStatus::remove}};
constexpr Fault scratch_kept{92, iostat_bad_option};
constexpr Fault same_unit{433, iostat_option_conflict};

}  // namespace

void close_unit(Caller& caller, std::string_view status) {
    bring_up_units();
    caller.has_unit = true;
    CloseStatus wanted = CloseStatus::unspecified;
    if (!keyword(status, status_words, wanted)) {
        std::string detail = "STATUS='";
        detail.append(status).append("'");
        return raise_fault(caller, {152, iostat_bad_option}, detail);
    }
    Unit* unit = acquire_unit(caller.unit);
    if (unit == nullptr) return;
    if (unit->statements > 1) {
        raise_fault(caller, same_unit);
    } else {
        // A scratch file can't be kept; it goes all the same.
        const bool kept = unit->status.scratch && wanted == CloseStatus::keep;
        int err = 0;
        if (wanted == CloseStatus::remove && unit->gnu.read_only) {
            failure::warn("CLOSE keeps a file protected by READONLY");
            wanted = CloseStatus::keep;
        }
        if (unit->status.connected) disconnect(*unit, wanted == CloseStatus::remove, err);
        give_back_new_unit_number(unit->number);
        UnitList_destroy(unit);
        if (err != 0) {
            raise_system_fault(caller, err);
        } else if (kept) {
            raise_fault(caller, scratch_kept, "a scratch file can't be kept");
        }
    }
    release_unit(unit);
}

}  // namespace tarn::fio
