! What gfortran's own run-time gets wrong, by the standard. The text beside this program has it right.
module cents
    implicit none
    type money
        integer :: cents = 0
        integer :: how = 0
    contains
        procedure :: put
        procedure :: get
        generic :: write(formatted) => put
        generic :: read(formatted) => get
    end type
contains
    subroutine put(dtv, unit, iotype, v_list, iostat, iomsg)
        class(money), intent(in) :: dtv
        integer, intent(in) :: unit, v_list(:)
        character(*), intent(in) :: iotype
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        iostat = 0
        select case (dtv%how)
        case (0); write (unit, '(I3)', advance='no', iostat=iostat, iomsg=iomsg) dtv%cents
        case (1); write (unit, '(I3)', advance='yes', iostat=iostat, iomsg=iomsg) dtv%cents
        case (2); write (unit, '(I3,TL2)', iostat=iostat, iomsg=iomsg) dtv%cents
        end select
    end subroutine
    subroutine get(dtv, unit, iotype, v_list, iostat, iomsg)
        class(money), intent(inout) :: dtv
        integer, intent(in) :: unit, v_list(:)
        character(*), intent(in) :: iotype
        integer, intent(out) :: iostat
        character(*), intent(inout) :: iomsg
        read (unit, '(I3)', advance='no', iostat=iostat, iomsg=iomsg) dtv%cents
    end subroutine
end module

program corrected
    use cents
    implicit none
    type(money) :: purse(3)
    character(20) :: line
    character(kind=4, len=4) :: wide
    character(kind=4, len=6) :: taken
    integer :: i, ios, n
    namelist /group/ n

    ! ADVANCE= of a child has no effect, in memory neither.
    purse%cents = [1, 22, 333]
    do i = 0, 1
        purse%how = i
        write (line, '(*(DT,:,","))', iostat=ios) purse
        print '(I0,A)', ios, '|'//line//'|'
    end do
    read (line, '(*(DT,:,1X))', iostat=ios) purse
    print *, ios, purse%cents
    ! What a child has moved back over, the next item writes over.
    purse%how = 2
    write (line, '(2DT)') purse(:2)
    print '(A)', '|'//line//'|'

    ! T and TL of a formatted stream count from its record's start.
    open (10, file='stream.txt', access='stream', form='formatted')
    write (10, '(A,TL2,A,/,A,T3,A,/,TR2,A,TL1,A,T12,A)') 'abcdef', 'XY', 'abcdef', 'XY', 'abc', 'X', '.'
    ! A WRITE behind a BACKSPACE makes its record the last one.
    write (10, '(A)') 'to be replaced by less'
    backspace (10)
    write (10, '(A)') 'less'
    rewind (10)
    call show(10)
    close (10, status='delete')

    ! ENDFILE ends a record that ADVANCE='NO' has left open.
    open (11, file='lines.txt')
    write (11, '(A)', advance='no') 'left open'
    endfile (11, iostat=ios)
    print *, ios
    rewind (11)
    call show(11)
    close (11, status='delete')

    ! A text of one kind is read into another; no record follows the only one, of whatever kind.
    line = '.abcdef'
    read (line, '(1X,A)') taken
    print '(*(I0,:,1X))', (iachar(taken(i:i)), i=1, len(taken))
    write (wide, '(A)', iostat=ios) 'a', 'b'
    print *, ios
    line = ''
    read (line, '(I3)', iostat=ios) n, i
    print *, ios
    read (line, nml=group, iostat=ios)
    print *, ios

contains
    subroutine show(unit)
        integer, intent(in) :: unit
        character(30) :: text
        do
            read (unit, '(A)', end=1) text
            print '(A)', '|'//trim(text)//'|'
        end do
1       continue
    end subroutine
end program
