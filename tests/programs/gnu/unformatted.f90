! Unformatted files: sequential, direct, stream; byte order; sub-records; record marks of 8 bytes.
! build: $FC $FLAGS $SRC/unformatted.f90 $LINK -o $PROGRAM && $FC $FLAGS -fmax-subrecord-length=40 $SRC/unformatted.f90 $LINK -o $BIN/sub && $FC $FLAGS -frecord-marker=8 $SRC/unformatted.f90 $LINK -o $BIN/marks && $FC $FLAGS -fconvert=big-endian $SRC/unformatted.f90 $LINK -o $BIN/big
! run: $PROGRAM
! run: $BIN/sub
! run: $BIN/marks
! run: $BIN/big
program unformatted
    implicit none
    integer :: i, ios, n, values(100), back(100)
    integer(1) :: bytes(7) = [1, 2, 3, 4, 5, 6, 7]
    integer(2) :: shorts(3) = [1, 2, 3]
    integer(8) :: longs(2) = [-1, 2]
    integer(16) :: huge16 = 123456789012345678901234567890_16
    real(4) :: r4 = 1.5
    real(8) :: r8 = -2.5
    real(10) :: r10 = 3.5
    real(16) :: r16 = -4.5
    complex(4) :: z4 = (1, 2)
    complex(8) :: z8 = (3, 4)
    logical(1) :: l1 = .true.
    logical(8) :: l8 = .true.
    character(5) :: text = 'abcde'
    character(3, 4) :: wide = 4_'xyz'
    values = [(i*i, i=1, 100)]
    open (10, file='seq.bin', form='unformatted')
    write (10) bytes, shorts, longs, huge16
    write (10) r4, r8, r10, r16, z4, z8, l1, l8, text, wide
    write (10)
    write (10) values
    write (10) (values(i), text, i=1, 20)
    write (10) 'x'
    rewind (10)
    bytes = 0
    shorts = 0
    longs = 0
    huge16 = 0
    read (10) bytes, shorts, longs, huge16
    print *, bytes, shorts, longs, huge16
    r4 = 0
    r16 = 0
    text = ''
    read (10) r4, r8, r10, r16, z4, z8, l1, l8, text, wide
    print *, r4, r8, r10, r16, z4, z8, l1, l8, text, iachar(wide(1:1))
    read (10, iostat=ios) n
    print *, 'an empty record', ios
    read (10) back(1:50)
    print *, all(back(1:50) == values(1:50))
    read (10) (n, text, i=1, 20)
    print *, n, text
    backspace (10)
    backspace (10)
    read (10) back
    print *, all(back == values)
    read (10)
    read (10) text(1:1)
    print *, text
    read (10, iostat=ios) n
    print *, 'end', ios
    backspace (10)
    backspace (10)
    write (10) 99
    rewind (10)
    do i = 1, 10
        read (10, iostat=ios) n
        print *, i, ios
        if (ios == -1) exit
    end do
    close (10)
    open (10, file='seq.bin', form='unformatted', position='append')
    write (10) 'appended'
    close (10)

    open (11, file='big.bin', form='unformatted', convert='big_endian')
    write (11) 1, 2_8, 1.5, 2.5d0, 3.5_16, (1.0, 2.0), 'text', 258_2
    rewind (11)
    read (11) n, longs(1), r4, r8, r16, z4, text(1:4), shorts(1)
    print *, n, longs(1), r4, r8, r16, z4, text(1:4), shorts(1)
    close (11)
    open (11, file='big.bin', form='unformatted', convert='swap')
    read (11, iostat=ios) n
    print *, n, ios
    close (11)
    open (12, file='dir.bin', access='direct', recl=16, convert='big_endian')
    write (12, rec=1) 1, 2, 3, 4
    write (12, rec=4) 1.5d0
    read (12, rec=4) r8, n
    print *, r8, n
    read (12, rec=2) n
    print *, n
    read (12, rec=1) values(4:1:-1)
    print *, values(1:4)
    read (12, rec=5, iostat=ios) n
    print *, ios
    write (12, rec=1, iostat=ios) 'seventeen letters'
    print *, ios
    close (12)
    open (13, file='stream.bin', access='stream', convert='big_endian')
    write (13) 1, 2.5d0, 'abc'
    read (13, pos=5) r8
    print *, r8
    close (13)
end program
