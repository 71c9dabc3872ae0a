! Character operations on random texts of both kinds, short and long.
module draw
  implicit none
  integer(8) :: state = 20240229
contains
  integer function number(below)
    integer, intent(in) :: below
    state = iand(state * 1103515245_8 + 12345_8, 2147483647_8)
    number = int(mod(state / 65536, int(below, 8)))
  end function
  function text(length, spread) result(made)
    integer, intent(in) :: length, spread
    character(length) :: made
    integer :: i
    do i = 1, length
      made(i:i) = char(merge(32, 96 + number(spread), number(3) == 0))
      if (number(40) == 0) made(i:i) = char(number(256))
    end do
  end function
  function wide(narrow) result(made)
    character(*), intent(in) :: narrow
    character(kind=4, len=len(narrow)) :: made
    integer :: i
    do i = 1, len(narrow)
      made(i:i) = char(ichar(narrow(i:i)) * merge(1, 977, narrow(i:i) < 'b'), 4)
    end do
  end function
end module

program strings
  use draw
  implicit none
  integer :: round
  do round = 1, 400
    call narrow_texts(text(number(40), 4), text(number(40), 4), text(number(4), 4))
    if (mod(round, 4) == 0) call narrow_texts(text(number(700), 3), text(number(700), 3), text(9, 3))
    call wide_texts(wide(text(number(40), 4)), wide(text(number(40), 4)), wide(text(number(4), 4)))
    if (mod(round, 4) == 0) &
      call wide_texts(wide(text(number(300), 3)), wide(text(number(300), 3)), wide(text(9, 3)))
  end do
  call cases()
  call absent('one', 'two  ')
  call absent('one', 'two  ', 'zzz')
contains
  subroutine narrow_texts(a, b, part)
    character(*), intent(in) :: a, b, part
    character(:), allocatable :: c
    print *, a < b, a == b, a > b, len_trim(a), index(a, part), index(a, part, .true.)
    print *, scan(a, part), scan(a, b, .true.), verify(a, part), verify(a, b, back=.true.), &
      verify(a, ' '), len_trim(a, 8), index(a // b, b, kind=8)
    print *, trim(a), '|', trim(b) // trim(part), '|', max(a, b, part), '|', min(a, b), '|'
    print *, adjustl(a), '|', adjustr(b), '|', repeat(part, 3), '|', a // b, '|'
    c = a
    if (len(a) > 4) c(2:4) = c(1:3)
    if (len(a) > 9) c(1:8) = c(3:len(a))
    print *, c
  end subroutine
  subroutine wide_texts(a, b, part)
    character(kind=4, len=*), intent(in) :: a, b, part
    character(len(a)) :: narrow
    character(kind=4, len=:), allocatable :: c
    narrow = a
    c = narrow
    print *, a < b, a == b, a > b, len_trim(a), index(a, part), index(a, part, .true.), narrow
    print *, scan(a, part), scan(a, b, .true.), verify(a, part), verify(a, b, back=.true.), c == a
    call show(trim(a))
    call show(trim(b) // trim(part))
    call show(adjustl(a))
    call show(adjustr(b))
    call show(a // b)
    call show(max(a, b, part))
    call show(min(a, b))
  end subroutine
  subroutine show(c)
    character(kind=4, len=*), intent(in) :: c
    integer :: i
    print *, len(c), ichar([(c(i:i), i = 1, len(c))])
  end subroutine
  subroutine cases()
    integer :: i
    character(4) :: c
    do i = 1, 60
      c = text(4, 26)
      select case (c)
      case (:'b')
        print *, 1, c
      case ('c', 'e':'fzz')
        print *, 2, c
      case ('g', 'x ', 'h':'h')
        print *, 3, c
      case ('k':'t')
        print *, 4, c
      case ('y ':)
        print *, 5, c
      case default
        print *, 6, c
      end select
      select case (wide(c))
      case (4_'m':)
        print *, 7
      case (4_'a':4_'c')
        print *, 8
      end select
    end do
  end subroutine
  subroutine absent(a, b, c)
    character(*), intent(in) :: a, b
    character(*), intent(in), optional :: c
    print *, max(a, b, c), '|', min(a, b, c), '|'
  end subroutine
end program
