! The specific names of the intrinsic functions handed on as arguments, with the conventions and the
! default kinds that options choose.
! build: n=0; for o in "" "-fdefault-real-8 -fdefault-double-8" "-fdefault-real-10 -fdefault-double-8" -ff2c "-O2 -fdefault-integer-8"; do $FC $FLAGS $o $SRC/specific_names.f90 $LINK -o $PROGRAM$n || exit 1; n=$((n+1)); done
! run: ${PROGRAM}0
! run: ${PROGRAM}1
! run: ${PROGRAM}2
! run: ${PROGRAM}3
! run: ${PROGRAM}4
! entries: specific__\w+
! entries: f2c_specific__\w+
module applied
  implicit none
contains
  subroutine real_one(name, f, x)
    character(*) :: name
    real, external :: f
    real :: x
    print *, name, f(x)
  end subroutine
  subroutine real_two(name, f, x, y)
    character(*) :: name
    real, external :: f
    real :: x, y
    print *, name, f(x, y)
  end subroutine
  subroutine double_one(name, f, x)
    character(*) :: name
    double precision, external :: f
    double precision :: x
    print *, name, f(x)
  end subroutine
  subroutine double_two(name, f, x, y)
    character(*) :: name
    double precision, external :: f
    double precision :: x, y
    print *, name, f(x, y)
  end subroutine
  subroutine complex_one(name, f, x)
    character(*) :: name
    complex, external :: f
    complex :: x
    print *, name, f(x)
  end subroutine
  subroutine double_complex_one(name, f, x)
    character(*) :: name
    double complex, external :: f
    double complex :: x
    print *, name, f(x)
  end subroutine
  subroutine real_of_complex(name, f, x)
    character(*) :: name
    real, external :: f
    complex :: x
    print *, name, f(x)
  end subroutine
  subroutine double_of_complex(name, f, x)
    character(*) :: name
    double precision, external :: f
    double complex :: x
    print *, name, f(x)
  end subroutine
  subroutine integer_two(name, f, x, y)
    character(*) :: name
    integer, external :: f
    integer :: x, y
    print *, name, f(x, y)
  end subroutine
  subroutine integer_one(name, f, x)
    character(*) :: name
    integer, external :: f
    integer :: x
    print *, name, f(x)
  end subroutine
  subroutine nearest_real(name, f, x)
    character(*) :: name
    integer, external :: f
    real :: x
    print *, name, f(x)
  end subroutine
  subroutine nearest_double(name, f, x)
    character(*) :: name
    integer, external :: f
    double precision :: x
    print *, name, f(x)
  end subroutine
  subroutine product_of(name, f, x, y)
    character(*) :: name
    double precision, external :: f
    real :: x, y
    print *, name, f(x, y)
  end subroutine
  subroutine length(name, f, text)
    character(*) :: name, text
    integer, external :: f
    print *, name, f(text)
  end subroutine
  subroutine place(name, f, text, part)
    character(*) :: name, text, part
    integer, external :: f
    print *, name, f(text, part)
  end subroutine
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
  real :: x(9) = [0.0, -0.0, 0.5, -0.75, 1.0, 1.5, -2.5, 1e20, 3.25]
  double precision :: d(9)
  complex :: c
  double complex :: z
  integer :: n(6) = [0, 1, -7, 12, huge(1), -huge(1)]
  integer :: i, j
  d = x
  d(3) = 0.1d0
  do i = 1, size(x)
    call real_one('abs', abs, x(i))
    call real_one('acos', acos, min(max(x(i), -1.0), 1.0))
    call real_one('acosh', acosh, 1 + abs(x(i)))
    call real_one('aint', aint, x(i))
    call real_one('anint', anint, x(i))
    call real_one('asin', asin, min(max(x(i), -1.0), 1.0))
    call real_one('asinh', asinh, x(i))
    call real_one('atan', atan, x(i))
    call real_one('atanh', atanh, min(max(x(i), -1.0), 1.0) / 2)
    call real_one('cos', cos, x(i))
    call real_one('cosh', cosh, x(i) / 3)
    call real_one('exp', exp, x(i))
    call real_one('alog', alog, abs(x(i)))
    call real_one('alog10', alog10, abs(x(i)))
    call real_one('sin', sin, x(i))
    call real_one('sinh', sinh, x(i) / 3)
    call real_one('sqrt', sqrt, abs(x(i)))
    call real_one('tan', tan, x(i))
    call real_one('tanh', tanh, x(i))
    call double_one('dabs', dabs, d(i))
    call double_one('dacos', dacos, min(max(d(i), -1d0), 1d0))
    call double_one('dacosh', dacosh, 1 + abs(d(i)))
    call double_one('dint', dint, d(i))
    call double_one('dnint', dnint, d(i))
    call double_one('dasin', dasin, min(max(d(i), -1d0), 1d0))
    call double_one('dasinh', dasinh, d(i))
    call double_one('datan', datan, d(i))
    call double_one('datanh', datanh, min(max(d(i), -1d0), 1d0) / 2)
    call double_one('dcos', dcos, d(i))
    call double_one('dcosh', dcosh, d(i) / 3)
    call double_one('dexp', dexp, d(i))
    call double_one('dlog', dlog, abs(d(i)))
    call double_one('dlog10', dlog10, abs(d(i)))
    call double_one('dsin', dsin, d(i))
    call double_one('dsinh', dsinh, d(i) / 3)
    call double_one('dsqrt', dsqrt, abs(d(i)))
    call double_one('dtan', dtan, d(i))
    call double_one('dtanh', dtanh, d(i))
    do j = 1, size(x)
      call real_two('atan2', atan2, x(i), x(j))
      call real_two('dim', dim, x(i), x(j))
      call real_two('sign', sign, x(i), x(j))
      if (x(j) /= 0) call real_two('amod', amod, x(i), x(j))
      call double_two('datan2', datan2, d(i), d(j))
      call double_two('ddim', ddim, d(i), d(j))
      call double_two('dsign', dsign, d(i), d(j))
      if (d(j) /= 0) call double_two('dmod', dmod, d(i), d(j))
      call product_of('dprod', dprod, x(i), x(j))
      c = cmplx(min(x(i), 9.0), min(x(j), 9.0))
      z = cmplx(min(d(i), 9d0), min(d(j), 9d0), kind(z))
      call real_of_complex('cabs', cabs, c)
      call real_of_complex('aimag', aimag, c)
      call complex_one('conjg', conjg, c)
      call complex_one('ccos', ccos, c)
      call complex_one('cexp', cexp, c)
      call complex_one('clog', clog, c)
      call complex_one('csin', csin, c)
      call complex_one('csqrt', csqrt, c)
      call double_of_complex('cdabs', cdabs, z)
      call double_of_complex('dimag', dimag, z)
      call double_complex_one('dconjg', dconjg, z)
      call double_complex_one('cdcos', cdcos, z)
      call double_complex_one('cdexp', cdexp, z)
      call double_complex_one('cdlog', cdlog, z)
      call double_complex_one('cdsin', cdsin, z)
      call double_complex_one('cdsqrt', cdsqrt, z)
    end do
    if (abs(x(i)) > 1e9) cycle
    call nearest_real('nint', nint, x(i))
    call nearest_double('idnint', idnint, d(i))
  end do
  do i = 1, size(n)
    call integer_one('iabs', iabs, n(i))
    do j = 1, size(n)
      if (abs(real(n(i)) - n(j)) < 2e9) call integer_two('idim', idim, n(i), n(j))
      if (n(j) /= 0) call integer_two('mod', mod, n(i), n(j))
      call integer_two('isign', isign, n(i), n(j))
    end do
  end do
  call length('len', len, 'twelve words')
  call place('index', index, 'banana', 'an')
  call place('index', index, 'banana', 'x')
end program
