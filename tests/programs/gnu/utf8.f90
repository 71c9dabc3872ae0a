! UTF-8 units and characters of kind 4.
program utf8
    implicit none
    integer, parameter :: wide = selected_char_kind('ISO_10646')
    character(12, wide) :: text
    character(5, wide) :: list(3)
    character(20) :: narrow
    integer :: i, ios, n
    real :: x
    open (10, file='utf8.txt', encoding='utf-8')
    text = wide_'abc'
    text(4:4) = char(int(z'3b1'), wide)
    text(5:5) = char(int(z'20ac'), wide)
    text(6:6) = char(int(z'1f600'), wide)
    write (10, *) text
    write (10, '(A)') text
    write (10, '(A3,A5,A)') text, text, text(4:4)
    write (10, '(A20,"|")') text
    write (10, '(T5,A,T2,A)') text(4:6), text(5:5)
    write (10, '(A,I4,F6.2)') text(4:4), 17, 2.5
    write (10, '(G0,1X,G0)') text(1:5), 5
    list = [character(5, wide) :: wide_'one', text(4:6), wide_'three']
    write (10, '(3A6)') list
    write (10, *) list(1), 1, list(2)
    write (10, '(A)') 'plain '//char(228)
    close (10)
    open (10, file='utf8.txt', encoding='utf-8')
    do i = 1, 3
        read (10, '(A)') text
        print *, (iachar(text(n:n)), n=1, 12)
    end do
    read (10, '(8X,A4)') text
    print *, (iachar(text(n:n)), n=1, 12)
    read (10, '(T5,A2,T2,A1)') text(1:2), text(3:3)
    print *, (iachar(text(n:n)), n=1, 3)
    read (10, '(A1,I4,F6.2)') text(1:1), i, x
    print *, i, x
    read (10, '(A5,1X,I1)') text, i
    print *, i
    read (10, '(3A6)') list
    print *, (iachar(list(2)(n:n)), n=1, 5)
    rewind (10)
    read (10, '(A)') narrow
    print *, (iachar(narrow(n:n)), n=1, 20)
    rewind (10)
    read (10, *) text
    print *, (iachar(text(n:n)), n=1, 12)
    close (10)

    ! Bytes that are no UTF-8.
    open (11, file='broken.txt', access='stream')
    write (11) 'ok', char(255), char(192), char(10), 'x', char(226), char(130), char(10)
    close (11)
    open (11, file='broken.txt', encoding='utf-8')
    read (11, '(A)', iostat=ios) text
    print *, 'broken', ios
    close (11)

    ! A half of a pair, a character in more bytes than it takes, and values above all characters.
    do n = 1, 3
        open (11, file='odd.txt', access='stream', status='replace')
        if (n == 1) write (11) char(237), char(160), char(128), char(10)
        if (n == 2) write (11) char(192), char(128), char(10)
        if (n == 3) write (11) char(244), char(144), char(128), char(128), char(10)
        close (11)
        open (11, file='odd.txt', encoding='utf-8')
        read (11, '(A)', iostat=ios) text(1:1)
        print *, 'odd', ios
        close (11)
    end do
    open (11, file='odd.txt', encoding='utf-8')
    write (11, '(A)') char(int(z'10FFFF'), wide), char(int(z'200000'), wide), &
        char(int(z'7FFFFFFF'), wide), transfer(-1, wide_'x')
    close (11)
    open (11, file='odd.txt', access='stream')
    inquire (11, size=n)
    print *, n
    close (11)

    ! Internal files of kind 4.
    text = wide_' 12 3.5 x'
    read (text, *) i, x, narrow
    print *, i, x, narrow
    read (text, '(I3,F4.1,1X,A)') i, x, narrow
    print *, i, x, narrow
    write (text, '(I5,A,F6.2)') 42, char(int(z'3b1'), wide), -1.5
    print *, (iachar(text(n:n)), n=1, 12)
    write (list, '(I3)') 1, 2, 3
    print *, (iachar(list(2)(n:n)), n=1, 5)
    ! A wide character meets a narrow unit.
    write (*, *) wide_'narrow unit', char(int(z'e9'), wide)
    write (*, '(A)') wide_'narrow'
end program
