! The specific names of the intrinsic functions handed on as arguments, with the conventions and the
! default kinds that options choose.
! build: n=0; for o in "" "-fdefault-real-8 -fdefault-double-8" "-fdefault-real-10 -fdefault-double-8" -ff2c "-O2 -fdefault-integer-8"; do $FC $FLAGS -cpp -ffree-line-length-none $o $SRC/specific_names.f90 $LINK -o $PROGRAM$n || exit 1; n=$((n+1)); done
! run: ${PROGRAM}0
! run: ${PROGRAM}1
! run: ${PROGRAM}2
! run: ${PROGRAM}3
! run: ${PROGRAM}4
! entries: specific__\w+
! entries: f2c_specific__\w+

! A routine that calls what it is given, of one argument or of two, and shows the result.
#define OF_ONE(routine, result, type) \
  subroutine routine(name, f, x); character(*) :: name; result, external :: f; type :: x; print *, name, f(x); end subroutine
#define OF_TWO(routine, result, type) \
  subroutine routine(name, f, x, y); character(*) :: name; result, external :: f; type :: x, y; print *, name, f(x, y); end subroutine
! The preprocessor replaces f within the text, too.
#define R(f) call real_one("f", f, x(i))
#define C(f) call complex_one("f", f, c)
#define D(f) call double_one("f", f, d(i))
#define Z(f) call double_complex_one("f", f, z)
#define R2(f) call real_two("f", f, x(i), x(j))
#define D2(f) call double_two("f", f, d(i), d(j))
#define I2(f) call integer_two("f", f, n(i), n(j))
module applied
  implicit none
contains
  OF_ONE(real_one, real, real)
  OF_ONE(double_one, double precision, double precision)
  OF_ONE(complex_one, complex, complex)
  OF_ONE(double_complex_one, double complex, double complex)
  OF_ONE(real_of_complex, real, complex)
  OF_ONE(double_of_complex, double precision, double complex)
  OF_ONE(integer_one, integer, integer)
  OF_ONE(nearest_real, integer, real)
  OF_ONE(nearest_double, integer, double precision)
  OF_ONE(length, integer, character(*))
  OF_TWO(real_two, real, real)
  OF_TWO(double_two, double precision, double precision)
  OF_TWO(product_of, double precision, real)
  OF_TWO(integer_two, integer, integer)
  OF_TWO(place, integer, character(*))
end module

program specific_names
  use applied
  implicit none
  intrinsic :: abs, acos, acosh, aint, anint, asin, asinh, atan, atanh, cos, cosh, exp, alog, alog10, &
    sin, sinh, sqrt, tan, tanh, atan2, dim, amod, sign
  intrinsic :: dabs, dacos, dacosh, dint, dnint, dasin, dasinh, datan, datanh, dcos, dcosh, dexp, dlog, &
    dlog10, dsin, dsinh, dsqrt, dtan, dtanh, datan2, ddim, dmod, dsign, dprod
  intrinsic :: cabs, aimag, conjg, ccos, cexp, clog, csin, csqrt, cdabs, dimag, dconjg, cdcos, cdexp, &
    cdlog, cdsin, cdsqrt, iabs, idim, mod, isign, nint, idnint, len, index
  real :: x(10) = [0.0, -0.0, 0.5, -0.75, 1.0, 1.5, -2.5, 1e20, 3.25, 2.0]
  double precision :: d(10)
  complex :: c
  double complex :: z
  integer :: n(7) = [0, 1, -7, 12, huge(1), -huge(1), -huge(1)]
  integer :: i, j
  x(10) = x(10) * huge(x)
  n(7) = n(7) - 1
  d = x
  d(3) = 0.1d0
  do i = 1, size(x)
    R(abs); R(aint); R(anint); R(asinh); R(atan); R(cos); R(exp); R(sin); R(tan); R(tanh)
    D(dabs); D(dint); D(dnint); D(dasinh); D(datan); D(dcos); D(dexp); D(dsin); D(dtan); D(dtanh)
    do j = 1, size(x)
      R2(atan2); R2(dim); R2(sign); D2(datan2); D2(ddim); D2(dsign)
      if (x(j) /= 0) then
        R2(amod); D2(dmod)
      end if
      call product_of('dprod', dprod, x(i), x(j))
      c = cmplx(min(x(i), 9.0), min(x(j), 9.0))
      z = cmplx(min(d(i), 9d0), min(d(j), 9d0), kind(z))
      call real_of_complex('cabs', cabs, c)
      call real_of_complex('aimag', aimag, c)
      call double_of_complex('cdabs', cdabs, z)
      call double_of_complex('dimag', dimag, z)
      C(conjg); C(ccos); C(cexp); C(clog); C(csin); C(csqrt)
      Z(dconjg); Z(cdcos); Z(cdexp); Z(cdlog); Z(cdsin); Z(cdsqrt)
    end do
    ! (The peer's 8-byte NINT has 32 bits.)
    if (abs(x(i)) > 1e9 .and. kind(i) == 8) cycle
    call nearest_real('nint', nint, x(i))
    call nearest_double('idnint', idnint, d(i))
  end do
  ! What isn't defined everywhere.
  x = abs(x) / 10
  d = abs(d) / 10
  do i = 1, size(x)
    R(alog); R(alog10); R(sqrt); D(dlog); D(dlog10); D(dsqrt)
    if (x(i) > 1) cycle
    R(acos); R(asin); R(atanh); R(cosh); R(sinh); D(dacos); D(dasin); D(datanh); D(dcosh); D(dsinh)
    x(i) = 1 + x(i)
    d(i) = 1 + d(i)
    R(acosh); D(dacosh)
  end do
  do i = 1, size(n)
    call integer_one('iabs', iabs, n(i))
    do j = 1, size(n)
      I2(idim)
      if (n(j) /= 0) I2(mod)
      I2(isign)
    end do
  end do
  call length('len', len, 'twelve words')
  call place('index', index, 'banana', 'an')
  call place('index', index, 'banana', 'x')
end program
