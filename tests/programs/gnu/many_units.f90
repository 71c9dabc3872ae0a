! A thousand units at once.
program many_units
    implicit none
    integer :: i, n, ios, units(500), total
    character(20) :: name
    do i = 1, 500
        write (name, '(A,I4.4)') 'f', i
        open (1000 + 7*i, file=name)
        open (newunit=units(i), status='scratch')
    end do
    do n = 1, 5
        do i = 500, 1, -1
            write (1000 + 7*i, '(I5,I5)') i, n
            write (units(i), *) i*n
        end do
    end do
    total = 0
    do i = 1, 500
        rewind (units(i))
        read (units(i), *) n
        read (units(i), *) n
        total = total + n
        if (mod(i, 2) == 0) close (units(i))
    end do
    print *, total, minval(units) < -500, maxval(units) < 0
    do i = 1, 500, 50
        rewind (1000 + 7*i)
        read (1000 + 7*i, '(I5,I5/)') n, ios
        print *, n, ios
        close (1000 + 7*i, status='delete')
    end do
    do i = 2, 500, 2
        open (newunit=n, status='scratch')
        if (n >= 0) print *, 'not negative', n
    end do
    open (2147483647, file='largest')
    write (2147483647, *) 'largest'
    n = -99
    write (n, *, iostat=ios) 1
    print *, ios
end program
