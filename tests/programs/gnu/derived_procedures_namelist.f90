! Variables of a namelist group whose types have procedures of their own.
module items
    implicit none
    type item
        integer :: value = 3
        character(4) :: text = 'ab'
        integer :: how = 0
    contains
        procedure :: put, get
        generic :: write(formatted) => put
        generic :: read(formatted) => get
    end type
contains
    subroutine put(dtv, unit, iotype, v_list, iostat, iomsg)
        class(item), intent(in) :: dtv
        integer, intent(in) :: unit
        character(*), intent(in) :: iotype
        integer, intent(in) :: v_list(:)
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        iostat = 0
        select case (dtv%how)
        case (0); write (unit, '(2A,I0,3A)') iotype, ' ', dtv%value, '"', dtv%text, '"'
        case (1); write (unit, *) dtv%value, dtv%text
        case (2); write (unit, '(I0)') dtv%value
        case (3); iostat = 55; iomsg = 'says the procedure'
        end select
    end subroutine
    subroutine get(dtv, unit, iotype, v_list, iostat, iomsg)
        class(item), intent(inout) :: dtv
        integer, intent(in) :: unit
        character(*), intent(in) :: iotype
        integer, intent(in) :: v_list(:)
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        iostat = 0
        select case (dtv%how)
        case (0); read (unit, *, iostat=iostat, iomsg=iomsg) dtv%value
        case (1); read (unit, *, iostat=iostat, iomsg=iomsg) dtv%value, dtv%text
        case (2); read (unit, '(I2)', iostat=iostat, iomsg=iomsg) dtv%value
        end select
    end subroutine
end module
program derived_procedures_namelist
    use items
    implicit none
    type(item) :: x, many(3)
    integer :: a, b, how, status
    character(40) :: message, lines(6)
    namelist /one/ a, x, b
    namelist /several/ a, many, b
    do how = 0, 3
        a = 1
        b = 2
        x%how = how
        many%how = how
        print *, 'how', how
        write (*, one, iostat=status, iomsg=message)
        print *, status
        write (*, several, iostat=status)
        lines = ''
        write (lines, one, iostat=status)
        print '(A)', lines
    end do
    do how = 0, 2
        if (how /= 1) then
            call read_one('&one a=5, x=17, b=6 /', '')
            call read_one('&one a=5 x= 17 b=6 /', '')
            call read_several('&several a=5, many=7 8 9, b=6 /')
        else
            call read_one('&one a=5 x=17 abc b=6 /', '')
            call read_one('&one x=17 abc, b=6 /', '')
            call read_one('&one a=4, x=17 abc', 'b=8 /')
        end if
    end do
    how = 0
    call read_several('&several a=5, many(2)=17, b=6 /')
    call read_several('&several a=5, many(2:3)=17 18, b=6 /')
contains
    subroutine start(text, more)
        character(*), intent(in) :: text, more
        a = -1
        b = -1
        x = item(-1, '?', how)
        many = x
        open (10, file='group.txt')
        write (10, '(A)') text, more, 'next'
        rewind (10)
    end subroutine
    subroutine read_one(text, more)
        character(*), intent(in) :: text, more
        call start(text, more)
        read (10, one, iostat=status, iomsg=message)
        print *, status, a, x%value, x%text, b, text
        close (10, status='delete')
    end subroutine
    subroutine read_several(text)
        character(*), intent(in) :: text
        call start(text, '')
        read (10, several, iostat=status, iomsg=message)
        print *, status, a, many%value, b, text
        close (10, status='delete')
    end subroutine
end program
