! What -std=legacy takes: widths without a point, commas that end fields of internal files.
! flags: -std=legacy -w
program legacy_formats
    implicit none
    character(12) :: input = '1234abcdef'
    character(8) :: form = '(f4,a6)'
    character(6) :: text
    character(40) :: line
    real(8) :: x, y
    integer :: i, j
    read (input, form) x, text
    print *, x, text
    read (input, '(d4,a6)') x, text
    print *, x, text
    write (*, '(1pd24.15e8)') 1d0, 1.5
    line = '101,1.5,,7,'
    read (line, '(i8,2f8.1,i2)') i, x, y, j
    print *, i, x, y, j
end program
