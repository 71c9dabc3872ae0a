! The modules ieee_arithmetic and ieee_exceptions: values and their classes, flags, modes, and what
! procedures that use them leave to their callers.
! entries: ieee_\w+
module values
  use, intrinsic :: ieee_arithmetic
  implicit none
  type(ieee_class_type), parameter :: classes(10) = [ieee_signaling_nan, ieee_quiet_nan, &
      ieee_negative_inf, ieee_negative_normal, ieee_negative_denormal, ieee_negative_zero, &
      ieee_positive_zero, ieee_positive_denormal, ieee_positive_normal, ieee_positive_inf]
  type(ieee_round_type), parameter :: roundings(4) = [ieee_nearest, ieee_to_zero, ieee_up, ieee_down]
contains
  integer function number(class)
    type(ieee_class_type), intent(in) :: class
    do number = 1, size(classes)
      if (class == classes(number)) return
    end do
    number = 0
  end function
  integer function rounding_number()
    type(ieee_round_type) :: now
    call ieee_get_rounding_mode(now)
    do rounding_number = 1, size(roundings)
      if (now == roundings(rounding_number)) return
    end do
    rounding_number = 0
  end function
  subroutine show_flags(when)
    character(*), intent(in) :: when
    logical :: raised(5), halting(5)
    call ieee_get_flag(ieee_all, raised)
    call ieee_get_halting_mode(ieee_all, halting)
    print '(a,t30,5l2,3x,5l2,i4)', when, raised, halting, rounding_number()
  end subroutine
end module

module shown_kinds
  use values
  implicit none
  interface show
    procedure :: show_4, show_8, show_10, show_16
  end interface
contains
  subroutine show_4(x)
    real(4), intent(in) :: x
    real(4) :: y
    integer :: i
    do i = 1, 10
      y = ieee_value(x, classes(i))
      print '(3i3,3l2)', 4, i, number(ieee_class(y)), ieee_is_nan(y), ieee_is_finite(y), ieee_is_normal(y)
      if (i > 2) print *, y, ieee_copy_sign(y, -1.0_4), ieee_is_negative(y)
    end do
    print *, ieee_support_datatype(x), ieee_support_denormal(x), ieee_support_divide(x), &
      ieee_support_inf(x), ieee_support_io(x), ieee_support_nan(x), ieee_support_sqrt(x), &
      ieee_support_standard(x), ieee_support_underflow_control(x), &
      ieee_support_rounding(ieee_up, x), ieee_support_flag(ieee_inexact, x)
  end subroutine
  subroutine show_8(x)
    real(8), intent(in) :: x
    real(8) :: y
    integer :: i
    do i = 1, 10
      y = ieee_value(x, classes(i))
      print '(3i3,3l2)', 8, i, number(ieee_class(y)), ieee_is_nan(y), ieee_is_finite(y), ieee_is_normal(y)
      if (i > 2) print *, y, ieee_copy_sign(y, -1.0_8), ieee_is_negative(y)
    end do
    print *, ieee_next_after(1d0, 2d0), ieee_scalb(3d0, 5), ieee_logb(1000d0), ieee_rint(2.5d0), &
      ieee_rem(7d0, 4d0), ieee_unordered(x, ieee_value(x, ieee_quiet_nan))
    print *, ieee_support_datatype(x), ieee_support_underflow_control(x), ieee_support_flag(ieee_overflow, x)
  end subroutine
  subroutine show_10(x)
    real(10), intent(in) :: x
    real(10) :: y
    integer :: i
    do i = 1, 10
      y = ieee_value(x, classes(i))
      print '(3i3,3l2)', 10, i, number(ieee_class(y)), ieee_is_nan(y), ieee_is_finite(y), ieee_is_normal(y)
      if (i > 2) print *, y
    end do
    print *, ieee_support_datatype(x), ieee_support_underflow_control(x), ieee_next_after(x, 9.0_10)
  end subroutine
  subroutine show_16(x)
    real(16), intent(in) :: x
    real(16) :: y
    integer :: i
    do i = 1, 10
      y = ieee_value(x, classes(i))
      print '(3i3)', 16, i, number(ieee_class(y))
      if (i > 2) print *, y
    end do
    print *, ieee_support_datatype(x), ieee_support_underflow_control(x), ieee_support_divide(x)
  end subroutine
end module

program ieee_modules
  use shown_kinds
  use, intrinsic :: ieee_features
  implicit none
  type(ieee_status_type) :: before
  real, volatile :: x, y, z
  real(8), volatile :: d
  real(10), volatile :: wide
  integer :: i, p, r
  logical :: gradual
  integer(1) :: bytes(16)

  call show(1.0_4)
  call show(1.0_8)
  call show(1.0_10)
  call show(1.0_16)
  print *, ieee_support_datatype(), ieee_support_denormal(), ieee_support_underflow_control(), &
    ieee_support_flag(ieee_invalid), ieee_support_halting(ieee_overflow), ieee_support_rounding(ieee_down)
  print *, ((ieee_selected_real_kind(p, r), p = 0, 36, 6), r = 0, 5000, 500)
  print *, ieee_selected_real_kind(radix=2), ieee_selected_real_kind(6, 30, 10), ieee_selected_real_kind(r=400)

  ! Flags of both units, raised by arithmetic and by hand.
  call show_flags('at first')
  x = 0
  y = 1 / x
  call show_flags('divided by zero')
  d = huge(d)
  d = d * 2
  wide = tiny(wide)
  wide = wide / 3
  call show_flags('overflow, x87 underflow')
  call ieee_set_flag(ieee_divide_by_zero, .false.)
  call ieee_set_flag([ieee_invalid, ieee_underflow], [.true., .false.])
  call show_flags('by hand')
  call ieee_get_status(before)
  call ieee_set_flag(ieee_all, .false.)
  call ieee_set_rounding_mode(ieee_up)
  call show_flags('quiet, upward')
  call caller()
  call show_flags('behind a procedure')
  call ieee_set_status(before)
  call show_flags('as before')

  ! Rounding of both units.
  x = 1
  y = 3
  wide = 1
  do i = 1, size(roundings)
    call ieee_set_rounding_mode(roundings(i))
    z = x / y
    d = -real(x, 8) / y
    wide = wide / 7
    bytes = transfer(wide, bytes)
    print '(z8.8,1x,z16.16,1x,10z3.2)', z, d, bytes(1:10)
  end do
  call ieee_set_rounding_mode(ieee_nearest)

  do i = 0, 1
    call ieee_set_underflow_mode(i == 1)
    call ieee_get_underflow_mode(gradual)
    x = tiny(x)
    x = x / 4
    print *, gradual, x
  end do

  ! Flags that stand don't trap when traps for them come.
  call ieee_set_flag(ieee_all, .true.)
  call ieee_set_halting_mode(ieee_usual, .true.)
  wide = 3
  wide = wide / 7
  x = 2.5
  x = sqrt(x)
  call ieee_set_halting_mode(ieee_usual, .false.)
  call ieee_get_halting_mode(ieee_invalid, gradual)
  print *, x, wide, gradual
  call ieee_set_flag(ieee_all, .false.)
  call show_flags('at last')

contains

  ! It starts with quiet flags; those that it raises are its caller's, its modes aren't.
  subroutine caller()
    real, volatile :: zero
    call show_flags('inside')
    call ieee_set_rounding_mode(ieee_down)
    call ieee_set_halting_mode(ieee_overflow, .true.)
    zero = 0
    zero = zero / zero
    call show_flags('changed inside')
  end subroutine
end program
