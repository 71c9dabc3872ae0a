! Times one operation on character values of a length: characters OPERATION LENGTH. CHARACTER_KIND is
! 1 or 4.
module work
  implicit none
  integer, parameter :: ck = CHARACTER_KIND
  integer(8) :: found = 0
contains
  ! Apart from the caller, so that the compiler can't take the operation out of the loop.
  subroutine repeat_it(what, a, b, c, times)
    integer, intent(in) :: what
    character(*, ck), intent(inout) :: a, b, c
    integer, intent(in) :: times
    integer :: i, half
    half = len(b) / 2
    do i = 1, times
      c(1:1) = char(97 + mod(i, 16), ck)
      select case (what)
      case (1)  ! compare-padded
        if (b(:half) > b) found = found + 1
      case (2)  ! compare-equal
        a(1:1) = c(1:1)
        if (a > c) found = found + 1
      case (3)  ! index
        found = found + index(c, ck_'queenX')
      case (4)  ! index-back
        found = found + index(c, ck_'queenX', .true.)
      case (5)  ! scan
        found = found + scan(c, ck_',;:=')
      case (6)  ! verify
        found = found + verify(c, ck_'abcdefghijklmnopqrstuvwxyz ')
      case (7)  ! len_trim
        found = found + len_trim(b)
      case (8)  ! trim
        call use_it(trim(b))
      case (9)  ! adjustl
        c = adjustl(a)
        found = found + ichar(c(1:1))
      case (10)  ! adjustr
        c = adjustr(b)
        found = found + ichar(c(len(c):))
      end select
    end do
  end subroutine
  subroutine use_it(text)
    character(*, ck), intent(in) :: text
    found = found + len(text)
  end subroutine
end module

program characters
  use work
  implicit none
  character(14), parameter :: operations(10) = [character(14) :: 'compare-padded', 'compare-equal', &
    'index', 'index-back', 'scan', 'verify', 'len_trim', 'trim', 'adjustl', 'adjustr']
  character(20) :: what, word
  character(:, ck), allocatable :: a, b, c
  integer :: length, i, times
  real(8) :: start, finish
  call get_command_argument(1, what)
  call get_command_argument(2, word)
  read (word, *) length
  allocate (character(length, ck) :: a, b, c)
  do i = 1, length
    c(i:i) = char(97 + mod(i * 7 + i / 13, 26), ck)
  end do
  ! `a` begins with blanks for half of its length, and `b` ends with as many.
  a(:) = ck_''
  a(length / 2 + 1:) = c
  b(:) = c(:length / 2)
  if (what == 'compare-equal') a(:) = c
  times = max(300, 4000000 / (length + 20))
  call repeat_it(findloc(operations, what, 1), a, b, c, times / 10)
  call cpu_time(start)
  call repeat_it(findloc(operations, what, 1), a, b, c, times)
  call cpu_time(finish)
  print *, (finish - start) / times * 1e9_8
  if (found < 0) print *, found
end program
