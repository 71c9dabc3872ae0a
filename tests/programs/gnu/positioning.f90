! BACKSPACE, REWIND, ENDFILE, writing behind what was read, records cut off by a write, append.
program positioning
    implicit none
    integer :: i, n, ios
    character(20) :: text
    open (10, file='seq.txt')
    write (10, '(A,I2)') ('record', i, i=1, 6)
    backspace (10)
    read (10, '(A)') text
    print *, text
    backspace (10)
    backspace (10)
    read (10, '(A)') text
    print *, text
    do i = 1, 10
        backspace (10)
    end do
    read (10, '(A)') text
    print *, text
    write (10, '(A)') 'written after reading one'
    read (10, '(A)', iostat=ios) text
    print *, 'after a write', ios
    backspace (10, iostat=ios)
    print *, ios
    backspace (10, iostat=ios)
    read (10, '(A)', iostat=ios) text
    print *, text, ios
    rewind (10)
    rewind (10)
    n = 0
    do
        read (10, '(A)', iostat=ios) text
        if (ios /= 0) exit
        n = n + 1
        print *, n, text
    end do
    print *, 'end', ios
    read (10, '(A)', iostat=ios) text
    print *, 'past the end', ios
    read (10, '(A)', iostat=ios) text
    print *, 'and again', ios
    backspace (10, iostat=ios)
    write (10, '(A)', iostat=ios) 'y'
    print *, 'after backspace', ios
    rewind (10)
    do
        read (10, '(A)', end=9) text
        print *, text
    end do
9   close (10)

    open (11, file='end.txt')
    write (11, '(A)') 'a', 'b', 'c'
    rewind (11)
    read (11, '(A)') text
    write (11, '(A)') 'behind'
    endfile (11)
    rewind (11)
    do
        read (11, '(A)', iostat=ios) text
        print *, text, ios
        if (ios /= 0) exit
    end do
    endfile (11, iostat=ios)
    print *, 'endfile at the end', ios
    backspace (11)
    backspace (11)
    read (11, '(A)', iostat=ios) text
    print *, text, ios
    close (11)
    open (11, file='end.txt', position='append')
    write (11, '(A)') 'appended'
    backspace (11)
    read (11, '(A)') text
    print *, text
    close (11)
    open (11, file='end.txt', position='append', status='old')
    read (11, '(A)', iostat=ios) text
    print *, 'at the append place', ios
    close (11)
    open (11, file='end.txt', position='rewind')
    write (11, '(A)') 'only this'
    close (11)
    open (11, file='end.txt', status='old', position='asis')
    read (11, '(A)', iostat=ios) text
    print *, text, ios
    close (11)

    open (12, file='seq.bin', form='unformatted')
    do i = 1, 6
        write (12) i, (i*10 + n, n=1, i)
    end do
    backspace (12)
    backspace (12)
    read (12) i, n
    print *, i, n
    backspace (12)
    backspace (12)
    read (12) i
    print *, i
    write (12) 77
    read (12, iostat=ios) i
    print *, 'after a write', ios
    rewind (12)
    do
        read (12, iostat=ios) i
        print *, i, ios
        if (ios /= 0) exit
    end do
    backspace (12)
    backspace (12)
    read (12) i
    print *, i
    endfile (12)
    rewind (12)
    read (12)
    read (12) i, n
    print *, i, n
    read (12, iostat=ios) i, n, n, n, n
    print *, 'more than the record has', ios
    close (12)

    ! Non-advancing output and positioning.
    open (13, file='half.txt')
    write (13, '(A)', advance='no') 'half'
    backspace (13)
    read (13, '(A)', iostat=ios) text
    print *, text, ios
    rewind (13)
    write (13, '(A)') 'one', 'two', 'three'
    write (13, '(A)', advance='no') 'open'
    rewind (13)
    read (13, '(A1)', advance='no') text
    write (13, '(A)') 'over'
    rewind (13)
    do
        read (13, '(A)', iostat=ios) text
        print *, text, ios
        if (ios /= 0) exit
    end do
    rewind (13)
    read (13, '(/)', iostat=ios)
    print *, ios
    write (13, '(A)', advance='no', iostat=ios) 'last'
    print *, ios
    close (13)

    rewind (33, iostat=ios)
    print *, 'not open', ios
    backspace (34, iostat=ios)
    print *, 'not open', ios
    endfile (35, iostat=ios)
    print *, 'not open', ios
    close (36, iostat=ios)
    print *, 'not open', ios
end program
