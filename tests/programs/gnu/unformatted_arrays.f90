! Unformatted arrays of every kind, rank and stride, in records shorter and longer than any buffer.
! build: $FC $FLAGS $SRC/unformatted_arrays.f90 $LINK -o $PROGRAM && $FC $FLAGS -fmax-subrecord-length=4099 $SRC/unformatted_arrays.f90 $LINK -o $BIN/sub && $FC $FLAGS -fmax-subrecord-length=70001 -frecord-marker=8 -fconvert=big-endian $SRC/unformatted_arrays.f90 $LINK -o $BIN/big
! run: $PROGRAM
! run: $BIN/sub
! run: $BIN/big
! run: GFORTRAN_CONVERT_UNIT='swap;native:12' $PROGRAM
program unformatted_arrays
    implicit none
    integer, parameter :: many = 100000
    integer(1) :: b(many), b2(many)
    integer(4), allocatable :: cube(:, :, :), copy(:, :, :)
    integer(8) :: longs(many), longs2(many)
    integer(16) :: huge16(300), huge2(300)
    real(8) :: grid(40, 50), grid2(40, 50)
    complex(8) :: waves(many), waves2(many)
    complex(10) :: z10(60), z2(60)
    character(7) :: words(500), words2(500)
    character(5000) :: pages(6), pages2(6)
    character(3, 4) :: wide(200), wide2(200)
    logical(2) :: flags(90), flags2(90)
    character(11) :: access(3) = ['sequential ', 'stream     ', 'direct     ']
    integer :: i, j, k, unit, ios, where
    allocate (cube(30, 40, 50), copy(30, 40, 50))
    do k = 1, 50
        do j = 1, 40
            do i = 1, 30
                cube(i, j, k) = i + 100*j + 10000*k
            end do
        end do
    end do
    do i = 1, many
        b(i) = int(mod(i, 251) - 125, 1)
        longs(i) = i*123456789_8
        waves(i) = cmplx(i, -i, 8)
    end do
    huge16 = [(i*10_16**30, i=1, 300)]
    grid = reshape([(i*0.25d0, i=1, 2000)], [40, 50])
    z10 = [(cmplx(i, 1 - i, 10), i=1, 60)]
    words = [(achar(mod(i, 90) + 33)//'word'//achar(mod(i, 26) + 97), i=1, 500)]
    pages = [(repeat(achar(64 + i), 5000), i=1, 6)]
    wide = [(4_'ab'//char(900 + i, 4), i=1, 200)]
    flags = [(mod(i, 3) == 0, i=1, 90)]

    do i = 1, 3
        unit = 10 + i
        if (i == 3) then
            open (unit, file='direct.bin', access=access(i), form='unformatted', recl=3000001)
            write (unit, rec=1) b, cube(::2, ::3, 50:1:-7), longs, huge16(1:300:7), grid(3, :), &
                waves(many:1:-2), z10(::2), words(2::3), pages(::2), wide(::5), flags(::4), cube
        else
            open (unit, file=trim(access(i))//'.bin', access=access(i), form='unformatted')
            write (unit) b, cube(::2, ::3, 50:1:-7), longs, huge16(1:300:7), grid(3, :), &
                waves(many:1:-2), z10(::2), words(2::3), pages(::2), wide(::5), flags(::4), cube
        end if
        write (unit, rec=2, iostat=ios) 'short'
        if (i /= 3) then
            write (unit) (longs(j), b(j), words(j), j=1, 500)
            write (unit) longs(1:many:2)
            rewind (unit)
        end if
        b2 = 0
        copy = 0
        longs2 = 0
        huge2 = 0
        grid2 = 0
        waves2 = 0
        z2 = 0
        words2 = ''
        pages2 = ''
        wide2 = 4_''
        flags2 = .false.
        if (i == 3) then
            read (unit, rec=1) b2, copy(::2, ::3, 50:1:-7), longs2, huge2(1:300:7), grid2(3, :), &
                waves2(many:1:-2), z2(::2), words2(2::3), pages2(::2), wide2(::5), flags2(::4)
        else
            read (unit) b2, copy(::2, ::3, 50:1:-7), longs2, huge2(1:300:7), grid2(3, :), &
                waves2(many:1:-2), z2(::2), words2(2::3), pages2(::2), wide2(::5), flags2(::4)
        end if
        print *, trim(access(i)), all(b2 == b), sum(copy), all(longs2 == longs), sum(huge2), &
            all(grid2(3, :) == grid(3, :)), sum(grid2), sum(waves2), sum(z2), &
            count(words2 == words), count(pages2 == pages), count(wide2 == wide), count(flags2)
        if (i == 1) then
            longs2 = 0
            words2 = ''
            read (unit) (longs2(j), b2(j), words2(j), j=1, 500)
            print *, count(longs2 == longs), count(words2 == words)
            read (unit) longs2(1:25000)
            print *, sum(longs2(1:25000))
            read (unit, iostat=ios) j
            print *, 'end', ios
            backspace (unit)
            backspace (unit)
            read (unit, iostat=ios) longs2
            print *, 'too many', ios
            backspace (unit)
            backspace (unit)
            backspace (unit)
            read (unit) b2(1:10), copy(1, 1, 1)
            print *, b2(1:10), copy(1, 1, 1)
            write (unit) 'the last one'
            read (unit, iostat=ios) j
            print *, 'end', ios
        else if (i == 2) then
            inquire (unit, pos=where)
            read (unit) copy
            print *, where, all(copy == cube)
            write (unit, pos=77) 'in the middle'
            inquire (unit, pos=j)
            read (unit, pos=90) b2(90:100)
            print *, j, all(b2 == b)
            read (unit, pos=where, iostat=ios) copy, pages2, longs2, longs2
            print *, ios, all(copy == cube)
        end if
        close (unit)
    end do
    deallocate (cube, copy)
end program
