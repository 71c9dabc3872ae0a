! A main program in C that calls Fortran.
! build: $CC $FLAGS -c $SRC/parts/c_main.c -o main.o && $FC $FLAGS -c $SRC/c_main.f90 -o part.o && $FC $FLAGS main.o part.o $LINK -o $PROGRAM
! status: same
subroutine begin()
    open (10, file='c_main.txt')
    print *, 'begin', 1.5
    flush (6)
end
subroutine record(n)
    integer :: n
    write (10, '(I5)') n*n
    print '(A,I3)', 'record', n
    flush (6)
end
integer function sum(file)
    character(*) :: file
    integer :: n, ios
    sum = 0
    close (10)
    open (10, file=file, action='read')
    do
        read (10, *, iostat=ios) n
        if (ios /= 0) exit
        sum = sum + n
    end do
    write (*, '(A)', advance='no') 'left open'
end
