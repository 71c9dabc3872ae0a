! A device that takes nothing, and a pipe that nobody reads.
! run: $PROGRAM
! run: $PROGRAM > /dev/full
! run: $PROGRAM pipe | head -n 3
! run: yes | $PROGRAM read
! status: any
program full_device
    implicit none
    integer :: ios, i
    character(10) :: what
    call get_command_argument(1, what)
    if (what == 'pipe') then
        do i = 1, 100000
            print *, 'line', i
        end do
        stop
    end if
    if (what == 'read') then
        read (*, '(A)') what
        print *, what
        stop
    end if
    ! The peer loses what the device doesn't take without a word; the library must not.
    open (10, file='/dev/full')
    write (10, '(A)', iostat=ios) (repeat('y', 1000), i=1, 100)
    flush (10, iostat=ios)
    close (10, iostat=ios)
    open (12, file='/dev/null')
    write (12, *) 'x'
    read (12, *, iostat=ios) what
    print *, 'null', ios
    rewind (12)
    read (12, *, iostat=ios) what
    print *, 'null', ios
    open (13, file='/dev/zero', form='unformatted', access='stream', action='read')
    read (13) i
    print *, i
end program
