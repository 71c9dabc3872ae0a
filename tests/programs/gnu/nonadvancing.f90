! Records written and read a piece at a time: ADVANCE='NO', SIZE=, EOR=, PAD=.
program nonadvancing
    implicit none
    integer :: i, n, ios, size
    character(20) :: text
    character(7) :: part
    open (10, file='pieces.txt')
    do i = 1, 5
        write (10, '(A,I0)', advance='no') 'piece ', i
        write (10, '(A)', advance='no') ''
        if (i == 3) write (10, '(TL4,A,T30,A)', advance='no') 'XX', 'far'
    end do
    write (10, '(A)') ' end of it'
    write (10, '(A)', advance='no') 'second'
    write (10, '(/,A)', advance='no') 'third'
    write (10, *) 'list', 1, 2.5
    write (10, '(A,$)') 'dollar'
    write (10, '(T3,A,TL2,A,TR3,A)') 'abcd', 'EF', 'G'
    write (10, '(3X)', advance='no')
    write (10, '(A)') 'after blanks'
    write (10, '(A,3X)', advance='no') 'tail'
    write (10, '(A)', advance='no') 'unfinished'
    close (10)

    open (10, file='pieces.txt', action='read')
    n = 0
    do
        size = -1
        text = '????????????????????'
        read (10, '(A)', advance='no', size=size, eor=20, end=30, iostat=ios) text
        print '(A,I0,A,I0,A)', '[', size, ',', ios, ']'//text
        cycle
20      print '(A,I0,A,I0,A)', 'end of record [', size, ',', ios, ']'//text
        n = n + 1
        if (n > 20) exit
    end do
30  print *, 'end of file', size, ios, n

    rewind (10)
    do
        part = '-------'
        read (10, '(A3,2X,A)', advance='no', size=size, iostat=ios) part(1:3), part(4:7)
        print *, part, size, ios
        if (ios == -1) exit
    end do

    rewind (10)
    read (10, '(A5)', advance='no') part
    print *, part
    read (10, '(A5)') part
    print *, part
    read (10, '(T3,A4,TL6,A3,T1,A2)', advance='no', size=size, iostat=ios) part(1:4), part(5:7), &
        text(1:2)
    print *, part, text(1:2), size, ios
    read (10, *, iostat=ios) text
    print *, text, ios
    close (10)

    ! A record that is too short, with and without padding.
    open (11, file='short.txt')
    write (11, '(A)') '12', '3456', '', '78'
    close (11)
    open (11, file='short.txt', pad='no')
    read (11, '(I4)', iostat=ios) n
    print *, 'pad=no', n, ios
    read (11, '(I4)', iostat=ios) n
    print *, 'pad=no', n, ios
    read (11, '(I4)', iostat=ios, advance='no', size=size) n
    print *, 'pad=no', n, ios, size
    read (11, '(I4)', iostat=ios, pad='yes') n
    print *, 'pad=yes in the statement', n, ios
    read (11, '(I4)', iostat=ios) n
    print *, 'at the end', ios
    rewind (11)
    read (11, '(I1)', advance='no') n
    print *, n
    read (11, '(I1)', advance='no') n
    print *, n
    read (11, '(I1)', advance='no', iostat=ios, size=size) n
    print *, ios, size
    read (11, '(2I2)', advance='yes', iostat=ios) n, i
    print *, n, i, ios
    close (11)

    ! Prompts on standard output.
    write (*, '(A)', advance='no') 'prompt: '
    write (*, '(A)', advance='no') 'more'
    print *
    write (*, '(A)', advance='no') 'kept to the end of the program'
end program
