! Which floating-point exceptions array intrinsics raise: none for what a mask hides, nor for the
! parts of wide registers that no element fills. And special functions where they are infinite or 1.
! build: $FC $FLAGS -O0 -fno-frontend-optimize -finline-matmul-limit=0 -cpp -ffree-line-length-none $SRC/quiet_arrays.f90 $LINK -o $PROGRAM
! run: $PROGRAM
! run: env TARN_CPU=base $PROGRAM
#define OF_TYPE(name, k) \
  subroutine name(n); integer, intent(in) :: n; \
    real(k) :: x(n, n), y(n, n), v(n), inf, nan; complex(k) :: z(n, n), w(n, n); logical :: m(n, n); \
    integer :: i, p(n); \
    inf = ieee_value(inf, ieee_positive_inf); nan = ieee_value(nan, ieee_quiet_nan); \
    call ieee_set_flag(ieee_all, .false.); \
    m = .true.; x = 2; do i = 1, n; m(i, 1 + mod(i*7, n)) = .false.; x(i, 1 + mod(i*7, n)) = nan; end do; \
    v = maxval(x, dim=2, mask=m); call tell('maxval', n); \
    v = minval(transpose(x), dim=1, mask=transpose(m)); call tell('minval', n); \
    p = maxloc(x, dim=2, mask=m); call tell('maxloc', n); \
    p = minloc(x, dim=2, mask=m, back=.true.); call tell('minloc', n); \
    p = maxloc(transpose(x), dim=1, mask=transpose(m)); call tell('maxloc', n); \
    p(1:2) = maxloc(x, mask=m); call tell('maxloc', n); \
    v = sum(x, dim=2, mask=m); call tell('sum', n); \
    v = product(x, dim=1, mask=m); call tell('product', n); \
    x = 2; y = 3; do i = 1, n; x(i, 1 + mod(i*5, n)) = inf; y(1 + mod(i*3, n), i) = inf; end do; \
    x = matmul(x, y); call tell('matmul', n); \
    x = 2; y = matmul(transpose(x), y); call tell('matmul', n); \
    y = 3; y(2, :) = inf; x(2:, :) = matmul(x(2:, :), y); call tell('matmul', n); \
    x = 2; x(:, 2:) = matmul(x, y(:, 2:)); call tell('matmul', n); \
    x = 2; v = matmul(x, y(:, 1)); call tell('matmul', n); \
    v(1) = erfc_scaled(-15*y(1, 1)); call tell('erfc_scaled', n); \
    v(1) = erfc_scaled(tiny(inf)); call tell('erfc_scaled', n); \
    v(1:2) = bessel_yn(n, n + 1, 0*v(1)); call tell('bessel_yn', n); \
    x = huge(x)/2; y = 1; x = matmul(x, y); call tell('overflow', n); \
    z = (2, 1); w = (3, 1); z(:, 2) = cmplx(inf, 2, k); z = matmul(z, w); call tell('complex', n); \
    z = (2, 1); w(2, :) = cmplx(3, inf, k); z(2:, :) = matmul(z(2:, :), w); call tell('complex', n); \
  end subroutine
program quiet_arrays
  use, intrinsic :: ieee_arithmetic
  implicit none
  integer :: i, sizes(9) = [2, 3, 4, 5, 7, 11, 18, 33, 41]
  do i = 1, size(sizes)
    call of_real_4(sizes(i)); call of_real_8(sizes(i)); call of_real_10(sizes(i)); call of_real_16(sizes(i))
  end do
contains
  subroutine tell(what, n)
    character(*), intent(in) :: what
    integer, intent(in) :: n
    logical :: invalid, divided, overflow, underflow
    call ieee_get_flag(ieee_invalid, invalid)
    call ieee_get_flag(ieee_divide_by_zero, divided)
    call ieee_get_flag(ieee_overflow, overflow)
    call ieee_get_flag(ieee_underflow, underflow)
    print *, what, n, invalid, divided, overflow, underflow
    call ieee_set_flag(ieee_all, .false.)
  end subroutine
  OF_TYPE(of_real_4, 4)
  OF_TYPE(of_real_8, 8)
  OF_TYPE(of_real_10, 10)
  OF_TYPE(of_real_16, 16)
end program
