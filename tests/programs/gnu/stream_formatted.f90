! Stream access, formatted and not, with POS= and INQUIRE(POS=).
program stream_formatted
    implicit none
    integer :: i, p, ios, q, where(4)
    integer(8) :: size
    character(12) :: text
    character :: c
    real(8) :: x
    logical :: flag
    open (10, file='stream.txt', access='stream', form='formatted')
    do i = 1, 4
        inquire (10, pos=where(i))
        write (10, '(A,I0,A)') 'line ', i, repeat('.', i)
    end do
    inquire (10, pos=p, size=size)
    print *, where, p, size
    write (10, '(A)', advance='no') 'ab'
    inquire (10, pos=p)
    print *, p
    write (10, '(A)') new_line('a')//'after a line feed'
    read (10, '(A)', pos=where(3)) text
    print *, text
    inquire (10, pos=p)
    print *, p
    read (10, '(A)') text
    print *, text
    read (10, '(A2)', advance='no', pos=where(2)) text
    inquire (10, pos=p)
    print *, text(1:2), p
    read (10, '(A)') text
    print *, text
    do i = 4, 1, -1
        read (10, '(5X,I1)', pos=where(i)) q
        print *, q
    end do
    write (10, '(A)', pos=where(2)) 'NEW'
    inquire (10, pos=p)
    print *, 'after rewriting', p
    read (10, '(A)', iostat=ios, pos=1) text
    print *, ios, text
    read (10, '(A)', iostat=ios) text
    print *, ios, text
    read (10, '(A)', iostat=ios)
    print *, ios
    read (10, '(A)', iostat=ios)
    print *, ios
    q = -1
    read (10, *, pos=1, iostat=ios) text, q
    print *, text, q, ios
    close (10)

    open (11, file='raw.bin', access='stream')
    write (11) 1, 2_8, 'text', .true., 3.5d0, (1.0, 2.0)
    inquire (11, pos=p)
    print *, p
    write (11, pos=100) 'x'
    inquire (11, size=size, pos=p)
    print *, size, p
    read (11, pos=13) text(1:4)
    print *, text(1:4)
    read (11, pos=21) x
    print *, x
    read (11) c
    inquire (11, pos=p)
    print *, p
    read (11, pos=100, iostat=ios) c
    print *, c, ios
    read (11, iostat=ios) c
    print *, ios
    read (11, pos=98, iostat=ios) text(1:3)
    print *, ios, iachar(text(1:1)), iachar(text(2:2)), text(3:3)
    read (11, pos=99, iostat=ios) text
    print *, 'half of it', ios
    write (11, pos=5) -1_8
    read (11, pos=1) i, size
    print *, i, size
    rewind (11)
    read (11) i
    print *, i
    endfile (11, iostat=ios)
    print *, ios
    inquire (11, size=size)
    print *, size
    read (11, pos=0, iostat=ios) c
    print *, 'pos=0', ios
    close (11)
    open (12, file='raw.bin', access='stream', position='append')
    inquire (12, pos=p)
    print *, p
    write (12) 'tail'
    close (12)

    ! Flags are read up to the end, and INQUIRE knows that this is it.
    open (13, file='flags.txt', access='stream', form='formatted')
    write (13, '(L3)') .true., .false., .true.
    rewind (13)
    do i = 1, 4
        read (13, '(L3)', iostat=ios) flag
        inquire (13, position=text)
        print *, ios, text
    end do
    rewind (13)
    read (13, '(L3)')
    write (13, '(L3)') .false.
    inquire (13, position=text)
    print *, text
    do i = 1, 2
        backspace (13)
        inquire (13, position=text)
        print *, text
    end do
    close (13, status='delete')
    open (14, file='empty.txt')
    read (14, '(A)', iostat=ios) text
    inquire (14, position=text)
    print *, ios, text
    close (14, status='delete')
end program
