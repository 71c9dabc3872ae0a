// How far results are from the true values, in units of their last place, by a table made with
// arithmetic of 600 bits (make_references.cpp).
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <string>

#include "tarn/numbers.h"

extern "C" {
double _gfortran_sind_r8(double);
double _gfortran_cosd_r8(double);
double _gfortran_tand_r8(double);
double _gfortran_erfc_scaled_r8(double);
long double _gfortran_sind_r10(long double);
long double _gfortran_cosd_r10(long double);
long double _gfortran_tand_r10(long double);
long double _gfortran_erfc_scaled_r10(long double);
}

namespace {

struct Reference {
    const char* function;
    double x;
    double y;
    // The value is the sum.
    long double head;
    double tail;
};
constexpr Reference references[] = {
#ifdef TARN_REFERENCES
#include TARN_REFERENCES
#else
#include "references.inc"
#endif
};

// Of a Real result.
template <class Real>
double error_in_ulp(long double value, const Reference& reference) {
    const int digits = std::numeric_limits<Real>::digits;
    int exponent = 0;
    std::frexp(reference.head, &exponent);
    exponent = std::max(exponent, std::numeric_limits<Real>::min_exponent);
    const long double difference = value - reference.head - reference.tail;
    return static_cast<double>(std::ldexp(std::fabs(difference), digits - exponent));
}

using Function = std::function<long double(double, double)>;

template <class Real>
Function of_one(Real (*function)(const double*)) {
    return [=](double x, double) { return function(&x); };
}
template <class Complex>
Function real_part(Complex (*function)(const Complex*)) {
    return [=](double x, double y) {
        Complex z;
        __real__ z = x;
        __imag__ z = y;
        return __real__ function(&z);
    };
}
template <class Complex>
Function imaginary_part(Complex (*function)(const Complex*)) {
    return [=](double x, double y) {
        Complex z;
        __real__ z = x;
        __imag__ z = y;
        return __imag__ function(&z);
    };
}
Function of_order(long double (*function)(const std::int32_t*, const double*)) {
    return [=](double order, double x) {
        const auto n = static_cast<std::int32_t>(order);
        return function(&n, &x);
    };
}

struct Row {
    Function function;
    double bound;
};

std::map<std::string, Row> real8_functions() {
    std::map<std::string, Row> rows;
    const auto elementary = [&](const char* name, double (*function)(const double*)) {
        rows[name] = {of_one(function), 0.51};
    };
    elementary("log", DLOG_h);
    elementary("log10", DLOG1_h);
    elementary("log2", DLOG2_h);
    elementary("exp", DEXP_h);
    elementary("sin", DSIN_h);
    elementary("cos", DCOS_h);
    elementary("tan", DTAN_h);
    elementary("asin", DASIN_h);
    elementary("acos", DACOS_h);
    elementary("atan", DATAN_h);
    elementary("sinh", DSINH_h);
    elementary("cosh", DCOSH_h);
    elementary("tanh", DTANH_h);
    elementary("sind", DSIND_d);
    elementary("cosd", DCOSD_d);
    elementary("tand", DTAND_d);
    elementary("sinpi", DSINPI_d);
    elementary("cospi", DCOSPI_d);
    elementary("tanpi", DTANPI_d);
    elementary("asind", DASIND_d);
    elementary("acosd", DACOSD_d);
    elementary("atand", DATAND_d);
    rows["atan2"] = {[](double y, double x) { return DATN2_h(&y, &x); }, 0.51};
    rows["pow"] = {[](double x, double y) { return XXDD_hh(x, y); }, 0.51};
    // By multiplications, of which each may lose half a unit of 80 bits.
    rows["pow_integer"] = {
        [](double x, double y) { return XXDJ_hh(x, static_cast<std::int32_t>(y)); }, 0.9};

    const auto of_complex = [&](const std::string& name,
                                tarn_complex16 (*function)(const tarn_complex16*), double bound) {
        rows[name + ".re"] = {real_part(function), bound};
        rows[name + ".im"] = {imaginary_part(function), bound};
    };
    of_complex("csin", CDSIN_h, 0.51);
    of_complex("ccos", CDCOS_h, 0.51);
    of_complex("ctan", CDTAN_h, 0.51);
    of_complex("csinh", CDSINH_h, 0.51);
    of_complex("ccosh", CDCOSH_h, 0.51);
    of_complex("ctanh", CDTANH_h, 0.51);
    of_complex("cexp", CDEXP_h, 0.51);
    of_complex("clog", CDLOG_h, 0.51);
    of_complex("csqrt", CDSQR_h, 0.51);
    of_complex("casin", CDASIN_h, 0.51);
    of_complex("cacos", CDACOS_h, 0.51);
    of_complex("catan", CDATAN_h, 0.51);
    of_complex("casinh", CDASINH_h, 0.51);
    of_complex("cacosh", CDACOSH_h, 0.51);
    of_complex("catanh", CDATANH_h, 0.51);

    const auto special = [&](const char* name, long double (*function)(const double*)) {
        rows[name] = {of_one(function), 0.6};
    };
    special("asinh", DASINH_d);
    special("acosh", DACOSH_d);
    special("atanh", DATANH_d);
    special("erf", DERF_d);
    special("erfc", DERFC_d);
    special("erfc_scaled", DERFC_SCALED_d);
    special("gamma", DGAMMA_d);
    special("log_gamma", DLOG_GAMMA_d);
    special("log_gamma_magnitude", DLOG_GAMMA_h);
    special("j0", DBESSEL_J0_d);
    special("j1", DBESSEL_J1_d);
    special("y0", DBESSEL_Y0_d);
    special("y1", DBESSEL_Y1_d);
    rows["jn"] = {of_order(DBESSEL_JN_d), 0.6};
    rows["yn"] = {of_order(DBESSEL_YN_d), 0.6};
    rows["j7"] = {[](double x, double) { return of_order(DBESSEL_JN_d)(7, x); }, 0.6};
    rows["y7"] = {[](double x, double) { return of_order(DBESSEL_YN_d)(7, x); }, 0.6};
    return rows;
}

// REAL*10, where the working type is wider still.
std::map<std::string, Row> real10_functions() {
    std::map<std::string, Row> rows;
    const auto special = [&](const char* name, long double (*function)(const long double*)) {
        rows[name] = {[=](long double x, double) { return function(&x); }, 0.51};
    };
    special("asinh", XASINH_d);
    special("acosh", XACOSH_d);
    special("atanh", XATANH_d);
    special("erf", XERF_d);
    special("erfc", XERFC_d);
    special("erfc_scaled", XERFC_SCALED_d);
    special("gamma", XGAMMA_d);
    special("log_gamma", XLOG_GAMMA_d);
    // Beside a zero 128 bits begin to be few.
    const auto bessel = [&](const char* name, long double (*function)(const long double*)) {
        special(name, function);
        rows[name].bound = 8;
    };
    bessel("j0", XBESSEL_J0_d);
    bessel("j1", XBESSEL_J1_d);
    bessel("y0", XBESSEL_Y0_d);
    bessel("y1", XBESSEL_Y1_d);
    return rows;
}

// Within 5E-16 of 0 and 1 the angles' results are those instead.
bool cleaned(const Reference& reference) {
    const std::string name = reference.function;
    if (!name.ends_with("d") && !name.ends_with("pi")) return false;
    const long double size = std::fabs(reference.head);
    return size < 6e-16L || std::fabs(1 - size) < 6e-16L;
}

template <class Real>
void expect_bounds(const std::map<std::string, Row>& rows) {
    std::map<std::string, double> worst;
    for (const Reference& reference : references) {
        const auto row = rows.find(reference.function);
        if (row == rows.end() || cleaned(reference)) continue;
        const auto value = static_cast<Real>(row->second.function(reference.x, reference.y));
        const double error = error_in_ulp<Real>(value, reference);
        double& most = worst[reference.function];
        if (!(error <= most)) most = error;
        EXPECT_LE(error, row->second.bound)
            << reference.function << " of " << reference.x << ", " << reference.y;
    }
    EXPECT_EQ(worst.size(), rows.size()) << "a function has no references";
    // For those who measure: --gtest_output=xml shows it.
    for (const auto& [name, error] : worst)
        testing::Test::RecordProperty(name, std::to_string(error));
}

// gfortran's functions, called by value.
template <class Real>
std::map<std::string, Row> gnu_functions(Real (*sine)(Real), Real (*cosine)(Real),
                                         Real (*tangent)(Real), Real (*scaled_erfc)(Real)) {
    const auto by_value = [](Real (*function)(Real)) {
        return Row{[=](double x, double) { return function(x); }, 0.51};
    };
    return {{"sind", by_value(sine)},
            {"cosd", by_value(cosine)},
            {"tand", by_value(tangent)},
            {"erfc_scaled", by_value(scaled_erfc)}};
}

TEST(NumberAccuracy, OfReal8) {
    expect_bounds<double>(real8_functions());
}

TEST(NumberAccuracy, OfReal10) {
    expect_bounds<long double>(real10_functions());
}

TEST(NumberAccuracy, OfGfortransFunctions) {
    expect_bounds<double>(gnu_functions(_gfortran_sind_r8, _gfortran_cosd_r8, _gfortran_tand_r8,
                                        _gfortran_erfc_scaled_r8));
    expect_bounds<long double>(gnu_functions(_gfortran_sind_r10, _gfortran_cosd_r10,
                                             _gfortran_tand_r10, _gfortran_erfc_scaled_r10));
}

}  // namespace
