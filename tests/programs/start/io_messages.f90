!> args: field
!> status: 1
!> err: *** Error   52, Invalid character in field (field "  2S0")
!> err:     in io_messages.f90, line 46
!> err:     on an internal file
!> run:
!> args: missing
!> status: 1
!> err: *** Error  128, File does not exist ('not there')
!> err:     in io_messages.f90, line 48
!> err:     on unit 12
!> run:
!> args: device
!> status: 1
!> err: *** Error  117, Disk full
!> err:     in io_messages.f90, line 52
!> err:     on unit 13, file '/dev/full'
!> run:
!> args: caught
!> out: 5006: Missing closing parenthesis in run-time format (format "(i5" at character 4), in io_messages.f90, line 33, on unit 6
!> out: 5010: Invalid character in field (item 2 of list input: "x"), in io_messages.f90, line 35, on an internal file
!> out: 2: File does not exist ('not there'), in io_messages.f90, line 37, on unit 12
!> out: 28: Disk full, in io_messages.f90, line 41, on unit 13, file '/dev/full'
! What a failing statement says, caught and not.
program io_messages
  character(10) :: how, text = '  2S0'
  character(200) :: message
  character(4) :: open_ended = '(i5', pair = ' 1 x'
  integer :: status, n(2)
  call get_command_argument(1, how)
  select case (how)
  case ('caught')
    write (*, open_ended(1:3), iostat=status, iomsg=message) 1
    call show
    read (pair, *, iostat=status, iomsg=message) n
    call show
    open (12, file='not there', status='old', iostat=status, iomsg=message)
    call show
    open (13, file='/dev/full')
    write (13, *) 1
    flush (13, iostat=status, iomsg=message)
    call show
    ! What the device refused is not asked for again.
    close (13, iostat=status)
  case ('field')
    read (text, '(i5)') n(1)
  case ('missing')
    open (12, file='not there', status='old')
  case ('device')
    open (13, file='/dev/full')
    write (13, *) 1
    flush (13)
  end select
contains
  subroutine show
    print '(i0,": ",a)', status, trim(message)
  end subroutine
end program
