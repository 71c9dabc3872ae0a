! Namelist output and input.
program namelists
    implicit none
    type inner
        integer :: a = 1
        real :: b(2) = [0.5, 1.5]
    end type
    type outer
        type(inner) :: in(2)
        character(4) :: name = 'none'
    end type
    integer :: i = 5, list(6) = [1, 1, 1, 2, 3, 3], table(2, 3) = 7, ios
    real(8) :: x = 1.5d0
    complex :: z = (1.0, -2.0)
    logical :: flag = .true., flags(3) = [.true., .false., .true.]
    character(12) :: text = 'it''s', words(2) = ['one', 'two']
    type(outer) :: o
    namelist /all_of_it/ i, list, table, x, z, flag, flags, text, words, o
    namelist /few/ i, text, list
    character(80) :: lines(6)
    write (*, nml=all_of_it)
    open (10, file='nml.txt', delim='quote')
    write (10, nml=all_of_it)
    write (10, few)
    rewind (10)
    list = 0
    o%in(2)%b = 0
    text = ''
    read (10, nml=all_of_it)
    print *, list, o, text
    read (10, few, iostat=ios)
    print *, ios
    read (10, few, iostat=ios)
    print *, ios
    close (10)
    open (11, file='in.txt')
    write (11, '(A)') ' skipped', '! comment', '&FEW i = 9 ! note', ' list(2:4)=3*8, LIST(6) = -1', &
        " text='a b, c'", '/', '&few list=1 2 , , 4*', 'i=3/', '$few text="x" $end', &
        '&few nothing=5 /', '&few i=abc /', '&few list(9)=1 /', "&few text(2:3)='ZZ' i=77 &end", &
        '&few', '/', '&few i=1'
    rewind (11)
    do
        read (11, few, iostat=ios)
        print *, ios, i, list, text
        if (ios == -1) exit
        if (ios > 0) print *, 'failed'
    end do
    close (11)
    lines = ''
    write (lines, few)
    print '(A)', lines
    lines(1) = '&few i=42, text=''inside'' /'
    read (lines, few)
    print *, i, text
    open (12, file='comma.txt', decimal='comma', delim='apostrophe')
    write (12, all_of_it)
    rewind (12)
    x = 0
    read (12, all_of_it)
    print *, x, z
    close (12)
end program
