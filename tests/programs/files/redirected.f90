! Standard input from a file and from a pipe: REWIND and BACKSPACE go back in either, in a pipe as
! far as its buffer reaches; a pipe that is opened by name has an end.
program redirected
  implicit none
  character(200) :: me, word
  character(20) :: line
  character(*), parameter :: rows = "seq 1 30000 | "
  integer :: i, n, ios
  integer(8) :: numbers(3)

  call get_command_argument(0, me)
  call get_command_argument(1, word)
  select case (word)
  case ('')
    call execute_command_line("printf '1\n2\n3\n' > rows.txt; " // trim(me) // " few < rows.txt")
    call execute_command_line("printf '1\n2\n3' | " // trim(me) // " few")
    call execute_command_line(rows // trim(me) // " many")
    call execute_command_line(trim(me) // " writer | " // trim(me) // " reader")
    call execute_command_line("mkfifo named; seq 1 1000 > named & " // trim(me) // " named; rm named")
    call execute_command_line("mkfifo named; " // trim(me) // " records > named & " // trim(me) // &
      " back; rm named")
  case ('few')
    read *, i
    read (*, '(a)') line
    backspace 5
    read *, n
    read *
    read (*, *, iostat=ios) n
    print '(3i3)', i, n, ios
    backspace 5
    backspace 5
    read *, i
    rewind 5
    read *, n
    print '(3i3)', i, n
  case ('many')
    do i = 1, 25000
      read *, n
    end do
    rewind (5, iostat=ios)
    read *, n
    print *, ios, n
    do i = 1, 5000
      backspace (5, iostat=ios)
    end do
    read *, n
    print *, ios, n
    do i = 1, 30000
      backspace (5, iostat=ios)
      if (ios /= 0) exit
    end do
    ! No record is taken for another one where the first bytes are gone.
    read *, n
    read *, i
    print *, ios, i - n, n > 1 .and. n < 20000
  case ('writer')
    open (10, file='/dev/stdout', access='stream', form='unformatted')
    do i = 1, 50000
      write (10) [integer(8) :: i, i, i]
    end do
  case ('named')
    open (10, file='named')
    n = 0
    do
      read (10, *, iostat=ios) i
      if (ios /= 0) exit
      n = n + i
    end do
    print *, n, ios
  case ('records')
    open (10, file='/dev/stdout', form='unformatted')
    do i = 1, 2000
      write (10) i, numbers
    end do
  case ('back')
    open (10, file='named', form='unformatted')
    do i = 1, 2000
      read (10) n
      if (mod(i, 100) /= 0) cycle
      backspace 10
      backspace 10
      read (10) n
      if (n /= i - 1) print *, 'wrong', i, n
      read (10) n, numbers
    end do
    read (10, iostat=ios) n
    print *, n, ios
  case ('reader')
    open (10, file='/dev/stdin', access='stream', form='unformatted')
    n = 0
    do
      read (10, iostat=ios) numbers
      if (ios /= 0) exit
      n = n + 1
      if (any(numbers /= n)) print *, 'wrong', n
    end do
    print *, n, ios
  end select
end program
