! Functions that gfortran calls in its run-time: sequences of Bessel functions, the scaled error
! function, powers.
program special_functions
  implicit none
  integer :: n, first, last, i
  real(4) :: x4
  real(8) :: x8, whole(0:6), part(12)
  real(8), allocatable :: made(:)
  real(10) :: x10
  real(16) :: x16

  first = 0
  last = 6
  do i = 1, 8
    x8 = 0.7d0 * i
    x4 = real(x8, 4)
    x10 = x8
    x16 = x8
    print '(7es14.6)', bessel_jn(first, last, x8)
    print '(7es14.6)', bessel_yn(first, last, x8)
    print '(7es12.4)', bessel_jn(first, last, x4)
    print '(7es14.6)', bessel_yn(first, last, x10)
    print '(7es14.6)', bessel_jn(first, last, x16)
    print '(es12.4,4es14.6)', erfc_scaled(x4), erfc_scaled(x8), erfc_scaled(x10), erfc_scaled(x16), &
        erfc_scaled(-x8)
  end do

  ! Zero, a negative argument, results that are too small or too large, places with a stride.
  x8 = 0
  whole = bessel_jn(first, last, x8)
  print '(7f6.2)', whole
  whole = bessel_yn(first, last, x8)
  print '(7f12.2)', whole
  x8 = -2.5d0
  print '(7es14.6)', bessel_jn(first, last, x8)
  print '(7f8.2)', bessel_yn(first, last, x8)
  x8 = 1d-200
  print '(7es16.6e3)', bessel_yn(first, last, x8)
  part = 9
  x8 = 3
  part(1:12:2) = bessel_jn(2, 7, x8)
  print '(6es14.6)', part
  first = 195
  last = 204
  made = bessel_jn(first, last, x8)
  print *, size(made)
  first = 3
  last = 2
  made = bessel_jn(first, last, x8)
  print *, size(made)
  n = 70
  x8 = 1.01d0
  print '(es14.6)', x8**n, erfc_scaled(-30 * x8), erfc_scaled(1d5 * x8)
end program special_functions
