!> flags: -ffpe-trap=zero
!> run:
!> args: invalid
!> err: Note: The following floating-point exceptions are signalling: IEEE_INVALID_FLAG
!> err: STOP 0
!> run:
!> args: zero
!> status: 136
!> err~: .*
program traps
  character(10) :: how
  real, volatile :: x, y
  call get_command_argument(1, how)
  x = 0
  if (how == 'zero') then
    y = 1 / x
  else
    y = x / x
  end if
  stop 0
end program
