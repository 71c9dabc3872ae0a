! Derived types with procedures for their input, and for unformatted records.
module items
    implicit none
    integer, parameter :: field = 0, in_list = 1, two_values = 2, two_records = 3, text = 4, &
                          text_staying = 5, inner_format = 6, inner_list = 7, nothing = 8, &
                          bare = 9, skipping = 10, lenient = 11, fails = 12, at_end = 13
    type item
        integer :: value = -1
        integer :: how = field
        character(6) :: seen = '??????'
    contains
        procedure, private :: get, put_raw, get_raw
        generic :: read(formatted) => get
        generic :: write(unformatted) => put_raw
        generic :: read(unformatted) => get_raw
    end type
contains
    recursive subroutine get(dtv, unit, iotype, v_list, iostat, iomsg)
        class(item), intent(inout) :: dtv
        integer, intent(in) :: unit
        character(*), intent(in) :: iotype
        integer, intent(in) :: v_list(:)
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        type(item) :: inner
        integer :: k
        k = -1
        iostat = 0
        select case (dtv%how)
        case (field); read (unit, '(I2)', iostat=iostat, iomsg=iomsg) dtv%value
        case (in_list); read (unit, *, iostat=iostat, iomsg=iomsg) dtv%value
        case (two_values); read (unit, *, iostat=iostat, iomsg=iomsg) dtv%value, k
        case (two_records); read (unit, '(I2,/,I2)', iostat=iostat, iomsg=iomsg) dtv%value, k
        case (text); read (unit, '(A)', iostat=iostat, iomsg=iomsg) dtv%seen
        case (text_staying); read (unit, '(A)', advance='no', iostat=iostat) dtv%seen
        case (inner_format); read (unit, '(1X,DT)', iostat=iostat) inner; dtv%value = inner%value
        case (inner_list); read (unit, *, iostat=iostat) inner; dtv%value = inner%value
        case (nothing); continue
        case (bare); read (unit, *, iostat=iostat)
        case (skipping); read (unit, '(/)'); read (unit, '(I2)', iostat=iostat) dtv%value
        case (lenient); read (unit, '(A)', iostat=iostat) dtv%seen; iostat = 0
        case (fails); iostat = 55; iomsg = 'says the procedure'
        case (at_end); iostat = -1
        end select
        if (k /= -1) dtv%value = 1000*dtv%value + k
    end subroutine
    subroutine put_raw(dtv, unit, iostat, iomsg)
        class(item), intent(in) :: dtv
        integer, intent(in) :: unit
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        iostat = 99
        iomsg = 'not this one'
        if (dtv%how == fails) return
        write (unit, iostat=iostat, iomsg=iomsg) 'T', dtv%value
        write (unit, iostat=iostat, iomsg=iomsg) dtv%how
    end subroutine
    subroutine get_raw(dtv, unit, iostat, iomsg)
        class(item), intent(inout) :: dtv
        integer, intent(in) :: unit
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        character :: letter
        read (unit, iostat=iostat, iomsg=iomsg) letter, dtv%value
        if (iostat == 0) read (unit, iostat=iostat, iomsg=iomsg) dtv%how
    end subroutine
end module

program derived_procedures_read
    use items
    implicit none
    type(item) :: x, y
    integer :: how, status, a, b
    character(40) :: rest, lines(3)
    character(40) :: message
    lines = [character(40) :: '11 22 33 44', '55 66 77 88', '12 13 14 15']
    open (10, file='numbers.txt')
    write (10, '(A)') lines, '21 22 23 24', '31 32 33 34'
    do how = field, at_end
        print '(A,I0)', 'how ', how
        if (how /= in_list .and. how /= two_values .and. how /= inner_list .and. how /= bare) then
            ! gfortran loses a character when a formatted parent reads on behind a list.
            call from_file('(I3,DT,I3)', 'yes')
            call from_file('(I3,DT)', 'no')
            call from_lines()
        end if
        if (how /= inner_format) call from_list(how)  ! it loses one there too
    end do
    call separators()
    call raw()
contains
    subroutine start()
        rewind (10)
        a = -1; b = -1; message = 'as it was'
        x = item(how=how)
        y = x
    end subroutine
    subroutine show()
        print *, status, a, x%value, '[', x%seen, ']', b, y%value, '[', y%seen, ']', message
    end subroutine
    subroutine from_file(format, advance)
        character(*), intent(in) :: format, advance
        call start()
        if (advance == 'no') then
            read (10, format, advance='no', iostat=status, iomsg=message) a, x
        else
            read (10, format, iostat=status, iomsg=message) a, x, b
        end if
        call show()
        read (10, '(A)', iostat=status) rest
        print *, status, rest
    end subroutine
    subroutine from_lines()
        if (how == text_staying) return
        call start()
        read (lines, '(I3,DT,I3)', iostat=status, iomsg=message) a, x, b
        call show()
        if (how == two_records .or. how == skipping) return
        call start()
        read (lines(1), '(I3,DT,I3)', iostat=status, iomsg=message) a, x, b
        call show()
    end subroutine
    subroutine from_list(how)
        integer, intent(in) :: how
        call start()
        read (10, *, iostat=status, iomsg=message) a, x, b
        call show()
        if (how == two_values .or. how >= fails) return
        call start()
        read (10, *, iostat=status, iomsg=message) x, y
        call show()
        read (10, '(A)', iostat=status) rest
        print *, status, rest
    end subroutine
    ! Where a list-directed READ calls the procedure and where it doesn't.
    subroutine separators()
        character(12), parameter :: texts(11) = [character(12) :: ',abc,def', '/abc/def', &
            '  abcde f', '1,abcdef', '1 , abcdef', '1 /abc', '1,,abcdef', '1 2*abcd', '2*1 abcdef', &
            '', ',,abcdef']
        integer :: i
        do i = 1, size(texts)
            open (11, file='line.txt')
            write (11, '(A)') trim(texts(i)), 'the next line'
            how = text
            call start()
            rewind (11)
            read (11, *, iostat=status) x
            call show()
            call start()
            rewind (11)
            read (11, *, iostat=status) a, x
            call show()
            close (11, status='delete')
        end do
    end subroutine
    subroutine raw()
        type(item) :: many(3)
        integer :: i
        open (12, file='raw.dat', form='unformatted')
        many = [(item(i, how=10*i), i=1, 3)]
        write (12) 1, many(2), 2
        write (12, iostat=status, iomsg=message) 1, item(how=fails), 2
        print *, status, message
        write (12) many, 5
        rewind (12)
        x = item()
        read (12) a, x, b
        print *, a, x%value, x%how, b
        read (12, iostat=status) a
        print *, status, a
        many = item()
        read (12, iostat=status) many
        print *, status, many%value, many%how
        read (12, iostat=status) x
        print *, status
        close (12)
        open (12, file='raw.stream', form='unformatted', access='stream', convert='big_endian')
        write (12) many
        rewind (12)
        read (12) many(2:3)
        inquire (12, pos=i)
        print *, many%value, i
        close (12)
    end subroutine
end program
