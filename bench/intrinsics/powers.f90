! Times x ** n with a variable integer exponent: powers KIND EXPONENT.
program powers
  implicit none
  character(20) :: what, word
  integer :: i, n
  integer, parameter :: times = 5000000
  integer(8) :: sum_of_integers = 0, large
  real(8) :: start, finish, sum_of_reals = 0
  complex(8) :: sum_of_complex = 0
  call get_command_argument(1, what)
  call get_command_argument(2, word)
  read (word, *) n
  large = n
  call cpu_time(start)
  select case (what)
  case ('integer')
    do i = 1, times
      sum_of_integers = sum_of_integers + i ** n
    end do
  case ('real')
    do i = 1, times
      sum_of_reals = sum_of_reals + (1 + i * 1e-9_8) ** large
    end do
  case ('complex')
    do i = 1, times
      sum_of_complex = sum_of_complex + cmplx(1, i * 1e-9_8, 8) ** n
    end do
  end select
  call cpu_time(finish)
  print *, (finish - start) / times * 1e9_8
  if (abs(sum_of_reals + real(sum_of_complex) + sum_of_integers) < 0) print *, sum_of_integers
end program
