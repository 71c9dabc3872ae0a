// Traps and floating-point masks as gfortran calls them: `name@` arrives as `name__`, a plain name
// as `name_`, every argument by reference and a procedure by its address.
#include <cstdint>

#include "frame/link_name.h"
#include "tarn/exceptions.h"
#include "tarn/float.h"

// Entries whose only users are Fortran programs.
extern "C" {
void PERMIT_UNDERFLOW_h(const std::int16_t* value) LINK_NAME("PERMIT_UNDERFLOW#");
std::int32_t UNDERFLOW_COUNT_h(std::int32_t* count) LINK_NAME("UNDERFLOW_COUNT#");
}

extern "C" {

// ---- Traps ----

TARN_EXPORT tarn_trap trap_exception__(const std::int32_t* exception_class, tarn_trap trap) {
    return TRAP_EXCEPTION_h(exception_class, trap);
}
TARN_EXPORT void restore_default_handler__(const std::int32_t* exception_class) {
    RESTORE_DEFAULT_HANDLER_h(exception_class);
}
TARN_EXPORT tarn_trap set_trap__(tarn_trap trap, const std::int32_t* index) {
    return SET_TRAP_h(trap, index);
}
TARN_EXPORT std::int32_t exception_trapped__() {
    return EXCEPTION_TRAPPED_h();
}
TARN_EXPORT void* exception_address__() {
    return EXCEPTION_ADDRESS_h();
}
TARN_EXPORT void* exception_information__() {
    return EXCEPTION_INFORMATION_h();
}
TARN_EXPORT void* machine_state__() {
    return MACHINE_STATE_h();
}
TARN_EXPORT void access_details__(std::uintptr_t* address, std::int32_t* is_write,
                                  std::int32_t* failed) {
    ACCESS_DETAILS_h(address, is_write, failed);
}
TARN_EXPORT std::int32_t clear_flt_underflow__() {
    return CLEAR_FLT_UNDERFLOW_h();
}
TARN_EXPORT void register_tarn_exception_handler_(void* block, const std::int32_t* words) {
    REGISTER_TARN_EXCEPTION_HANDLER(block, words);
}
TARN_EXPORT void register_tarn_virtual_handler_(void* block, const std::int32_t* words) {
    REGISTER_TARN_VIRTUAL_HANDLER(block, words);
}
TARN_EXPORT void* install_tarn_exception_handler_() {
    return INSTALL_TARN_EXCEPTION_HANDLER();
}
TARN_EXPORT void* install_tarn_virtual_handler_() {
    return INSTALL_TARN_VIRTUAL_HANDLER();
}
TARN_EXPORT void remove_tarn_handler_() {
    REMOVE_TARN_HANDLER();
}

// ---- Masks ----

TARN_EXPORT void mask_underflow__() {
    __mask_underflow();
}
TARN_EXPORT void mask_underflows__() TARN_ALIAS(mask_underflow__);
TARN_EXPORT void unmask_underflow__() {
    __unmask_underflow();
}
TARN_EXPORT void unmask_underflows__() TARN_ALIAS(unmask_underflow__);
TARN_EXPORT void permit_underflow__(const std::int16_t* permitted) {
    PERMIT_UNDERFLOW_h(permitted);
}
TARN_EXPORT std::int32_t underflow_count__(std::int32_t* count) {
    return UNDERFLOW_COUNT_h(count);
}
TARN_EXPORT void trap_fp_exceptions__(const std::int32_t* trap) {
    TRAP_FP_EXCEPTIONS_h(trap);
}
TARN_EXPORT void no_extended_precsion__() {
    __no_extended_precision();
}
TARN_EXPORT float ftz__(const float* value) {
    return FTZ_h(value);
}
TARN_EXPORT double dftz__(const double* value) {
    return DFTZ_h(value);
}
TARN_EXPORT void mask_overflow_() {
    __mask_overflow();
}
TARN_EXPORT void unmask_overflow_() {
    __unmask_overflow();
}
TARN_EXPORT void mask_zero_divide_() {
    __mask_zero_divide();
}
TARN_EXPORT void unmask_zero_divide_() {
    __unmask_zero_divide();
}
TARN_EXPORT void mask_invalid_op_() {
    __mask_invalid_op();
}
TARN_EXPORT void unmask_invalid_op_() {
    __unmask_invalid_op();
}
TARN_EXPORT void mask_all_fp_ex_() {
    __mask_all_fp_ex();
}
TARN_EXPORT void unmask_all_fp_ex_() {
    __unmask_all_fp_ex();
}
}
