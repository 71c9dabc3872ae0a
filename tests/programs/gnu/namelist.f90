! NAMELIST: what a WRITE lays out on units and internal files, in all modes, and what a READ takes
! back. Questions on standard input are another matter: their answers are ours.
! run: $PROGRAM < /dev/null
! run: printf 'noise\n&other i=9 /\n&setup i=4, dt=.5 name="from stdin" /\nnext\n' | $PROGRAM stdin
module shapes
    implicit none
    type point
        real :: x = 0, y = 0
    end type
    type mark
        integer :: number = 0
        character(4) :: label = ''
        type(point) :: at(2)
        logical :: seen = .false.
    end type
    type, extends(mark) :: flag
        complex :: wind = (0, 0)
    end type
end module
program namelists
    use shapes
    implicit none
    integer(1) :: i1 = -128
    integer(2) :: i2 = 7
    integer :: i = 1, many(23), some(-1:1, 2), none(0)
    integer(8) :: i8 = 9007199254740993_8
    integer(16) :: iq = -1
    real :: r = 1.5, rs(9)
    real(8) :: dt = 0.1d0, tiny8(3) = 1d-300
    real(10) :: x87 = 1.1_10
    real(16) :: quad(2) = 0.1_16
    complex :: z = (1, -2)
    complex(8) :: zs(4) = (0.5d0, 1d30)
    logical :: l = .true., ls(13)
    character(10) :: name = 'it''s "q"'
    character(3) :: names(7) = ['a', 'b', 'b', 'b', 'c', 'd', 'e']
    type(mark) :: m, ms(0:1)
    type(flag) :: f
    integer, allocatable :: allocated_one(:)
    character(:), allocatable :: text
    integer, target :: field(6) = [1, 2, 3, 4, 5, 6]
    integer, pointer :: window(:)
    character(400) :: line
    character(70) :: lines(5)
    character(6) :: argument
    integer :: ios, k
    namelist /setup/ i, dt, name
    namelist /all/ i1, i2, i, many, some, none, i8, iq, r, rs, dt, tiny8, x87, quad, z, zs, l, ls, &
        name, names, m, ms, f, allocated_one, text, window
    call get_command_argument(1, argument)
    if (argument == 'stdin') then
        read (*, setup)
        write (*, setup)
        read (*, '(a)') line
        print *, trim(line)
        stop
    end if
    many = [(k, k=1, 23)]
    some = 4
    rs = [(k*0.37, k=1, 9)]
    ls = [(mod(k, 3) == 0, k=1, 13)]
    m%label = 'm'
    m%at(2)%y = -1
    ms(1) = m
    f%mark = m
    allocated_one = [3, 3, 3, 5]
    text = 'deferred'
    window => field(2:5)

    write (*, all)
    write (*, all, delim='apostrophe', sign='plus')
    write (*, setup, delim='none')
    write (*, setup, decimal='comma')
    open (10, file='modes', delim='apostrophe', decimal='comma')
    write (10, all)
    write (10, setup, delim='quote')
    close (10)
    line = ''
    write (line, setup)
    print *, trim(line)
    write (lines, setup)
    print '(a)', lines
    open (10, file='short', recl=20)
    write (10, setup, iostat=ios)
    print *, ios
    close (10, status='delete')

    ! Everything comes back.
    open (10, file='there_and_back')
    write (10, all)
    i1 = 0; i2 = 0; i = 0; many = 0; some = 0; i8 = 0; iq = 0; r = 0; rs = 0; dt = 0; tiny8 = 0
    x87 = 0; quad = 0; z = 0; zs = 0; l = .false.; ls = .false.; name = ''; names = ''
    m = mark(); ms = mark(); f = flag(); allocated_one = 0; text = '????????'; field = 0
    rewind (10)
    read (10, all)
    write (10, all)
    close (10)
    print *, field

    ! The forms of input. Each case is a file of its own.
    open (10, file='cases')
    call try('&setup i=1,dt=2,name="x"/')
    call try('$SETUP I = 1  DT = 2.5d1 NAME = ''y'' $END')
    call try('&other i=3 / junk & more'//char(10)//' &SetUp'//char(9)//'i=5'//char(10)//'&end')
    call try('&setup ! comment, &setup i=9 /'//char(10)//' i=6 ! one'//char(10)// &
             '! two'//char(10)//' dt=1 /')
    call try('&setup i'//char(10)//'='//char(10)//'7'//char(10)//', name="two'//char(10)//'lines" /')
    call try('&setup name(3:4)="##" name(:1)="^" /')
    call try('&setup i= dt= name= /')
    call try('&setup i=1 i=2 dt=,name="last"; i=3 /')
    call try('&all many=3*7,,9, some(0,1:2)=1 2, rs(2:8:3)=2*9.5 /')
    call try('&all many(20)=4*1 names(2)="n" "m" names(5:6)(2:2)=2*"Z" /')
    call try('&all z=( 1.5 , -2 ) zs=2*(1,2),(3,'//char(10)//'4) ls=3*T,F .true. .f. l=f /')
    call try('&all m%number=3 m%at(2)%x=4.5 ms(1)%label="L" ms(0)%at%x=8, 9 m%label(2:2)="?" /')
    call try('&all m=5,"five",1,2,3,4,T ms%number=6,7 f%number=8 f%mark%label="f" /')
    call try('&all ms=1,"a",,,,,T,2,"b" f%wind=(1,2) /')
    call try('&all rs=1 inf,-nan,1e3 2+2 iq=170141183460469231731687303715884105727 /')
    call try('&all window(2)=-2 text="changed" allocated_one(2:3)=1 2 some(:,2)=7,8,9 /')
    call try('&setup'//char(13)//char(10)//'i=8'//char(13)//char(10)//'/'//char(13))
    ! Not what they should be.
    call try('&setup nosuch=1 /')
    call try('&setup i=1.5 /')
    call try('&setup i=1,2 /')
    call try('&setup i 5 /')
    call try('&setup i=5 &other /')
    call try('&setup name=bare /')
    call try('&all many(24)=1 /')
    call try('&all many(0)=1 /')
    call try('&all some(1)=1 /')
    call try('&all m%nosuch=1 /')
    call try('&all i%number=1 /')
    call try('&all i1=128 /')
    call try('&all names(1)(0:1)="x" /')
    call try('&setup i=1')
    call try('nothing to see')
    call try('')
    close (10, status='delete')
contains
    ! Reads both groups from the text, and shows what is on the unit behind the one that fits.
    subroutine try(input)
        character(*), intent(in) :: input
        integer :: ios
        character(20) :: rest
        rewind (10)
        write (10, '(a)') input, '! behind'
        rewind (10)
        if (index(input, '&all') > 0) then
            read (10, all, iostat=ios)
            if (ios == 0) write (*, all)
        else
            read (10, setup, iostat=ios)
            if (ios == 0) write (*, setup)
        end if
        rest = ''
        if (ios == 0) read (10, '(a)') rest
        print *, ios, trim(rest)
    end subroutine
end program
