! Derived types with procedures for their output: child statements of every kind go on in the
! parent's record, on units and internal files, nested, with what they return.
module items
    implicit none
    integer, parameter :: plain = 0, in_list = 1, texts = 2, two_lists = 3, two_records = 4, &
                          tabbed = 5, stays = 6, signed = 7, several = 8, nothing = 9, &
                          empty_list = 10, mixed = 11, comma = 12, delimited = 13, rounded = 14, &
                          inner_format = 15, inner_list = 16, dollar = 17, spaced = 18, &
                          flushed = 19, fails = 20, at_end = 21, at_record_end = 22, no_text = 23
    type base
        integer :: value = 3
        integer :: how = plain
    contains
        procedure :: put => put_base
        generic :: write(formatted) => put
    end type
    type, extends(base) :: named
        character(5) :: name = 'none'
    contains
        procedure :: put => put_named
    end type
    type holder
        type(base) :: parts(2)
        integer :: behind = 7
    end type
contains
    recursive subroutine put_base(dtv, unit, iotype, v_list, iostat, iomsg)
        class(base), intent(in) :: dtv
        integer, intent(in) :: unit
        character(*), intent(in) :: iotype
        integer, intent(in) :: v_list(:)
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        type(base) :: inner
        character(20) :: fmt
        iostat = 0
        select case (dtv%how)
        case (plain)
            if (size(v_list) > 0) then
                write (fmt, '(A,I0,A)') '(A,I', v_list(1), ',99I3)'
                write (unit, fmt) iotype, dtv%value, v_list(2:)
            else
                write (unit, '(A,A,I0)') iotype, ':', dtv%value
            end if
        case (in_list); write (unit, *) dtv%value
        case (texts); write (unit, *) 'one', 'two'
        case (two_lists); write (unit, *) 'one'; write (unit, *) 'two'; write (unit, '(A)') '3'
        case (two_records); write (unit, '(A,/,A)') 'one', 'two'
        case (tabbed); write (unit, '(T30,A,TL3,A,TR2,A)') 'abcd', 'x', 'y'
        case (stays); write (unit, '(A)', advance='no') 'no'
        case (signed); write (unit, '(SP,I0,3P,F8.1)') dtv%value, 2.5
        case (several); write (unit, '(I2,:,",")') 1, 2, 3
        case (nothing); continue
        case (empty_list); write (unit, *)
        case (mixed); write (unit, *) 1.5, (1.0, 2.0), .true.
        case (comma); write (unit, '(F6.1)', decimal='comma', sign='plus') 2.5
        case (delimited); write (unit, *, delim='quote') 'it"s'
        case (rounded); write (unit, '(F6.1)', round='up') 2.51
        case (inner_format); inner%value = dtv%value + 1; write (unit, '("{",DT"in",I2,"}")') inner, 5
        case (inner_list); inner%value = dtv%value + 1; write (unit, *) 1, inner, 'x'
        case (dollar); write (unit, '(A,$)') 'dollar'
        case (spaced); write (unit, '(2(I3,1X))') dtv%value, 5
        case (flushed); write (unit, '(A)') 'a'; flush (unit); write (unit, '(A)') 'b'
        case (fails); iostat = 77; iomsg = 'what the procedure says'
        case (at_end); iostat = -1
        case (at_record_end); iostat = -2
        case (no_text); iostat = 5
        end select
    end subroutine
    subroutine put_named(dtv, unit, iotype, v_list, iostat, iomsg)
        class(named), intent(in) :: dtv
        integer, intent(in) :: unit
        character(*), intent(in) :: iotype
        integer, intent(in) :: v_list(:)
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        write (unit, '(3A,I0)', iostat=iostat, iomsg=iomsg) iotype, '/', dtv%name, dtv%value
    end subroutine
end module

program derived_procedures
    use items
    implicit none
    type(base) :: x, many(3)
    type(named) :: n
    type(holder) :: h
    class(base), allocatable :: any, anys(:)
    character(250) :: line, lines(3), format
    character(40) :: message
    integer :: how, status, unit
    do how = plain, flushed
        x = base(42, how)
        print '(A,I0)', 'how ', how
        ! gfortran leaves what the buffer held in the columns that a child passes.
        if (how == tabbed) cycle
        write (*, '(A,DT,A)') '[', x, ']'
        write (*, '(DT,DT)') x, x
        write (*, *) x
        write (*, *) 'a', x, 'b', x, x, 1, x, 2.5, x%how
        write (*, '(SP,DT,F6.1,1X,A)') x, 2.51, 'e'
        write (*, '(DT,F6.1,A)', decimal='comma', round='up') x, 2.51, 'e'
        write (*, *, delim='apostrophe') 'a', x, 'b'
        write (*, '(A,DT,A)', advance='no') '[', x, ']'
        write (*, '(A)') '|next'
        if (how == stays .or. how == flushed) cycle
        line = ''
        write (line, '(A,DT,A)', iostat=status) '[', x, ']'
        print *, status, trim(line), '$'
        line = ''
        write (line, *, iostat=status) 'a', x, 'b', x, x, 1
        print *, status, trim(line), '$'
        lines = ''
        write (lines, '(A,DT,A,/,A)', iostat=status) '[', x, ']', 'second'
        print *, status, trim(lines(1)), '$', trim(lines(2)), '$', trim(lines(3)), '$'
    end do
    x = base(how=tabbed)
    line = ''
    write (line, '(A,DT,A)') '[', x, ']'
    print *, trim(line)
    x = base(8)
    many = x
    n%value = 9
    allocate (any, source=n)
    allocate (anys(2), source=n)
    format = '(A,DT"a name of some length"(5,6,7),DT''it''''s''(3),DT(9))'
    write (*, format) 'list', x, x, x
    write (*, '(3(DT,1X))') many
    print *, any, anys, n
    print '(DT"poly")', anys
    print '(2DT)', h%parts
    print *, h%parts, h%behind
    do how = fails, no_text
        x%how = how
        message = 'as it was'
        status = 0
        write (*, '(A,DT,A)', iostat=status, iomsg=message) '[', x, ']'
        print *, how, status, message
        write (*, *, iostat=status, iomsg=message) 'a', x, 'b'
        print *, how, status, message
        write (line, *, iostat=status) 'a', x, 'b'
        print *, how, status, trim(line)
    end do
    x%how = plain
    format = '(I5)'
    write (*, format, iostat=status) x
    print *, status
    format = '(DT)'
    write (*, format, iostat=status) 5
    print *, status
    open (newunit=unit, file='out.txt')
    write (unit, '(A,DT)') 'to a file ', any
    write (unit, *) x, 'and on', n
    x%how = two_records
    write (unit, *) x, x
    close (unit)
    open (newunit=unit, file='stream.txt', access='stream', form='formatted')
    write (unit, '(DT,A)') x, 'tail'
    write (unit, '(DT,A)', pos=3) any, 'there'
    close (unit)
end program
