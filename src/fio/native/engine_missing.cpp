// Stands in for the formatted engine until it is merged.
#include "fio/native/io_type.h"
#define WEAK __attribute__((weak))
namespace tarn::fio::native {
WEAK bool RSF1__(const char*, bool, std::ptrdiff_t) {
    return IO_not_available("Formatted transfer is not available");
}
WEAK bool IO_process_format() {
    return true;
}
WEAK bool IO_process_format_reversion() {
    return true;
}
WEAK bool RSF3__() {
    return true;
}
WEAK bool WSF3__() {
    return true;
}
WEAK bool I_RSF_main(void*, std::int64_t) {
    return true;
}
WEAK bool I_WSF_main(const void*, std::int64_t) {
    return true;
}
WEAK bool L_RSF_main(void*, std::int64_t) {
    return true;
}
WEAK bool L_WSF_main(const void*, std::int64_t) {
    return true;
}
WEAK bool R_RSF_main(void*, std::int64_t) {
    return true;
}
WEAK bool R_WSF_main(const void*, std::int64_t) {
    return true;
}
WEAK bool C_RSF_main(void*, std::int64_t) {
    return true;
}
WEAK bool C_WSF_main(const void*, std::int64_t) {
    return true;
}
WEAK bool CH__RSF(char*, std::int64_t, std::ptrdiff_t) {
    return true;
}
WEAK bool CH__WSF(const char*, std::int64_t, std::ptrdiff_t) {
    return true;
}
WEAK bool BED__I(const std::int32_t*) {
    return true;
}
WEAK bool BED__DP(const double*) {
    return true;
}
WEAK bool BED__RX(const long double*) {
    return true;
}
WEAK bool IO_direct_access_position() {
    return true;
}
}  // namespace tarn::fio::native
