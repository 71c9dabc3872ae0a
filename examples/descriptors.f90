! A table of the edit descriptors: what a format makes of a value.
program descriptors
  use, intrinsic :: iso_fortran_env, only: real64
  implicit none
  real(real64), parameter :: pi = 3.14159265358979324_real64
  character(40) :: text

  print '(a)', 'descriptor     value            gives', repeat('-', 58)

  print '(/a)', 'Integers'
  call integer_row('i6', 42)
  call integer_row('i6.4', 42)
  call integer_row('i0', -42)
  call integer_row('sp,i6', 42)
  call integer_row('i2', 1234)          ! too narrow: stars
  call integer_row('b12.8', 42)
  call integer_row('o8', 42)
  call integer_row('z8.8', 48879)

  print '(/a)', 'Reals'
  call real_row('f8.3', pi)
  call real_row('f0.2', -0.5_real64)
  call real_row('e12.4', 6.02214076e23_real64)
  call real_row('e14.4e4', 6.02214076e23_real64)
  call real_row('d12.4', 1.6e-19_real64)
  call real_row('en14.3', 47.0e3_real64)
  call real_row('es12.4', 0.000123_real64)
  call real_row('g12.4', pi)
  call real_row('g12.4', 1.0e10_real64)
  call real_row('g0', pi)
  call real_row('1p,e12.4', 0.00123_real64)
  call real_row('2p,f10.2', 0.1234_real64) ! a per cent
  call real_row('dc,f8.3', pi)
  call real_row('ru,f6.1', 2.01_real64)
  call real_row('rd,f6.1', 2.09_real64)

  print '(/a)', 'Characters and logicals'
  call text_row('a')
  call text_row('a12')
  call text_row('a4')
  write (text, '(l4)') .true.
  call row('l4', '.true.', text(:4))
  write (text, '(l1)') .false.
  call row('l1', '.false.', text(:1))

  print '(/a)', 'Positions, and what a format says by itself'
  write (text, '(a,t10,a,t5,a)') 'one', 'two', 'three'
  call row('t10, t5', 'one two three', trim(text))
  write (text, '(a,3x,a,tl2,a)') 'left', 'right', 'X'
  call row('3x, tl2', 'left right X', trim(text))
  write (text, '(3(i0,:,", "))') 1, 2
  call row('3(i0,:,", ")', '1 2', trim(text))
  write (text, '("[",i3,"]")') 7
  call row('"[",i3,"]"', '7', trim(text))
  write (text, '(*(i0,:,";"))') 1, 2, 3, 4
  call row('*(i0,:,";")', '1 2 3 4', trim(text))

contains

  subroutine row(descriptor, value, result)
    character(*), intent(in) :: descriptor, value, result
    print '(a14,1x,a16,1x,3a)', adjustl(padded(descriptor, 14)), padded(value, 16), '|', result, '|'
  end subroutine

  function padded(string, width)
    character(*), intent(in) :: string
    integer, intent(in) :: width
    character(width) :: padded
    padded = string
  end function

  subroutine integer_row(descriptor, value)
    character(*), intent(in) :: descriptor
    integer, intent(in) :: value
    character(40) :: result
    character(16) :: shown
    integer :: width
    write (result, '('//descriptor//',"|")') value
    write (shown, '(i0)') value
    width = index(result, '|', back=.true.) - 1
    call row(descriptor, shown, result(:width))
  end subroutine

  subroutine real_row(descriptor, value)
    character(*), intent(in) :: descriptor
    real(real64), intent(in) :: value
    character(60) :: result
    character(16) :: shown
    integer :: width
    write (result, '('//descriptor//',"|")') value
    write (shown, '(es15.8)') value
    width = index(result, '|', back=.true.) - 1
    call row(descriptor, shown, result(:width))
  end subroutine

  subroutine text_row(descriptor)
    character(*), intent(in) :: descriptor
    character(40) :: result
    integer :: width
    write (result, '('//descriptor//',"|")') 'Fortran'
    width = index(result, '|', back=.true.) - 1
    call row(descriptor, 'Fortran', result(:width))
  end subroutine

end program
