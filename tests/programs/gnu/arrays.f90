! Whole arrays and sections of any rank and stride, implied DO, zero sizes.
program arrays
    implicit none
    integer :: i, j, k, n, ios
    integer :: a(3, 4), e(0), f(2, 0, 3)
    integer(1) :: i1(5)
    integer(2) :: i2(5)
    integer(8) :: i8(5)
    integer(16) :: iq(3)
    real :: x(2, 2), r15(1, 1, 2, 1, 1, 1, 2, 1, 1, 1, 1, 2, 1, 1, 1)
    real(10) :: xa(3)
    real(16) :: xq(3)
    complex(8) :: z(4)
    complex(16) :: zq(2)
    complex(10) :: za(2)
    logical(1) :: l(6)
    character(3) :: c(2, 3)
    character(0) :: empty(4)
    integer, allocatable :: b(:, :)
    integer, pointer :: p(:, :)
    integer, target :: t(6, 6)
    a = reshape([(i, i=1, 12)], [3, 4])
    print *, a
    print '(3I4)', a
    print *, a(2, :)
    print *, a(3:1:-2, 4:1:-1)
    print *, a([3, 1], [2, 4, 2])
    print *, transpose(a)
    print *, e, 'nothing', f, a(3:2, :)
    print '(I3)', e
    print '(A,I3)', 'head', e
    print *, ((a(i, j), i=1, 3, 2), j=4, 1, -3)
    print *, (i, (j, j=1, i), i=1, 4)
    print *, (a(i, 2:3), i=1, 3)
    print *, ((i, a(i, j)*0.5, 'x', j=1, 0), i=1, 5)
    print *, (i, i=5, 1)
    i1 = [1, -2, 3, -4, 5]
    i2 = i1*100
    i8 = i1*10000000000_8
    iq = i8(1:3)*10000000000_16
    print *, i1, i2(5:1:-1), i8(::2), iq
    print '(5I5/5I7/3I15/3I30)', i1, i2, i8(::2), iq
    x = reshape([1.5, -2.5, 3.25, 1e10], [2, 2])
    xa = [1.5_10, -1e4000_10, 0.1_10]
    xq = [1.5_16, -1e4000_16, 0.1_16]
    z = [(cmplx(i, -i, 8), i=1, 4)]
    zq = z(1:2)
    za = z(3:4)
    print *, x, xa, xq
    print *, z(4:1:-2), zq, za
    print '(4F8.2)', z
    print '(*(G0,1X))', x, xa, xq(2:), z(1), zq, za
    l = [.true., .false., .false., .true., .true., .false.]
    print *, l(2:6:2), l
    print '(6L3)', l
    c = reshape(['abc', 'def', 'ghi', 'jkl', 'mno', 'pqr'], [2, 3])
    print *, c
    print *, c(2:1:-1, 3)(2:3), c(:, 2)
    print '(3A5)', c
    print *, empty, '|', empty(1:0)
    r15 = reshape([(0.5*i, i=1, 8)], shape(r15))
    print *, r15
    print *, r15(1, 1, 2:1:-1, 1, 1, 1, :, 1, 1, 1, 1, 2, 1, 1, 1)
    t = reshape([(i, i=1, 36)], [6, 6])
    p => t(6:1:-2, 1:6:3)
    print *, p
    p => t(2:2, 3:1)
    print *, size(p), p
    allocate (b(-1:1, 5:6))
    b = 3
    print *, b, lbound(b)

    open (10, file='arrays.txt')
    write (10, *) a
    write (10, '(12I5)') a
    x(2, 2) = 1e5
    write (10, '(5F10.3)') x, r15
    write (10, '(*(A,1X))') c
    backspace (10)
    read (10, *) ((c(i, j), j=1, 3), i=1, 2)
    write (10, *) l
    write (10, *) z, zq
    rewind (10)
    a = 0
    read (10, *) a(:, 4:1:-1)
    print *, a
    a = 0
    read (10, '(12I5)') a(3:1:-1, :)
    print *, a
    read (10, '(5F10.3)') x(2, :), x(1, :), r15
    print *, x, r15(1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 1, 1, 1)
    l = .true.
    read (10, *)
    read (10, *) (l(i), i=6, 1, -1)
    print *, c, l
    z = 0
    read (10, *) z(::2), z(2::2), zq
    print *, z, zq
    close (10)

    open (11, file='arrays.bin', form='unformatted')
    write (11) a, x, c, l, z, iq, xa, xq, e
    write (11) t(6:1:-2, ::2), c(2, :), z(::3)
    write (11) (i, t(i, i), i=1, 6)
    rewind (11)
    read (11) a(:, ::2), a(:, 2::2)
    print *, a
    t = 0
    read (11) t(::2, 5:1:-2), c(1, :), z(4:1:-3)
    print *, t
    print *, c, z
    read (11) (n, t(i, 1), i=1, 6)
    print *, t(:, 1)
    read (11, iostat=ios) n
    print *, ios
    close (11)
    inquire (iolength=n) a, x, c, l, z, iq, xa, xq, e, (i, i=1, 3), t(::2, ::2)
    print *, 'iolength', n
    inquire (iolength=n) 'abc', 1_1, 1_2, 1.0_10, c(1, :)(2:3)
    print *, 'iolength', n
    inquire (iolength=n) e
    print *, 'iolength', n
    k = n
end program
