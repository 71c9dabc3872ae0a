! Derived types in I/O lists: component by component, nested, arrays of them; defined I/O.
module shapes
    implicit none
    type point
        real(8) :: x = 0, y = 0
    end type
    type body
        character(6) :: name = 'none'
        type(point) :: corners(2)
        integer :: tags(3) = [1, 2, 3]
        logical :: solid = .true.
        complex :: z = (1.0, -1.0)
    end type
    type, extends(point) :: weighted
        real :: weight = 0.5
    end type
    type money
        integer :: cents = 0
    contains
        procedure :: put => put_money
        procedure :: get => get_money
        generic :: write (formatted) => put
        generic :: read (formatted) => get
    end type
    type raw
        integer :: bits = 0
    contains
        procedure :: put => put_raw
        procedure :: get => get_raw
        generic :: write (unformatted) => put
        generic :: read (unformatted) => get
    end type
contains
    subroutine put_money(dtv, unit, iotype, v_list, iostat, iomsg)
        class(money), intent(in) :: dtv
        integer, intent(in) :: unit, v_list(:)
        character(*), intent(in) :: iotype
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        character(20) :: form
        if (iotype == 'LISTDIRECTED') then
            write (unit, '("EUR",I0,".",I2.2)', iostat=iostat, iomsg=iomsg) dtv%cents/100, &
                mod(dtv%cents, 100)
        else if (size(v_list) == 1) then
            write (form, '("(I",I0,",A)")') v_list(1)
            write (unit, form, iostat=iostat, iomsg=iomsg) dtv%cents, trim(iotype)
        else
            write (unit, '(A,I0,1X,I0)', iostat=iostat, iomsg=iomsg) trim(iotype), size(v_list), &
                dtv%cents
        end if
    end subroutine
    subroutine get_money(dtv, unit, iotype, v_list, iostat, iomsg)
        class(money), intent(inout) :: dtv
        integer, intent(in) :: unit, v_list(:)
        character(*), intent(in) :: iotype
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        integer :: whole, part
        character :: c
        if (iotype == 'LISTDIRECTED') then
            read (unit, *, iostat=iostat, iomsg=iomsg) whole, part
        else
            read (unit, '(I4,A1,I2)', iostat=iostat, iomsg=iomsg) whole, c, part
        end if
        dtv%cents = 100*whole + part
    end subroutine
    subroutine put_raw(dtv, unit, iostat, iomsg)
        class(raw), intent(in) :: dtv
        integer, intent(in) :: unit
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        write (unit, iostat=iostat, iomsg=iomsg) 'R', dtv%bits, -dtv%bits
    end subroutine
    subroutine get_raw(dtv, unit, iostat, iomsg)
        class(raw), intent(inout) :: dtv
        integer, intent(in) :: unit
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        character :: c
        integer :: other
        read (unit, iostat=iostat, iomsg=iomsg) c, dtv%bits, other
        if (c /= 'R' .or. other /= -dtv%bits) iostat = 77
    end subroutine
end module

program derived_types
    use shapes
    implicit none
    type(body) :: b, many(2)
    type(weighted) :: w
    type(money) :: m, purse(3)
    type(raw) :: r, rs(4)
    integer :: ios
    character(60) :: text
    b%corners(2) = point(3.5d0, -4.25d0)
    print *, b
    many(1) = b
    many(2)%name = 'other'
    print '(A6,4F7.2,3I3,L2,2F5.1)', many
    print *, many%tags(2), many%corners(1)%x, many(:)%name
    print *, w
    open (10, status='scratch', form='unformatted')
    write (10) many
    rewind (10)
    many%name = 'lost'
    read (10) many
    print *, many%name, many(1)%corners
    close (10)
    open (11, status='scratch')
    write (11, *) b
    rewind (11)
    read (11, *) many(2)%name, many(2)%corners, many(2)%tags, many(2)%solid, many(2)%z
    print *, many(2)
    close (11)

    m%cents = 1234
    purse%cents = [1, 200, 30000]
    print *, m
    print *, 'before', m, 'after', 5
    print *, purse
    print '(DT)', m
    print '(DT"pay"(8),A)', m, '|'
    print '(DT"all"(1,2,3),2X,I3)', m, 7
    print '(3(DT(6),:,";"))', purse
    write (text, '(A,DT,A)') '[', m, ']'
    print *, trim(text)
    write (text, *) m, m
    print *, trim(text)
    open (12, file='money.txt')
    write (12, '(A)') '  12.34  56,78', ' 3 4', '5 6 7 8'
    rewind (12)
    read (12, '(DT,1X,DT)', iostat=ios) m, purse(1)
    print *, m%cents, purse(1)%cents, ios
    read (12, *) m
    print *, m%cents
    close (12)
    open (13, file='raw.bin', form='unformatted')
    r%bits = 5
    rs%bits = [1, 2, 3, 4]
    write (13) r
    write (13) 99, rs, r
    rewind (13)
    rs%bits = 0
    read (13) rs(1)
    read (13) ios, rs
    print *, ios, rs%bits
    close (13)
end program
