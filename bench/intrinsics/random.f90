! Times RANDOM_NUMBER, by the number: random KIND COUNT.
program random
  implicit none
  character(20) :: what, word
  real(4), allocatable :: r4(:)
  real(8), allocatable :: r8(:)
  integer :: count, times, i, turn, which
  real(8) :: start, finish
  call get_command_argument(1, what)
  call get_command_argument(2, word)
  ! A number, so that short arrays aren't drowned in comparisons of names.
  which = findloc([character(20) :: 'real4', 'real8-strided'], what, dim=1)
  read (word, *) count
  allocate (r4(count), r8(2 * count))
  times = max(3, 4000000 / count)
  do turn = 1, 2
    call cpu_time(start)
    do i = 1, times
      select case (which)
      case (1)
        call random_number(r4)
      case (2)
        call random_number(r8(::2))
      case default
        if (count == 1) then
          call random_number(r8(1))
        else
          call random_number(r8(:count))
        end if
      end select
    end do
    call cpu_time(finish)
  end do
  print *, (finish - start) / times / count * 1e9_8
end program
