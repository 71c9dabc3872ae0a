!> run:
!> args: bare
!> run:
!> args: text
!> err: STOP bye  
!> run:
!> args: empty
!> err: STOP 
!> run:
!> args: number
!> status: 3
!> err: STOP 3
!> run:
!> args: negative
!> status: 255
!> err: STOP -1
!> run:
!> args: large
!> status: 44
!> err: STOP 300
!> run:
!> args: quiet
!> status: 7
!> run:
!> args: error
!> status: 1
!> err: ERROR STOP 
!> run:
!> args: errortext
!> status: 1
!> err: ERROR STOP bad
!> run:
!> args: errornumber
!> status: 9
!> err: ERROR STOP 9
!> run:
!> args: exceptions
!> status: 5
!> err: Note: The following floating-point exceptions are signalling: IEEE_INVALID_FLAG IEEE_DIVIDE_BY_ZERO IEEE_OVERFLOW_FLAG IEEE_UNDERFLOW_FLAG
!> err: STOP 5
!> run:
!> args: exit
!> status: 6
!> run:
!> args: end
program stop_texts
  character(20) :: how
  real, volatile :: x, y
  integer, volatile :: n
  call get_command_argument(1, how)
  select case (how)
  case ('bare')
    stop
  case ('text')
    stop 'bye  '
  case ('empty')
    stop ''
  case ('number')
    stop 3
  case ('negative')
    stop -1
  case ('large')
    n = 300
    stop n
  case ('quiet')
    n = 7
    stop n, quiet=.true.
  case ('error')
    error stop
  case ('errortext')
    error stop 'bad'
  case ('errornumber')
    error stop 9
  case ('exceptions')
    x = 0; y = x / x
    x = 0; y = 1 / x
    x = 1e30; y = x * x
    x = 1e-30; y = x * x
    stop 5
  case ('exit')
    call exit(6)
  end select
end program
