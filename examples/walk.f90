! A walker on a board of 262144 x 262144 squares: 64 GiB, more than most machines have. As a virtual
! common it costs the pages that the walker comes past.
!
!     tarnfc --virtual-common=board walk.f90 -o walk
program walk
  use tarn_virtual
  implicit none
  integer, parameter :: side = 262144, steps = 200000
  integer(1) :: squares(side, side)
  common /board/ squares
  integer(8) :: address, size, commit_size, committed
  integer :: step, x, y, direction, visited
  character(200) :: name

  x = side / 2
  y = side / 2
  direction = 1
  visited = 0
  do step = 1, steps
    ! Langton's ant: a turn to one side on a white square and to the other on a black one.
    direction = modulo(direction + merge(1, -1, iand(squares(x, y), 1_1) == 0), 4)
    if (squares(x, y) == 0) visited = visited + 1
    squares(x, y) = ior(ieor(squares(x, y), 1_1), 2_1)
    select case (direction)
    case (0); y = y + 1
    case (1); x = x + 1
    case (2); y = y - 1
    case (3); x = x - 1
    end select
  end do
  call get_command_argument(0, name)
  if (get_virtual_common_info@(name, address, size, commit_size, committed) /= 0) then
    print '(a,i0,a,i0,a)', 'A board of ', size / 2**30, ' GiB; the walk took ', committed / 2**20, ' MiB of it.'
  end if
  print '(i0,a,i0,a,2(1x,sp,i0))', steps, ' steps came past ', visited, ' squares and ended at', &
    x - side / 2, y - side / 2
end program walk
