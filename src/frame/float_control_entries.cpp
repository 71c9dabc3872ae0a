#include <cstdint>
#include <cstring>

#include "frame/debug_info.h"
#include "frame/float_control.h"
#include "frame/hooks.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "platform/kernel/float_unit.h"
#include "tarn/exceptions.h"

using namespace tarn::frame;
namespace platform = tarn::platform;

namespace {

constexpr std::uint16_t underflow = platform::fp_underflow | platform::fp_denormal;

constexpr std::uint16_t cleared_status = 0x80FF;  // by fnclex

tarn_float_area* trapped_float() {
    return hooks().trapped_float ? hooks().trapped_float() : nullptr;
}

// Zero and denormals have an exponent field of 0; both become +0.
template <typename Real, typename Bits>
Real flush_to_zero(const Real* value, Bits exponent) {
    Bits bits;
    std::memcpy(&bits, value, sizeof bits);
    return (bits & exponent) == 0 ? Real{0} : *value;
}

}  // namespace

extern "C" {

TARN_EXPORT void ___mask_underflow() {
    copy_words(underflow_masked_words);
}
TARN_EXPORT void ___unmask_underflow() {
    unmask_all();
}
TARN_EXPORT void ___undo_mask_underflow() {
    undo_underflow_mask();
}
TARN_EXPORT void __set_default_control_word() {
    unmask_all();
}
TARN_EXPORT void __mask_control_word(std::int32_t mask) {
    or_words(static_cast<std::uint16_t>(mask));
}
TARN_EXPORT void __unmask_control_word(std::int32_t mask) {
    and_words(static_cast<std::uint16_t>(mask));
}

TARN_EXPORT void __mask_underflow() {
    or_words(underflow);
}
TARN_EXPORT void MASK_UNDERFLOW_h() LINK_NAME("MASK_UNDERFLOW#") TARN_ALIAS(__mask_underflow);
TARN_EXPORT void MASK_UNDERFLOWS_h() LINK_NAME("MASK_UNDERFLOWS#") TARN_ALIAS(__mask_underflow);
TARN_EXPORT void __unmask_underflow() {
    and_words(0xFFED);
}
TARN_EXPORT void UNMASK_UNDERFLOW_h() LINK_NAME("UNMASK_UNDERFLOW#") TARN_ALIAS(__unmask_underflow);
TARN_EXPORT void UNMASK_UNDERFLOWS_h() LINK_NAME("UNMASK_UNDERFLOWS#")
    TARN_ALIAS(__unmask_underflow);

TARN_EXPORT void __mask_overflow() {
    or_words(platform::fp_overflow);
}
TARN_EXPORT void MASK_OVERFLOW() TARN_ALIAS(__mask_overflow);
TARN_EXPORT void MASK_OVERFLOWS() TARN_ALIAS(__mask_overflow);
TARN_EXPORT void __unmask_overflow() {
    and_words(0xFFF7);
}
TARN_EXPORT void UNMASK_OVERFLOW() TARN_ALIAS(__unmask_overflow);
TARN_EXPORT void UNMASK_OVERFLOWS() TARN_ALIAS(__unmask_overflow);

TARN_EXPORT void __mask_zero_divide() {
    or_words(platform::fp_zero_divide);
}
TARN_EXPORT void MASK_ZERO_DIVIDE() TARN_ALIAS(__mask_zero_divide);
TARN_EXPORT void MASK_ZERO_DIVIDES() TARN_ALIAS(__mask_zero_divide);
TARN_EXPORT void __unmask_zero_divide() {
    and_words(0xFFFB);
}
TARN_EXPORT void UNMASK_ZERO_DIVIDE() TARN_ALIAS(__unmask_zero_divide);
TARN_EXPORT void UNMASK_ZERO_DIVIDES() TARN_ALIAS(__unmask_zero_divide);

TARN_EXPORT void __mask_invalid_op() {
    or_words(platform::fp_invalid);
}
TARN_EXPORT void MASK_INVALID_OP() TARN_ALIAS(__mask_invalid_op);
TARN_EXPORT void MASK_INVALID_OPS() TARN_ALIAS(__mask_invalid_op);
TARN_EXPORT void __unmask_invalid_op() {
    and_words(0xFFFE);
}
TARN_EXPORT void UNMASK_INVALID_OP() TARN_ALIAS(__unmask_invalid_op);
TARN_EXPORT void UNMASK_INVALID_OPS() TARN_ALIAS(__unmask_invalid_op);

TARN_EXPORT void __mask_all_fp_ex() {
    or_words(platform::fp_all);
}
TARN_EXPORT void MASK_ALL_FP_EX() TARN_ALIAS(__mask_all_fp_ex);
TARN_EXPORT void __unmask_all_fp_ex() {
    unmask_all();
}
TARN_EXPORT void UNMASK_ALL_FP_EX() TARN_ALIAS(__unmask_all_fp_ex);

TARN_EXPORT void __no_extended_precision() {
    and_words(0xFEFF);
}
TARN_EXPORT void NO_EXTENDED_PRECSION_h() LINK_NAME("NO_EXTENDED_PRECSION#")
    TARN_ALIAS(__no_extended_precision);

TARN_EXPORT void TRAP_FP_EXCEPTIONS_h(const std::int32_t* trap) LINK_NAME("TRAP_FP_EXCEPTIONS#");
void TRAP_FP_EXCEPTIONS_h(const std::int32_t* trap) {
    if (*trap != 0) {
        unmask_all();
    } else {
        or_words(platform::fp_all);
    }
    if (underflow_repair_missing()) or_words(underflow);
}

TARN_EXPORT void __set_underflow_flag(std::int32_t value) {
    set_permit_underflow(value);
}
TARN_EXPORT void PERMIT_UNDERFLOW_h(const std::int16_t* value) LINK_NAME("PERMIT_UNDERFLOW#");
void PERMIT_UNDERFLOW_h(const std::int16_t* value) {
    set_permit_underflow(*value);
}

TARN_EXPORT std::int32_t __get_underflow_count() {
    return state().underflow_count;
}
TARN_EXPORT std::int32_t UNDERFLOW_COUNT_h(std::int32_t* count) LINK_NAME("UNDERFLOW_COUNT#");
std::int32_t UNDERFLOW_COUNT_h(std::int32_t* count) {
    return *count = state().underflow_count;
}

// In a trap these look at the state that the program goes on with.
TARN_EXPORT std::uint32_t _clear87() {
    if (tarn_float_area* area = trapped_float()) {
        area->status &= static_cast<std::uint16_t>(~cleared_status);
        area->sse_control &= ~std::uint32_t{platform::fp_all};
    }
    std::uint32_t status = platform::status_word();
    platform::clear_exceptions();
    return status;
}
TARN_EXPORT std::uint32_t _status87() {
    const tarn_float_area* area = trapped_float();
    if (area == nullptr) return platform::status_word();
    return area->status | (area->sse_control & platform::fp_all);
}
TARN_EXPORT void _fpreset() {
    platform::reset_unit();
    platform::load_control_word(state().control_words[0]);
    if (tarn_float_area* area = trapped_float()) {
        area->status = platform::status_word();
        area->sse_control &= ~std::uint32_t{platform::fp_all};
        area->tags = 0;  // no register is in use
    }
}

TARN_EXPORT float FTZ_h(const float* value) LINK_NAME("FTZ#");
float FTZ_h(const float* value) {
    return flush_to_zero<float, std::uint32_t>(value, 0x7F800000);
}
TARN_EXPORT double DFTZ_h(const double* value) LINK_NAME("DFTZ#");
double DFTZ_h(const double* value) {
    return flush_to_zero<double, std::uint64_t>(value, 0x7FF0000000000000);
}
}
