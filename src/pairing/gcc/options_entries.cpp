// What the main program of gfortran tells of its options before it starts.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "failure/report.h"
#include "fio/gnu/options.h"
#include "frame/debug_info.h"
#include "frame/float_control.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "platform/kernel/float_unit.h"

namespace fio = tarn::fio;
namespace platform = tarn::platform;

namespace {

// -fno-backtrace leaves the callers out of what is printed, never the cause. The user of the
// program has the last word, as on gfortran's own run-time.
bool backtrace_wanted(bool compiled) {
    const char* word = std::getenv("GFORTRAN_ERROR_BACKTRACE");
    if (word == nullptr || *word == 0) return compiled;
    return std::strchr("1tTyY", *word) != nullptr;
}

}  // namespace

extern "C" {

// Later compilers may pass more words, older ones fewer.
TARN_EXPORT void _gfortran_set_options(int count, const std::int32_t* words) {
    tarn::frame::ensure_up();
    fio::GnuOptions& options = fio::gnu_options();
    if (count > 0) options.warn_std = words[0];
    if (count > 1) options.allow_std = words[1];
    options.formats.legacy = count > 0 && options.warn_std == 0;
    if (count > 2) options.pedantic = words[2] != 0;
    options.formats.before_f2008 = options.pedantic && (options.allow_std & fio::std_f2008) == 0;
    options.formats.before_f2018 = options.pedantic && (options.allow_std & fio::std_f2018) == 0;
    if (count > 3) options.backtrace = words[3] != 0;
    tarn::failure::state().without_callers = !backtrace_wanted(options.backtrace);
    if (count > 4) options.sign_zero = words[4] != 0;
    if (count > 5) options.bounds_check = words[5] != 0;
    if (count > 6) options.fpe_summary = words[6];
}

TARN_EXPORT void _gfortran_set_convert(std::int32_t convert) {
    if (convert < 0 || convert > static_cast<std::int32_t>(fio::Convert::little_endian)) return;
    fio::gnu_options().convert = static_cast<fio::Convert>(convert);
}

TARN_EXPORT void _gfortran_set_record_marker(std::int32_t bytes) {
    if (bytes == 4 || bytes == 8) fio::gnu_options().record_marker = bytes;
}

TARN_EXPORT void _gfortran_set_max_subrecord_length(std::int32_t bytes) {
    if (bytes > 0) fio::gnu_options().max_subrecord_length = bytes;
}

// -ffpe-trap, in the processor's bits. Nothing else unmasks an exception behind the back of a
// gfortran program.
TARN_EXPORT void _gfortran_set_fpe(std::int32_t traps) {
    tarn::frame::ensure_up();
    std::uint16_t unmasked = traps & platform::fp_all;
    if (unmasked == 0) return;
    // Who asks the compiler for a trap on underflow wants to be told, not to have it repaired.
    if ((unmasked & (platform::fp_underflow | platform::fp_denormal)) != 0)
        tarn::frame::debug_info().permit_underflow = 0;
    tarn::frame::and_words(static_cast<std::uint16_t>(~unmasked));
}
}
