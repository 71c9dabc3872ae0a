! Internal files: arrays of any stride and rank, parts of derived types, more records than one.
program internal_files
    implicit none
    type line
        integer :: number = 7
        character(9) :: text = '.........'
    end type
    type(line) :: lines(4)
    character(8) :: a(10), b(2, 3, 2), c
    character(6), allocatable :: d(:)
    character(:), allocatable :: e
    character(5), pointer :: p(:)
    character(5), target :: t(6)
    character(100000), allocatable :: huge
    integer :: i, j, k, ios, values(12)
    real :: x
    a = '--------'
    write (a, '(I4)') 1, 2, 3
    call show('whole', a)
    a = '--------'
    write (a(1:9:3), '(A)') 'x', 'y', 'z'
    call show('stride 3', a)
    write (a(10:1:-4), '(I3)') 1, 2, 3
    call show('backwards', a)
    b = '~~~~~~~~'
    write (b(2, :, :), '(A,I2)') ('row', i, i=1, 6)
    print '(A)', b
    b = '~~~~~~~~'
    write (b(:, 3:1:-2, 2:1:-1), '(I3,/,I5)') (i, i=1, 8)
    print '(A)', b
    write (lines%text, '(F6.2,A1)') (i*1.5, '!', i=1, 4)
    print *, lines
    write (lines(4:1:-2)%text(3:6), '(A)') 'abcd', 'efgh'
    print *, lines
    allocate (d(0:2))
    write (d, '(A)', iostat=ios) 'a', 'b', 'c', 'd'
    print *, d(1:), ios
    deallocate (d)
    allocate (d(0))
    write (d, '(A)', iostat=ios) 'a'
    print *, size(d), ios
    t = '*****'
    p => t(6:2:-2)
    write (p, '(I2)') 6, 4, 2
    print *, t
    read (p, '(I2)') values(1:3)
    print *, values(1:3)
    read (t(2:6:2), *) i, j, k
    print *, i, j, k
    allocate (character(30) :: e)
    write (e, *) 1, 2
    print *, e//'|'
    write (e, '(3(I5,:,","))') 1, 2, 3
    print *, e//'|'
    write (e(5:12), '(A)') 'inside'
    print *, e//'|'
    c = ' '
    write (c, '(A)', iostat=ios) 'much too long'
    print *, ios, c
    write (c, *, iostat=ios) 'much too long'
    print *, ios, c
    write (c, '(I3,/,I3)', iostat=ios) 1, 2
    print *, ios
    read (c, '(I3)', iostat=ios) i, j
    print *, ios
    c = ' '
    read (c, *, iostat=ios) i
    print *, 'blank', ios
    c = '1 2'
    read (c, *, iostat=ios) i, j, k
    print *, 'end', ios, i, j
    read (c(1:0), '(I3)', iostat=ios) i
    print *, 'empty', ios
    read (c(1:0), *, iostat=ios) i
    print *, 'empty', ios
    a(1:3) = ['1,2     ', '3 4     ', '5/6     ']
    values = -1
    read (a(1:3), *) values
    print *, values
    a(1:2) = ["'abc    ", "def' 7  "]
    read (a(1:2), *) e, i
    print *, e, i
    allocate (huge)
    write (huge, '(20000I5)') (mod(i, 10000), i=1, 20000)
    read (huge, '(99995X,I5)') i
    print *, i, len_trim(huge), huge(99990:)
    write (huge, '(T99999,A,T1,A)') 'ab', 'c'
    print *, huge(99998:), huge(1:2), len_trim(huge)
    read (huge(99999:), '(A)') c
    print *, c
    write (a(1:4), '(I2,F5.1)') (i, 1.5*i, i=1, 4)
    print *, a(1:4)
    x = -1
    read (a(1)(1:4), '(F4.2)') x
    print *, x
    call assumed(a(2:8:2), 8)
contains
    subroutine show(what, lines)
        character(*), intent(in) :: what, lines(:)
        print '(A,*(1X,A))', what, lines
    end subroutine
    subroutine assumed(lines, n)
        integer, intent(in) :: n
        character(n), intent(inout) :: lines(:)
        write (lines, '(A,I1)') ('as', i, i=1, size(lines))
        print *, lines
        write (lines(size(lines):1:-1)(2:3), '(I2)') (10*i, i=1, size(lines))
        print *, lines
    end subroutine
end program
