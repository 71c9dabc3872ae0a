// The entries of the native dialect beside its statements.
#include <cstring>
#include <string>

#include "fio/native/debug.h"
#include "fio/native/hooks.h"
#include "fio/native/services.h"
#include "fio/native/statement.h"
#include "frame/link_name.h"

namespace tarn::fio::native {
namespace {

constexpr std::int32_t flag_formatted = 1;
constexpr std::int32_t flag_direct = 2;
constexpr std::int32_t flag_stream_write = 4;

void describe_current(std::int16_t* unit, std::int32_t* record, std::int32_t* recl,
                      std::int16_t* flags, std::int32_t* position) {
    *unit = 0;
    *record = *recl = *position = 0;
    *flags = 0;
    const IO_type* const io = state().current_io;
    if (io == nullptr) return;
    *unit = static_cast<std::int16_t>(io->unit_number);
    *position = static_cast<std::int32_t>(io->record_cursor - io->record_start);
    if (io->unit == nullptr) return;
    const Unit& at = *io->unit;
    *record = static_cast<std::int32_t>(at.current_record);
    *recl = static_cast<std::int32_t>(at.recl);
    std::int32_t bits = 0;
    if (at.status.formatted) bits |= flag_formatted;
    if (at.status.direct) bits |= flag_direct;
    if (at.status.stream && !at.status.read_mode && at.status.writing) bits |= flag_stream_write;
    *flags = static_cast<std::int16_t>(bits);
}

// ---- The printer's drivers ----

using PrintText = void (*)(std::int32_t unit, const char* text, std::size_t count);
using PrintClose = void (*)(std::int32_t unit);

void run_printer(PrintText print, PrintClose close, const char* buffer, std::int32_t length,
                 std::int32_t operation) {
    // The statement that called the driver lies below the record of the driver's own.
    const IO_type* const caller = current().previous;
    const std::int32_t unit = caller != nullptr ? caller->unit_number : 0;
    if (operation == static_cast<std::int32_t>(ActionCode::write_formatted) && print != nullptr)
        print(unit, buffer, static_cast<std::size_t>(length));
    if (operation == static_cast<std::int32_t>(ActionCode::close) && close != nullptr) close(unit);
}

void printer_driver(char* buffer, std::int32_t*, std::int32_t* length, std::int32_t* operation,
                    std::int16_t* status, std::size_t) {
    run_printer(hooks().print_string, hooks().print_close, buffer, *length, *operation);
    *status = 0;
}

void html_printer_driver(char* buffer, std::int32_t*, std::int32_t* length, std::int32_t* operation,
                         std::int16_t* status, std::size_t) {
    run_printer(hooks().print_html_string, hooks().print_html_close, buffer, *length, *operation);
    *status = 0;
}

template <typename Driver>
void open_to_driver(const std::int32_t* unit, Driver* driver, bool available) {
    std::int32_t number = *unit;
    beginIO(ActionCode::open);
    if (!available) {
        conclude(IO_not_available("Printing is not available"));
        return;
    }
    setOption(IOCode::unit, TypeCode::integer4, &number, -1);
    setOption(IOCode::driver, TypeCode::none, reinterpret_cast<void*>(driver), -1);
    conclude(doIO());
}

// What the debugger services last told; the caller may read it until the next one.
const char* hand_to_debugger(const std::string& text) {
    static char* last = nullptr;
    char* const fresh = strdup(text.c_str());
    free(last);
    last = fresh;
    if (hooks().debugger_result != nullptr) hooks().debugger_result(text.c_str());
    return last;
}

}  // namespace

Hooks& hooks() {
    static constinit Hooks the_hooks;
    return the_hooks;
}

}  // namespace tarn::fio::native

using namespace tarn::fio::native;

