! Handles in a Fortran program: values and lines written and read back, positions, and what a
! program leaves open at its end. It starts itself for the latter.
program handles
  use tarn
  implicit none
  integer(2) :: handle, other, error
  character(40) :: mode
  mode = cmnam@()
  select case (mode)
  case ('')
    call values_and_lines
    call positions
    call ends
  case default
    call leave_open(mode)
  end select

contains

  subroutine values_and_lines
    real(8) :: x(3), y(3)
    character(12) :: line
    type point
      integer :: i
      real :: r
    end type
    type(point) :: p, q
    integer :: n
    x = [1.5d0, -2d0, 1d300]
    p = point(7, 0.25)
    call openw@('data', handle, error)
    call writefa@('head', handle, error)
    call writef@(x, handle, 24, error)
    call writef@(p, handle, 8, error)
    call writef@('tail', handle, 4, error)
    call closef@(handle, error)
    print '(a,2i4)', 'written ', handle, error
    call openr@('data', handle, error)
    call openr@('nowhere', other, error)
    print '(a,3i4)', 'opened ', handle, other, error
    call readfa@(line, handle, n, error)
    print '(3a,i0)', 'line [', line(1:n), '] ', n
    call readf@(y, handle, 24, n, error)
    call readf@(q, handle, 8, n, error)
    print *, all(x == y), p%i == q%i, p%r == q%r, n
    line = '............'
    call readf@(line, handle, 100, n, error)
    print '(3a,i0,i4)', 'rest [', line, '] ', n, error
    call readfa@(line, handle, n, error)
    print '(a,i0,i4)', 'end ', n, error
    call writef@(x, handle, 24, error)
    print '(a,i0)', 'write on a handle for reading: ', error
    call closef@(handle, error)
    call closef@(handle, error)
    print '(a,i0)', 'closed twice: ', error
  end subroutine

  subroutine positions
    integer :: i, n, at
    integer(8) :: at8
    character(80) :: path
    integer(2) :: same
    call openrw@('numbers', handle, error)
    do i = 1, 3000
      call writef@(i, handle, 4, error)
    end do
    call fpos@(handle, 4 * 1234, at, error)
    call readf@(i, handle, 4, n, error)
    print *, at, i
    i = -1
    call writef@(i, handle, 4, error)
    call rfpos@(handle, at, error)
    call fpos@(handle, at - 8, at, error)
    call readf@(i, handle, 4, n, error)
    call readf@(n, handle, 4, at, error)
    print *, i, n
    call fposlong@(handle, 999999_8, at8, error)
    print *, at8
    call fpos@(handle, 8, at, error)
    call file_truncate@(handle, error)
    call move_to_eof@(handle, at, error)
    print *, at, error
    call get_path@(handle, path)
    call get_handle@('./numbers', same)
    print *, path(len_trim(path) - 7:) == '/numbers ', same == handle
    call flush_fortran_handle@(handle)
    call closefd@(handle, error)
    print *, error, fexists@('numbers')
  end subroutine

  subroutine ends
    character(100) :: line
    character(8) :: way(2) = ['end     ', 'failure ']
    integer :: i, n
    do i = 1, 2
      n = start_process@('./program', way(i))
      print '(3a,i0)', 'the ', trim(way(i)), ' of a program: ', n
      call openr@('left', handle, error)
      call readfa@(line, handle, n, error)
      print '(3a)', '  [', line(1:n), ']'
      call closef@(handle, error)
    end do
    ! The system refuses what is larger than a block, as a full disk does.
    call cissue@("trap '' 25; ulimit -f 1; ./program full 2>&1 | sed s:/.*/::; true", error)
  end subroutine

  subroutine leave_open(mode)
    character(*), intent(in) :: mode
    integer :: i
    call openw@('left', handle, error)
    select case (mode)
    case ('end')
      call writefa@('from a program that ended', handle, error)
    case ('failure')
      call writefa@('from a program that failed', handle, error)
      read (99, *) i
    case ('full')
      do i = 1, 100
        call writefa@('a line that the disk has no room for', handle, error)
      end do
    end select
  end subroutine
end program
