// Writes the table of reference values that accuracy_test.cpp includes. It isn't built with the
// library; by hand:
//
//     g++ -O2 -std=c++20 make_references.cpp -lmpfr -lgmp -o make_references
//     ./make_references 40 > references.inc
//
// The number is how many arguments each function gets. Accuracies are measured with thousands.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mpfr.h>
#include <random>
#include <string>
#include <utility>

namespace {

constexpr mpfr_prec_t precision = 600;

class Number {
  public:
    Number(double value = 0) {
        mpfr_init2(number, precision);
        mpfr_set_d(number, value, MPFR_RNDN);
    }
    Number(const Number& other) : Number() { mpfr_set(number, other.number, MPFR_RNDN); }
    Number& operator=(const Number& other) {
        mpfr_set(number, other.number, MPFR_RNDN);
        return *this;
    }
    ~Number() { mpfr_clear(number); }
    mpfr_t number;
};

using OneArgument = int (*)(mpfr_t, const mpfr_t, mpfr_rnd_t);
using TwoArguments = int (*)(mpfr_t, const mpfr_t, const mpfr_t, mpfr_rnd_t);

Number apply(OneArgument function, const Number& x) {
    Number result;
    function(result.number, x.number, MPFR_RNDN);
    return result;
}
Number apply(TwoArguments function, const Number& x, const Number& y) {
    Number result;
    function(result.number, x.number, y.number, MPFR_RNDN);
    return result;
}
Number operator+(const Number& x, const Number& y) {
    return apply(mpfr_add, x, y);
}
Number operator-(const Number& x, const Number& y) {
    return apply(mpfr_sub, x, y);
}
Number operator*(const Number& x, const Number& y) {
    return apply(mpfr_mul, x, y);
}
Number operator/(const Number& x, const Number& y) {
    return apply(mpfr_div, x, y);
}
Number pi() {
    Number result;
    mpfr_const_pi(result.number, MPFR_RNDN);
    return result;
}

struct Complex {
    Number re;
    Number im;
};
Complex operator+(const Complex& a, const Complex& b) {
    return {a.re + b.re, a.im + b.im};
}
Complex operator-(const Complex& a, const Complex& b) {
    return {a.re - b.re, a.im - b.im};
}
Complex operator*(const Complex& a, const Complex& b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
Complex operator/(const Complex& a, const Complex& b) {
    const Number size = b.re * b.re + b.im * b.im;
    return {(a.re * b.re + a.im * b.im) / size, (a.im * b.re - a.re * b.im) / size};
}
const Complex one{1, 0};
const Complex half{0.5, 0};
const Complex i{0, 1};
const Complex minus_i{0, -1};

Complex complex_exp(const Complex& z) {
    const Number size = apply(mpfr_exp, z.re);
    return {size * apply(mpfr_cos, z.im), size * apply(mpfr_sin, z.im)};
}
Complex complex_log(const Complex& z) {
    return {apply(mpfr_log, apply(mpfr_hypot, z.re, z.im)), apply(mpfr_atan2, z.im, z.re)};
}
Complex complex_sqrt(const Complex& z) {
    const Complex result = complex_exp(half * complex_log(z));
    return result;
}
Complex complex_sinh(const Complex& z) {
    return half * (complex_exp(z) - complex_exp({Number(0) - z.re, Number(0) - z.im}));
}
Complex complex_cosh(const Complex& z) {
    return half * (complex_exp(z) + complex_exp({Number(0) - z.re, Number(0) - z.im}));
}
Complex complex_tanh(const Complex& z) {
    return complex_sinh(z) / complex_cosh(z);
}
Complex complex_asin(const Complex& z) {
    return minus_i * complex_log(i * z + complex_sqrt(one - z * z));
}
Complex complex_acos(const Complex& z) {
    return Complex{pi() / 2, 0} - complex_asin(z);
}
Complex complex_atanh(const Complex& z) {
    return half * (complex_log(one + z) - complex_log(one - z));
}
Complex complex_atan(const Complex& z) {
    return minus_i * complex_atanh(i * z);
}
Complex complex_acosh(const Complex& z) {
    return complex_log(z + complex_sqrt(z + one) * complex_sqrt(z - one));
}

std::mt19937_64 engine(20);
double uniform(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine);
}
// Evenly spread over the exponents.
double spread(double low, double high) {
    return std::exp2(uniform(std::log2(low), std::log2(high)));
}
double either_sign(double x) {
    return (engine() & 1) != 0 ? x : -x;
}

int count = 0;

void row(const std::string& name, double x, double y, const Number& reference) {
    const long double head = mpfr_get_ld(reference.number, MPFR_RNDN);
    Number rest;
    mpfr_set_ld(rest.number, head, MPFR_RNDN);
    const double tail = mpfr_get_d((reference - rest).number, MPFR_RNDN);
    std::printf("{\"%s\", %a, %a, %LaL, %a},\n", name.c_str(), x, y, head, tail);
}

using Draw = std::function<double()>;
void one_argument(const char* name, const std::function<Number(const Number&)>& function,
                  const Draw& draw) {
    for (int k = 0; k < count; ++k) {
        const double x = draw();
        row(name, x, 0, function(x));
    }
}
void one_argument(const char* name, OneArgument function, const Draw& draw) {
    one_argument(
        name, [=](const Number& x) { return apply(function, x); }, draw);
}
void two_arguments(const char* name, TwoArguments function,
                   const std::function<std::pair<double, double>()>& draw) {
    for (int k = 0; k < count; ++k) {
        const auto [x, y] = draw();
        row(name, x, y, apply(function, x, y));
    }
}
void complex_function(const std::string& name, Complex (*function)(const Complex&),
                      double magnitude) {
    for (int k = 0; k < count; ++k) {
        const double x = either_sign(spread(1e-3, magnitude));
        const double y = either_sign(spread(1e-3, magnitude));
        const Complex value = function({x, y});
        row(name + ".re", x, y, value.re);
        row(name + ".im", x, y, value.im);
    }
}

// The doubles about a zero of a function, between two arguments of different sign.
void near_zeros(const char* name, const std::function<Number(const Number&)>& function, double low,
                double high) {
    for (double x = low; x < high; x += 0.5) {
        double a = x;
        double b = x + 0.5;
        const auto sign = [&](double at) { return mpfr_sgn(function(at).number); };
        const int sign_a = sign(a);
        if (sign_a == sign(b)) continue;
        while (std::nextafter(a, b) != b) {
            const double middle = a + (b - a) / 2;
            (sign(middle) == sign_a ? a : b) = middle;
        }
        for (const double at : {std::nextafter(a, low), a, b, a * (1 + 1e-9)})
            row(name, at, 0, function(at));
    }
}

Number integer_bessel(int (*function)(mpfr_t, long, const mpfr_t, mpfr_rnd_t), double order,
                      const Number& x) {
    Number result;
    function(result.number, static_cast<long>(order), x.number, MPFR_RNDN);
    return result;
}
void bessel_of_order(const char* name, int (*function)(mpfr_t, long, const mpfr_t, mpfr_rnd_t),
                     double low) {
    for (int k = 0; k < count; ++k) {
        const double order = std::floor(spread(2, 60));
        const double x = std::max(low, spread(0.2, 200));
        row(name, order, x, integer_bessel(function, order, x));
    }
}

std::function<Number(const Number&)> of_angle(OneArgument function, double half_turn) {
    return [=](const Number& x) { return apply(function, x * pi() / half_turn); };
}
std::function<Number(const Number&)> angle_of(OneArgument function, double half_turn) {
    return [=](const Number& x) { return apply(function, x) * half_turn / pi(); };
}

void elementary() {
    const Draw positive = [] { return spread(1e-300, 1e300); };
    const Draw about_one = [] { return uniform(0.5, 2); };
    const Draw angle = [] { return either_sign(spread(1e-8, 1e6)); };
    const Draw unit = [] { return either_sign(spread(1e-8, 1)); };
    const Draw size = [] { return either_sign(spread(1e-8, 700)); };
    for (const Draw& draw : {positive, about_one}) {
        one_argument("log", mpfr_log, draw);
        one_argument("log10", mpfr_log10, draw);
        one_argument("log2", mpfr_log2, draw);
    }
    one_argument("exp", mpfr_exp, size);
    one_argument("sin", mpfr_sin, angle);
    one_argument("cos", mpfr_cos, angle);
    one_argument("tan", mpfr_tan, angle);
    one_argument("asin", mpfr_asin, unit);
    one_argument("acos", mpfr_acos, unit);
    one_argument("atan", mpfr_atan, angle);
    one_argument("sinh", mpfr_sinh, size);
    one_argument("cosh", mpfr_cosh, size);
    one_argument("tanh", mpfr_tanh, [] { return either_sign(spread(1e-8, 30)); });
    one_argument("asinh", mpfr_asinh, size);
    one_argument("acosh", mpfr_acosh, [] { return 1 + spread(1e-12, 1e6); });
    one_argument("atanh", mpfr_atanh, unit);
    two_arguments("atan2", mpfr_atan2, [=] { return std::pair{angle(), angle()}; });
    two_arguments("pow", mpfr_pow, [] {
        const double base = spread(1e-100, 1e100);
        return std::pair{base, uniform(-700, 700) / std::log(base)};
    });
    two_arguments("pow_integer", mpfr_pow, [] {
        return std::pair{either_sign(spread(0.5, 2)), std::round(uniform(-500, 500))};
    });
    const Draw degrees = [] { return uniform(-720, 720); };
    one_argument("sind", of_angle(mpfr_sin, 180), degrees);
    one_argument("cosd", of_angle(mpfr_cos, 180), degrees);
    one_argument("tand", of_angle(mpfr_tan, 180), degrees);
    const Draw half_turns = [] { return uniform(-4, 4); };
    one_argument("sinpi", of_angle(mpfr_sin, 1), half_turns);
    one_argument("cospi", of_angle(mpfr_cos, 1), half_turns);
    one_argument("tanpi", of_angle(mpfr_tan, 1), half_turns);
    one_argument("asind", angle_of(mpfr_asin, 180), unit);
    one_argument("acosd", angle_of(mpfr_acos, 180), unit);
    one_argument("atand", angle_of(mpfr_atan, 180), angle);
}

void of_complex() {
    complex_function(
        "csin", [](const Complex& z) { return minus_i * complex_sinh(i * z); }, 50);
    complex_function(
        "ccos", [](const Complex& z) { return complex_cosh(i * z); }, 50);
    complex_function(
        "ctan", [](const Complex& z) { return minus_i * complex_tanh(i * z); }, 20);
    complex_function("csinh", complex_sinh, 50);
    complex_function("ccosh", complex_cosh, 50);
    complex_function("ctanh", complex_tanh, 20);
    complex_function("cexp", complex_exp, 500);
    complex_function("clog", complex_log, 1000);
    complex_function("csqrt", complex_sqrt, 1000);
    complex_function("casin", complex_asin, 1000);
    complex_function("cacos", complex_acos, 1000);
    complex_function("catan", complex_atan, 1000);
    complex_function(
        "casinh", [](const Complex& z) { return minus_i * complex_asin(i * z); }, 1000);
    complex_function("cacosh", complex_acosh, 1000);
    complex_function("catanh", complex_atanh, 1000);
}

void special() {
    one_argument("erf", mpfr_erf, [] { return either_sign(spread(1e-8, 6)); });
    one_argument("erfc", mpfr_erfc, [] { return uniform(-6, 26); });
    const auto scaled = [](const Number& x) {
        return apply(mpfr_exp, x * x) * apply(mpfr_erfc, x);
    };
    one_argument("erfc_scaled", scaled, [] { return uniform(-26, 40); });
    one_argument("erfc_scaled", scaled, [] { return spread(1, 1e4); });
    one_argument("gamma", mpfr_gamma, [] { return uniform(-100, 171); });
    const auto log_gamma = [](const Number& x) {
        Number result;
        int sign = 0;
        mpfr_lgamma(result.number, &sign, x.number, MPFR_RNDN);
        return result;
    };
    one_argument("log_gamma", log_gamma, [] { return spread(1e-10, 1e10); });
    one_argument("log_gamma", log_gamma, [] { return uniform(0.5, 3); });
    one_argument("log_gamma_magnitude", log_gamma, [] { return uniform(-30, 0); });
    near_zeros("log_gamma_magnitude", log_gamma, -9.9, -2);

    struct {
        const char* name;
        OneArgument function;
    } const bessels[] = {{"j0", mpfr_j0}, {"j1", mpfr_j1}, {"y0", mpfr_y0}, {"y1", mpfr_y1}};
    for (const auto& [name, function] : bessels) {
        one_argument(name, function, [] { return spread(1e-5, 1e4); });
        one_argument(name, function, [] { return uniform(0.01, 50); });
        near_zeros(
            name, [=](const Number& x) { return apply(function, x); }, 0.6, 30);
    }
    bessel_of_order("jn", mpfr_jn, 0);
    bessel_of_order("yn", mpfr_yn, 1);
    near_zeros(
        "j7", [](const Number& x) { return integer_bessel(mpfr_jn, 7, x); }, 8, 40);
    near_zeros(
        "y7", [](const Number& x) { return integer_bessel(mpfr_yn, 7, x); }, 6, 40);
}

}  // namespace

int main(int argc, char** argv) {
    count = argc > 1 ? std::atoi(argv[1]) : 40;
    elementary();
    of_complex();
    special();
}
