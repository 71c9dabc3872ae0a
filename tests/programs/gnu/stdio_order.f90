! Output of C and of Fortran on one file: FLUSH puts them in order, and so do the ends of both.
! build: $CC $FLAGS -c $SRC/parts/order.c -o order.o && $FC $FLAGS $SRC/stdio_order.f90 order.o $LINK -o $PROGRAM
! run: $PROGRAM
! run: $PROGRAM > out.txt
! run: $PROGRAM | cat
! run: GFORTRAN_UNBUFFERED_ALL=1 $PROGRAM > out.txt
program stdio_order
    implicit none
    integer :: i
    do i = 1, 3
        print *, 'Fortran', i
        flush (6)
        call c_line(i)
        write (*, '(A)', advance='no') 'part'
        flush (6)
        call c_raw(i)
        write (*, '(A)') ' and the rest'
        flush (6)
        write (0, '(A,I2)') 'error', i
    end do
    call execute_command_line('echo from a child')
    print *, 'after the child'
end program
