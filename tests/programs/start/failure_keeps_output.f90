!> flags: -fcheck=bounds
!> run:
!> args: bound
!> status: 1
!> out: written before
!> err~: ^\*\*\* Error   11, Array
!> run:
!> args: bound
!> status: 1
!> file: fort.12
!> out: in a file
!> err~: ^\*\*\* Error   11, Array
!> run:
!> args: read
!> status: 1
!> out: written before
!> err: *** Error   57, Attempt to read past end-of-file
!> err:     in failure_keeps_output.f90, line 33
!> err:     on unit 5
program failure_keeps_output
  character(10) :: how
  integer :: a(3)
  integer, volatile :: n = 5
  write (*, '(a)') 'written before'
  write (12, '(a)') 'in a file'
  call get_command_argument(1, how)
  select case (how)
  case ('bound')
    a(n) = 1
  case ('stop')
    error stop 2
  case ('read')
    read (*, *) n
  end select
end program
