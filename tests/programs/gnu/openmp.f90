! Many threads: internal files, units of their own, one unit together.
! flags: -fopenmp
! run: OMP_NUM_THREADS=4 $PROGRAM | sort
! run: OMP_NUM_THREADS=16 $PROGRAM | sort
program openmp
    use omp_lib
    implicit none
    integer :: i, k, n, bad, unit, ios, value
    character(60) :: text, again
    character(20) :: lines(3)
    real(8) :: x, y
    bad = 0
    !$omp parallel do private(text, again, n, x, y, lines, k, value) reduction(+:bad)
    do i = 1, 20000
        x = sqrt(real(i, 8))
        write (text, '(I8,ES26.17,A)') i, x, ' tail'
        read (text, '(I8,ES26.17)') n, y
        if (n /= i .or. x /= y) bad = bad + 1
        write (text, *) i, x
        read (text, *) n, y
        if (n /= i .or. x /= y) bad = bad + 1
        write (again, '(A,"(I",I0,")")') '', 6 + mod(i, 4)
        write (text, again) i
        read (text, again) n
        if (n /= i) bad = bad + 1
        write (lines, "(I6)") i, i + 1, i + 2
        read (lines, "(I6)") n, k, value
        if (n /= i .or. k /= i + 1 .or. value /= i + 2) bad = bad + 1
    end do
    print *, 'internal', bad
    bad = 0
    !$omp parallel do private(unit, text, n, k, ios, value) reduction(+:bad) schedule(dynamic)
    do i = 1, 200
        write (text, '(A,I0)') 'thread', i
        open (newunit=unit, file=text)
        do k = 1, 50
            write (unit, '(2I6)') i, k
        end do
        rewind (unit)
        do k = 1, 50
            read (unit, *, iostat=ios) n, value
            if (ios /= 0 .or. n /= i .or. value /= k) bad = bad + 1
        end do
        close (unit, status='delete')
    end do
    print *, 'units', bad
    open (10, file='shared.txt')
    !$omp parallel do
    do i = 1, 2000
        write (10, '(I6,A)') i, ' a whole record'
    end do
    rewind (10)
    n = 0
    do
        read (10, '(I6,A)', iostat=ios) k, text
        if (ios /= 0) exit
        if (text /= ' a whole record') n = n - 1000000
        n = n + k
    end do
    close (10, status='delete')
    print *, 'shared', n
    !$omp parallel do
    do i = 1, 100
        print *, 'line', i, 'of standard output'
    end do
end program
