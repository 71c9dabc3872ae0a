#include "fio/native/services.h"

#include <mutex>

#include "fio/gnu/connection.h"
#include "fio/native/statement.h"

namespace tarn::fio::native {
namespace {

void set_text(IOCode code, std::string_view text) {
    // The statement only reads it.
    setOption(code, TypeCode::character, const_cast<char*>(text.data()),
              static_cast<std::ptrdiff_t>(text.size()));
}

}  // namespace

void preconnect(std::int32_t unit, std::string_view name, bool read_only, bool formatted) {
    beginIO(ActionCode::open);
    setOption(IOCode::unit, TypeCode::integer4, &unit, -1);
    set_text(IOCode::file, name);
    set_text(IOCode::status, read_only ? "READONLY" : "UNKNOWN");
    set_text(IOCode::form, formatted ? "FORMATTED" : "UNFORMATTED");
    conclude(doIO());
}

void open_to_window(std::int32_t number, void* window, std::int32_t target) {
    const std::lock_guard<std::recursive_mutex> guard(state().critical_section);
    IO_initialise();
    // Statements of both dialects may write to it.
    Unit* const unit = connect_window(number, window);
    unit->kind = UnitKind::window;
    unit->status.blank_null = true;
    unit->status.reading = true;
    unit->status.writing = true;
    unit->driver = window;
    unit->window_target = target;
    release_unit(unit);
}

void CloseAllFortranUnits() {
    if (state().initialised) UnitList_destroyAll();
}

std::int32_t unit_at_work() {
    const IO_type* const io = state().current_io;
    return io != nullptr && io->busy ? io->unit_number : 0;
}

std::int32_t current_unit_number() {
    const IO_type* const io = state().current_io;
    return io != nullptr ? io->unit_number : 0;
}

}  // namespace tarn::fio::native
