// A complex number as two parts, with the plain formulas of native programs: nothing is scaled, and
// a zero divisor does what the floating-point mode says.
#pragma once

namespace tarn::intrinsics::numbers {

template <class Real>
struct Pair {
    Real re;
    Real im;
};

template <class Real>
Pair<Real> operator*(const Pair<Real>& a, const Pair<Real>& b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

template <class Real>
Pair<Real> operator/(const Pair<Real>& a, const Pair<Real>& b) {
    const Real divisor = b.re * b.re + b.im * b.im;
    return {(a.re * b.re + a.im * b.im) / divisor, (a.im * b.re - a.re * b.im) / divisor};
}

// The compiler's own complex types are what entries return, in the registers compiled code expects.
template <class Complex>
auto pair_of(Complex value) {
    return Pair<decltype(+__real__ value)>{__real__ value, __imag__ value};
}
template <class Complex, class Real>
Complex complex_of(const Pair<Real>& pair) {
    Complex value;
    __real__ value = static_cast<decltype(+__real__ value)>(pair.re);
    __imag__ value = static_cast<decltype(+__real__ value)>(pair.im);
    return value;
}

// An operand of a mixed expression, real or complex, in 80 bits.
template <class Value>
Pair<long double> widened(Value value) {
    return {static_cast<long double>(__real__ value), static_cast<long double>(__imag__ value)};
}

}  // namespace tarn::intrinsics::numbers
