!> args: ab abcde abcdefgh "with blank"
program arguments
  character(5) :: s
  character(0) :: empty
  character(300) :: line
  integer :: length, status, n
  if (command_argument_count() /= 4) stop 1
  call get_command_argument(1, s, length, status)
  if (s /= 'ab' .or. length /= 2 .or. status /= 0) stop 2
  call get_command_argument(2, s, length, status)
  if (s /= 'abcde' .or. length /= 5 .or. status /= 0) stop 3
  call get_command_argument(3, s, length, status)
  if (s /= 'abcde' .or. length /= 8 .or. status /= -1) stop 4
  call get_command_argument(3, length=length, status=status)
  if (length /= 8 .or. status /= 0) stop 5
  do n = -1, 5, 6
    s = 'zzzzz'
    call get_command_argument(n, s, length, status)
    if (s /= '' .or. length /= 0 .or. status /= 42) stop 6
    s = 'zzzzz'
    call getarg(n, s)
    if (s /= '') stop 7
  end do
  call get_command_argument(1, empty, length, status)
  if (length /= 2 .or. status /= 42) stop 8
  call get_command_argument(4, line, length, status)
  if (line /= 'with blank' .or. length /= 10 .or. status /= 0) stop 9
  call get_command(line, length, status)
  if (line(length-29:length) /= ' ab abcde abcdefgh with blank' .and. status /= 0) stop 10
  call get_command(s, length, status)
  if (status /= -1) stop 11
end program
