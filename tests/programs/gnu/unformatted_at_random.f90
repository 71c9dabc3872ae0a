! Short unformatted statements in any order on a direct file, a stream and a sequential file: items
! that fill a record in part, or are too many for it, or lie behind the end; the way between reading
! and writing; either byte order. BACKSPACE of many lines. What is read and told is summed up, and the
! files compared.
program unformatted_at_random
    implicit none
    integer, parameter :: steps = 4000, recl = 40
    integer(8) :: seed = 12345, sum = 0, place
    integer :: i, j, n, stat, next, small(16), filled
    real(8) :: values(5)
    character(3) :: tag
    character(60) :: line
    open (10, file='direct.bin', form='unformatted', access='direct', recl=recl, status='replace')
    open (11, file='stream.bin', form='unformatted', access='stream', status='replace')
    open (12, file='sequential.bin', form='unformatted', status='replace')
    call all_kinds
    close (10)
    close (11)
    close (12)
    open (10, file='direct_turned.bin', form='unformatted', access='direct', recl=recl, &
          status='replace', convert='big_endian')
    open (11, file='stream_turned.bin', form='unformatted', access='stream', status='replace', &
          convert='swap')
    open (12, file='sequential_turned.bin', form='unformatted', status='replace', convert='swap')
    call all_kinds
    open (13, file='lines.txt', status='replace')
    do i = 1, 3000
        write (13, '(i6,a)') i, repeat('x', drawn(40))
    end do
    do i = 1, 2900
        backspace (13)
        if (mod(i, 97) > 2) cycle
        read (13, '(a)') line
        print *, trim(line)
        backspace (13)
    end do
    write (13, '(a)') 'the end'
    rewind (13)
    n = 0
    do
        read (13, '(a)', iostat=stat) line
        if (stat /= 0) exit
        n = n + 1
    end do
    print *, n, stat
contains
    subroutine all_kinds
        do i = 1, steps
            call numbered(drawn(60) + 1)
            call streamed
            call in_turn
        end do
        print *, sum
    end subroutine

    integer function drawn(below)
        integer, intent(in) :: below
        seed = mod(seed*1103515245_8 + 12345_8, 2147483648_8)
        drawn = int(mod(seed/65536, int(below, 8)))
    end function

    subroutine note(what, value)
        character(*), intent(in) :: what
        integer(8), intent(in) :: value
        sum = mod(sum*31 + value, 1000000007_8)
        if (mod(i, 200) == 0) print *, i, what, value, stat
    end subroutine

    subroutine numbered(record)
        integer, intent(in) :: record
        values = 0
        small = -1
        select case (drawn(7))
        case (0)
            write (10, rec=record, iostat=stat) real(i, 8), i
        case (1)
            write (10, rec=record, iostat=stat) [(real(i + j, 8), j=1, 5)]
        case (2)
            write (10, rec=record, iostat=stat) [(i + j, j=1, 10)]
        case (3)
            read (10, rec=record, iostat=stat) values(1:drawn(5) + 1)
        case (4)
            read (10, rec=record, iostat=stat) small(1:drawn(5)*2 + 1)
        case (5)
            read (10, rec=record - drawn(2), iostat=stat) values(2), small(3), small(5:13:4), tag
        case default
            read (10, rec=record, iostat=stat)
        end select
        if (stat > 0) values = 0
        inquire (10, nextrec=next)
        call note('numbered', int(values(1) + values(2), 8) + small(1) + small(9) + next)
    end subroutine

    subroutine streamed
        values = 0
        tag = '...'
        select case (drawn(8))
        case (0)
            inquire (11, size=place)
            read (11, pos=drawn(int(place) + 1) + 1, iostat=stat)
        case (1, 2)
            write (11, iostat=stat) i, "abc", real(i, 8), cmplx(i, -i)
        case (3)
            write (11, iostat=stat) [(i + j, j=1, drawn(300))]
        case (4)
            read (11, iostat=stat) tag
        case (5)
            read (11, iostat=stat) tag, values(1:3:2), tag
        case (6)
            write (11, iostat=stat)
        case default
            read (11, iostat=stat) (tag, j=1, drawn(200))
        end select
        inquire (11, pos=place)
        call note('streamed', place*7 + ichar(tag(2:2)) + stat)
    end subroutine

    subroutine in_turn
        small = 0
        filled = 0
        select case (drawn(8))
        case (0)
            rewind (12, iostat=stat)
        case (1)
            backspace (12, iostat=stat)
        case (2, 3, 4)
            write (12, iostat=stat) i, (i + j, j=1, drawn(40)), real(i)
        case (5)
            write (12, iostat=stat) (values, j=1, drawn(1000))
        case (6)
            read (12, iostat=stat) small(1:drawn(4))
        case default
            read (12, iostat=stat) small
        end select
        call note('in turn', int(small(1), 8)*3 + small(3) + stat)
        if (stat == -1) backspace (12)
    end subroutine
end program
