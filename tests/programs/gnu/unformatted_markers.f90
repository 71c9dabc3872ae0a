! build: for f in frecord-marker=4 frecord-marker=8 fmax-subrecord-length=100 fconvert=big-endian fconvert=swap; do $FC -$f $FLAGS $SRC/unformatted_markers.f90 $LINK -o $PROGRAM-$f || exit 1; done; $FC -frecord-marker=8 -fmax-subrecord-length=33 -fconvert=swap $FLAGS $SRC/unformatted_markers.f90 $LINK -o $PROGRAM
! run: $PROGRAM; $PROGRAM < records.10
! run: $PROGRAM-frecord-marker=4; $PROGRAM-frecord-marker=8 < records.11; $PROGRAM-frecord-marker=4 < records.10
! run: $PROGRAM-fmax-subrecord-length=100; $PROGRAM-fmax-subrecord-length=100 < records.11
! run: $PROGRAM-fconvert=big-endian; $PROGRAM-fconvert=swap < records.11
! run: GFORTRAN_CONVERT_UNIT='big_endian;native:10,30-40' $PROGRAM-fconvert=swap
! run: GFORTRAN_CONVERT_UNIT='swap:11' $PROGRAM-frecord-marker=4; $PROGRAM-frecord-marker=8
! Record markers of both sizes, records in parts and both byte orders: written, stepped over, read
! again; and records of redirected standard input.
program unformatted_markers
    implicit none
    integer, parameter :: lengths(9) = [0, 1, 25, 32, 33, 100, 101, 260, 70000]
    integer :: i, k, ios, unit, n
    integer(1) :: bytes(70000), back(70000)
    real(8) :: x(20), y(20)
    complex :: z
    character(10) :: name
    bytes = [(int(mod(i*7, 251) - 125, 1), i=1, 70000)]
    x = [(i*1.25d0, i=1, 20)]
    do unit = 10, 11
        write (name, '(a,i0)') 'records.', unit
        open (unit, file=name, form='unformatted', status='replace')
        do i = 1, size(lengths)
            write (unit) lengths(i), bytes(1:lengths(i))
        end do
        write (unit) x, (3.0, 4.0), 'text', x(20:1:-3), 7_2, .true.
        do k = 1, 3
            backspace (unit)
            backspace (unit)
            read (unit) n
            print *, k, n
            backspace (unit)
        end do
        read (unit) n, back(1:20)
        print *, n, back(20)
        rewind (unit)
        do i = 1, size(lengths)
            back = 0
            read (unit) n, back(1:lengths(i))
            print *, n, all(back(1:n) == bytes(1:n))
        end do
        read (unit) y, z, name(1:4), y(1:7)
        print *, sum(y), z, name(1:4)
        read (unit, iostat=ios) n
        print *, ios
        close (unit)
    end do
    open (10, file='records.10', form='unformatted', position='append')
    write (10) 'appended'
    backspace (10)
    backspace (10)
    write (10) 'instead'
    close (10)
    open (21, file='/dev/stdin', form='unformatted', action='read', iostat=ios)
    if (ios == 0) call read_all(21)
contains
    subroutine read_all(unit)
        integer :: unit, count
        do count = 1, size(lengths)
            n = -1
            read (unit, iostat=ios) n, back(1:min(max(n, 0), 70000))
            if (ios /= 0) exit
            print *, count, n, back(max(min(n, 70000), 1))
        end do
        print *, count, ios
    end subroutine
end program