extern "C" {

TARN_EXPORT void EnableReentrantIO(std::int32_t on) {
    state().reentrant_io = on != 0;
}

TARN_EXPORT void ENABLE_REENTRANT_IO_h(const std::int32_t* on) LINK_NAME("ENABLE_REENTRANT_IO#");
void ENABLE_REENTRANT_IO_h(const std::int32_t* on) {
    EnableReentrantIO(*on);
}

TARN_EXPORT void __SetMaximumIOBufferSize(std::int32_t size) {
    set_maximum_buffer_size(size);
}

TARN_EXPORT void MarkIOMemoryAsFree() {
    if (state().current_io != nullptr) current().dynamic_buffer = false;
}
TARN_EXPORT void MARK_IO_MEMORY_AS_FREE_h() LINK_NAME("MARK_IO_MEMORY_AS_FREE#")
    TARN_ALIAS(MarkIOMemoryAsFree);

TARN_EXPORT void GET_IOBUFFER_ADDRESS_h(void** address, std::int32_t* size)
    LINK_NAME("GET_IOBUFFER_ADDRESS#");
void GET_IOBUFFER_ADDRESS_h(void** address, std::int32_t* size) {
    IO_initialise();
    *address = current().buffer_start;
    *size = static_cast<std::int32_t>(current().buffer_size);
}

TARN_EXPORT void GetCurrentFortranUnit(std::int16_t* unit) {
    *unit = static_cast<std::int16_t>(current_unit_number());
}
TARN_EXPORT void GET_CURRENT_FORTRAN_UNIT_h(std::int16_t* unit)
    LINK_NAME("GET_CURRENT_FORTRAN_UNIT#") TARN_ALIAS(GetCurrentFortranUnit);

TARN_EXPORT void GetCurrentFortranIO(std::int16_t* unit, std::int32_t* record, std::int32_t* recl,
                                     std::int16_t* flags, std::int32_t* position) {
    describe_current(unit, record, recl, flags, position);
}
TARN_EXPORT void GET_CURRENT_FORTRAN_IO_h(std::int16_t*, std::int32_t*, std::int32_t*,
                                          std::int16_t*, std::int32_t*)
    LINK_NAME("GET_CURRENT_FORTRAN_IO#") TARN_ALIAS(GetCurrentFortranIO);
TARN_EXPORT void CURRENT_FORTRAN_IO_LF_h(std::int16_t*, std::int32_t*, std::int32_t*, std::int16_t*,
                                         std::int32_t*) LINK_NAME("CURRENT_FORTRAN_IO_LF#")
    TARN_ALIAS(GetCurrentFortranIO);
TARN_EXPORT void GET_CURRENT_FORTRAN_IO_LF_h(std::int16_t*, std::int32_t*, std::int32_t*,
                                             std::int16_t*, std::int32_t*)
    LINK_NAME("GET_CURRENT_FORTRAN_IO_LF#") TARN_ALIAS(GetCurrentFortranIO);

// A window or an edit box comes as its handle.
TARN_EXPORT void OPEN_TO_WINDOW_h(const std::int32_t* unit, const std::int32_t* window)
    LINK_NAME("OPEN_TO_WINDOW#");
void OPEN_TO_WINDOW_h(const std::int32_t* unit, const std::int32_t* window) {
    open_to_window(*unit, reinterpret_cast<void*>(static_cast<std::intptr_t>(*window)), 0);
}

TARN_EXPORT void OPEN_TO_EDIT_BOX_h(const std::int32_t* unit, const std::int32_t* box)
    LINK_NAME("OPEN_TO_EDIT_BOX#");
void OPEN_TO_EDIT_BOX_h(const std::int32_t* unit, const std::int32_t* box) {
    open_to_window(*unit, reinterpret_cast<void*>(static_cast<std::intptr_t>(*box)), 1);
}

TARN_EXPORT void OPEN_TO_PRINTER_h(const std::int32_t* unit) LINK_NAME("OPEN_TO_PRINTER#");
void OPEN_TO_PRINTER_h(const std::int32_t* unit) {
    open_to_driver(unit, printer_driver, hooks().print_string != nullptr);
}

TARN_EXPORT void OPEN_TO_HTML_PRINTER_h(const std::int32_t* unit)
    LINK_NAME("OPEN_TO_HTML_PRINTER#");
void OPEN_TO_HTML_PRINTER_h(const std::int32_t* unit) {
    open_to_driver(unit, html_printer_driver, hooks().print_html_string != nullptr);
}

TARN_EXPORT void READ_TABS_h(const std::int32_t* unit) LINK_NAME("READ_TABS#");
void READ_TABS_h(const std::int32_t* unit) {
    IO_initialise();
    if (tarn::fio::Unit* const found = tarn::fio::UnitList_getUnit(*unit))
        found->file.keep_tabs = true;
}

TARN_EXPORT void CLOSE_ALL_FORTRAN_UNITS_h() LINK_NAME("CLOSE_ALL_FORTRAN_UNITS#");
void CLOSE_ALL_FORTRAN_UNITS_h() {
    CloseAllFortranUnits();
}

TARN_EXPORT std::int32_t GetLastIOError() {
    return state().last_io_error;
}
TARN_EXPORT std::int32_t GET_LAST_IO_ERROR_h() LINK_NAME("GET_LAST_IO_ERROR#")
    TARN_ALIAS(GetLastIOError);

TARN_EXPORT void __inhibit_iostat(std::int32_t message) {
    inhibit_message(message);
}

TARN_EXPORT void __fsu() {
    state().full_sequential = true;
}

// The debugger's services. Their text goes to the debugger that is attached, and to the caller.
TARN_EXPORT const char* W32STREAM_INQUIRE_NAME_h(const std::int16_t* unit)
    LINK_NAME("W32STREAM_INQUIRE_NAME#");
const char* W32STREAM_INQUIRE_NAME_h(const std::int16_t* unit) {
    return hand_to_debugger(unit_file_name(*unit));
}

TARN_EXPORT const char* W32STREAM_INFO_h(const std::int16_t* unit) LINK_NAME("W32STREAM_INFO#");
const char* W32STREAM_INFO_h(const std::int16_t* unit) {
    return hand_to_debugger(unit_information(*unit));
}

TARN_EXPORT const std::uint32_t* W32STREAM_STATUS_h(const std::int16_t* unit)
    LINK_NAME("W32STREAM_STATUS#");
const std::uint32_t* W32STREAM_STATUS_h(const std::int16_t* unit) {
    static std::uint32_t words[4];
    std::memset(words, 0, sizeof words);
    if (const tarn::fio::Unit* const found = tarn::fio::UnitList_getUnit(*unit)) {
        words[0] = Unit_iostatus(*found);
        words[1] = Unit_iostatus1(*found);
        words[2] = static_cast<std::uint32_t>(found->recl);
        words[3] = static_cast<std::uint32_t>(found->current_record);
    }
    if (hooks().debugger_status != nullptr) hooks().debugger_status(words);
    return words;
}

TARN_EXPORT void __show_unit_list() {
    tarn::fio::sys_consoleWrite(unit_list_text());
}

TARN_EXPORT void __show_io_buffer_contents() {
    tarn::fio::sys_consoleWrite(io_buffer_text());
}

}  // extern "C"
