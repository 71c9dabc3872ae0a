! ASYNCHRONOUS=, ID=, WAIT, INQUIRE(PENDING=).
program asynchronous
    implicit none
    integer :: id, i, ios, ids(3)
    logical :: pending
    integer, asynchronous :: numbers(3)
    real, asynchronous :: x(1000), y(1000), z(1000)
    character(20) :: text
    x = [(0.5*i, i=1, 1000)]
    open (10, file='async.bin', form='unformatted', asynchronous='yes')
    write (10, asynchronous='yes', id=id) x
    wait (10, id=id)
    z = x + 1
    write (10, asynchronous='yes') z
    wait (10)
    inquire (10, pending=pending)
    print *, pending
    rewind (10)
    read (10, asynchronous='yes', id=ids(1)) y
    wait (10, id=ids(1), iostat=ios)
    print *, ios
    read (10, asynchronous='yes') y
    inquire (10, id=ids(1), pending=pending)
    wait (10)
    print *, all(y == z)
    ! The end of the file is told by the READ or by the WAIT.
    read (10, asynchronous='yes', iostat=ios) y
    wait (10, iostat=id)
    print *, 'end', min(ios, id)
    close (10)
    open (11, file='async.txt', asynchronous='yes')
    numbers = [7, 8, 9]
    do i = 1, 3
        write (11, '(A,I3)', asynchronous='yes', id=ids(i)) 'line', numbers(i)
    end do
    wait (11, id=ids(3))
    wait (11)
    rewind (11)
    do i = 1, 3
        read (11, '(A)', asynchronous='yes') text
        wait (11)
        print *, text
    end do
    close (11)
    open (12, file='sync.txt')
    write (12, '(A)', asynchronous='yes', iostat=ios) 'not allowed by the OPEN'
    print *, ios
    write (12, '(A)', asynchronous='no') 'fine'
    wait (12, iostat=ios)
    print *, ios
    close (12)
end program
