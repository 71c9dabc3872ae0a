! Formatted direct access: records of exactly RECL bytes, holes, NEXTREC, multi-record formats.
program direct_formatted
    implicit none
    integer :: i, ios, next, n, values(6)
    character(24) :: text
    logical :: opened
    open (10, file='direct.dat', access='direct', form='formatted', recl=24)
    inquire (10, nextrec=next)
    print *, 'next', next
    do i = 5, 1, -2
        write (10, '(A,I3)', rec=i) 'record', i
        inquire (10, nextrec=next)
        print *, 'next', next
    end do
    write (10, '(I4/I5/I6)', rec=7) 1, 2, 3
    inquire (10, nextrec=next)
    print *, 'next', next
    write (10, '(A)', rec=12) 'beyond a hole'
    write (10, '(24X)', rec=10)
    write (10, '(T20,A)', rec=11) 'abcd'
    write (10, '(T24,A)', rec=13) 'z'
    do i = 1, 13
        text = '????????????????????????'
        read (10, '(A)', rec=i, iostat=ios) text
        print '(I3,I6,3A)', i, ios, '[', merge('hole                    ', text, text(1:1) == char(0)), ']'
    end do
    read (10, '(I4/I5/I6)', rec=7) values(1:3)
    print *, values(1:3)
    inquire (10, nextrec=next, opened=opened)
    print *, next, opened
    read (10, '(6X,I3)', rec=5) n
    print *, n
    read (10, '(A)', rec=0, iostat=ios) text
    print *, 'record 0', ios
    read (10, '(A)', rec=100, iostat=ios) text
    print *, 'past the end', ios
    read (10, '(A)', iostat=ios) text
    print *, 'no record number', ios
    read (10, '(20X,A8)', rec=1, iostat=ios) text
    print *, 'over the end of the record', ios, text(1:8)
    read (10, '(20X,A8)', rec=1, iostat=ios, pad='no') text
    print *, 'the same, pad=no', ios
    rewind (10, iostat=ios)
    print *, 'rewind', ios
    backspace (10, iostat=ios)
    print *, 'backspace', ios
    close (10)
    open (10, file='direct.dat', access='direct', form='formatted', recl=10, status='old')
    do i = 1, 4
        read (10, '(A10)', rec=i, iostat=ios) text
        print *, ios, text(1:10)
    end do
    close (10)
    open (10, file='direct.dat', access='direct', recl=8, status='old')
    read (10, rec=2) text(1:8)
    print *, text(1:8)
    write (10, rec=2) 42, 43
    read (10, rec=2) i, n
    print *, i, n
    write (10, rec=3, iostat=ios) 1, 2, 3
    print *, 'too long', ios
    ! gfortran doesn't find its way out of that failure: the next statement has a new connection.
    close (10)
    open (10, file='direct.dat', access='direct', recl=8, status='old')
    read (10, rec=3, iostat=ios) values(1:3)
    print *, 'too long', ios
    close (10)
end program
