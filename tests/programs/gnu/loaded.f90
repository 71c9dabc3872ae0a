! A Fortran shared library that a C program loads and unloads.
! build: $FC $FLAGS -shared -fPIC $SRC/loaded.f90 $LINK -o $BIN/part.so && $CC $FLAGS $SRC/parts/loader.c -ldl -o $PROGRAM
subroutine work(n, x)
    integer :: n
    real(8) :: x
    character(30) :: text
    write (text, '(F10.4)') sqrt(real(n, 8))
    read (text, *) x
    print *, 'work', n, text
    flush (6)
    open (20, file='loaded.txt', position='append')
    write (20, *) n, x
    if (n < 3) close (20)
end
