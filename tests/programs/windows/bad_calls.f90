! What is said of calls whose arguments don't go with their format: each in a run of its own.
program bad_calls
  use tarn
  implicit none
  character(16) :: which, name
  integer :: i, k, number
  real :: single
  double precision :: real8
  name = 'abc'
  number = 3
  single = 1.5
  real8 = 1.5d0
  call get_command_argument(1, which)
  if (which == ' ') then
    do k = 1, 11
      write (which, '(i0)') k
      call execute_command_line('./program ' // trim(which) // ' 2>&1 | sed "/^$/,\$d"')
    end do
    stop
  end if
  read (which, *) k
  select case (k)
  case (1)
    i = winio@('%rd&', real8)
  case (2)
    i = winio@('%rf&', single)
  case (3)
    i = winio@('%rf&', number)
  case (4)
    i = winio@('%rs&', number)
  case (5)
    i = winio@('%rd%rf&', number)
  case (6)
    i = winio@('%rd&', number, real8)
  case (7)
    i = winio@('%^bt[OK]&', 'NO_SUCH_ACTION')
  case (8)
    i = winio@('%qq&')
  case (9)
    i = winio@('%rd&', number)
    i = winio@('%ob%^nl%rf&', number)
  case (10)
    if (number == 3 .and. winio@('%rd&', real8) == -1) print *, 'and'
  case (11)
    if (number == 4 .or. .not. (winio@('%rf&', number) /= -1 .and. number == 3)) print *, 'or'
  end select
end program
