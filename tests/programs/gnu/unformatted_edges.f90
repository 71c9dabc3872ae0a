! Small unformatted records by the thousand, so that they begin and end at every distance from the
! ends of the unit's buffer: items beyond what is at hand, strided arrays, items of no length, records
! without items, functions in an item list that transfer on other units.
! run: $PROGRAM
! run: GFORTRAN_UNFORMATTED_BUFFER_SIZE=1024 $PROGRAM
program unformatted_edges
    implicit none
    integer, parameter :: count = 3000
    integer :: numbers(700), back(700), i, n, ios, odd(350)
    real(8) :: x, y
    complex :: z, w
    character(9) :: text, copy
    character(len=:), allocatable :: nothing
    integer(8) :: total

    numbers = [(i*7, i = 1, size(numbers))]
    nothing = ''
    open (10, file='edges.bin', form='unformatted', status='replace')
    do i = 1, count
        n = mod(i*37, 700)
        x = i*0.5d0
        z = cmplx(i, -i)
        write (text, '(i9)') i
        write (10) n, numbers(:n), x, nothing, z, text(:mod(i, 10)), numbers(2:n:2)
        if (mod(i, 11) == 0) write (10)
        if (mod(i, 500) == 0) write (10) numbers, numbers, noted(i), numbers(::-3)
    end do
    rewind (10)
    total = 0
    do i = 1, count
        back = -1
        odd = -1
        read (10) n, back(:n), y, nothing, w, copy(:mod(i, 10)), odd(:max(n, 0)/2)
        if (n /= mod(i*37, 700) .or. any(back(:n) /= numbers(:n)) .or. y /= i*0.5d0 .or. &
            w /= cmplx(i, -i) .or. any(odd(:n/2) /= numbers(2:n:2))) print *, 'record', i
        total = total + sum(back(:n))
        if (mod(i, 11) == 0) read (10)
        if (mod(i, 500) == 0) then
            read (10, iostat=ios) back, n, back(1:699)
            print *, ios == 0, back(700), n
        end if
    end do
    print *, total
    ! More than the record has; the next statement finds the next record.
    rewind (10)
    read (10, iostat=ios) n, numbers, numbers, x
    print *, ios > 0
    read (10) n
    print *, n
    ! Behind what was read the file is written anew.
    write (10) 'the end'
    read (10, iostat=ios) n
    print *, ios /= 0
    close (10)
contains
    integer function noted(value)
        integer, intent(in) :: value
        write (11) value
        noted = 2*value
    end function
end program
