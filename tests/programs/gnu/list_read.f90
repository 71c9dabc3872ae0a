! List-directed input over records: nulls, repeats, slashes, strings that go on, complex values.
! run: $PROGRAM < /dev/null
! run: printf '1 2\n3 "four\nmore" 5*7 , , 8/ rest\n(1.5,\n -2.5) T .false. "q" 9\n' | $PROGRAM stdin
program list_read
    implicit none
    integer :: i, ios, a, b, c, many(10)
    real :: x
    complex :: z
    logical :: p, q
    character(12) :: s, t
    character(6) :: argument
    call get_command_argument(1, argument)
    if (argument == 'stdin') then
        many = -1
        b = -9
        i = -5
        read *, a, b, c, s, many, i
        print *, a, b, c, s, many, i
        read (*, *, iostat=ios) z, p, q, s, i
        print *, z, p, q, s, i, ios
        read (*, *, iostat=ios) i
        print *, ios
        stop
    end if
    call make("1,2,,4")
    call make("1,,3 /  9 9 9")
    call make("3*5 6")
    call make("2*,7 8")
    call make(" , , 1 2")
    call make("1 2"//char(10)//"3 4")
    call make("1"//char(10)//char(10)//"  2"//char(10)//"3,"//char(10)//"4")
    call make("1;2;3;4")
    call make("1	2	3	4")
    call make("1 2 3 4 trailing words that nobody reads")
    call make("12345678901 2 3 4")
    call make("1 2x 3 4")
    call make("1 2.0 3 4")
    call make("0*5 1 2 3")
    call make("2*1*3 4")
    call make("1, 2*, 3")
    call make("/")
    call make("")
    call make("1 2 3")
    open (10, file='strings.txt')
    write (10, '(A)') "'it''s' ""a """"q"""" b""", "plain words", "'goes", "on' 2*'rep'", "'' x", &
        "a,b", "3*z", "'one'two", "/", "'long, with / and , and ; inside'"," 2*""quoted"""
    rewind (10)
    do i = 1, 12
        s = '????????????'
        t = s
        read (10, *, iostat=ios) s, t
        print *, '['//s//']['//t//']', ios
    end do
    close (10)
    open (10, file='values.txt')
    write (10, '(A)') "(1,2) (3.5 , -4e2)", "( 1 , 2 )", "(1", ",2)", "(1,", "2)", "2*(7,8)", "(1;2)", &
        "T F .TRUE. .false. tr FA", "t,f,,/", "inf -Infinity nan NaN(abc)", "1e5 1d5 1q5 1+5 -1.5-5 .5 5.", &
        "1e 2", "++1", "1.5.5", "3*1.5", "0x1F"
    rewind (10)
    do i = 1, 5
        z = (-1, -1)
        read (10, *, iostat=ios) z
        print *, z, ios
    end do
    rewind (10)
    do i = 1, 8
        read (10, *)
    end do
    p = .false.
    q = .true.
    read (10, *, iostat=ios) p, q
    print *, p, q, ios
    read (10, *, iostat=ios) p, q
    print *, p, q, ios
    do i = 1, 7
        x = -9
        read (10, *, iostat=ios) x
        print *, x, ios
    end do
    close (10)
contains
    subroutine make(content)
        character(*), intent(in) :: content
        integer :: v(4)
        open (9, file='list.txt', access='stream', status='replace')
        write (9) content//char(10)
        close (9)
        open (9, file='list.txt')
        v = -1
        read (9, *, iostat=ios) v
        print *, v, ios
        read (9, *, iostat=ios) s
        if (ios == 0) print *, '  then ', s
        close (9)
    end subroutine
end program
