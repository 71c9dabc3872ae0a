! Records and literals of any length, and many of them.
program long_records
    implicit none
    integer, parameter :: n = 100000
    character(n) :: line, again
    character(4200) :: form
    integer :: i, numbers(20000), back(20000), ios
    real(8) :: x(5000), y(5000)
    logical :: same
    do i = 1, n
        line(i:i) = achar(33 + mod(i*7, 90))
    end do
    open (10, file='long.txt')
    write (10, '(A)') line
    numbers = [(mod(i*7919, 99991), i=1, 20000)]
    write (10, '(20000I6)') numbers
    write (10, *) numbers
    x = [(sqrt(real(i, 8)), i=1, 5000)]
    write (10, '(*(ES25.17,:,","))') x
    write (10, *) x
    write (10, '(A,T99990,A,T50000,A)') 'a', 'end', 'middle'
    write (10, '(A)') line(1:n - 1), 'short', line
    write (10, *) line
    do i = 1, 2000
        write (10, '(A)', advance='no') line(i:i + 49)
    end do
    write (10, *)
    rewind (10)
    read (10, '(A)') again
    print *, again == line
    read (10, '(20000I6)') back
    print *, all(back == numbers)
    back = 0
    read (10, *) back
    print *, all(back == numbers)
    read (10, '(5000(ES25.17,1X))') y
    print *, all(x == y)
    y = 0
    read (10, *) y
    print *, all(x == y)
    read (10, '(T50000,A6,T99990,A3,T1,A1)') again(1:6), again(7:9), again(10:10)
    print *, again(1:10)
    read (10, '(99998X,A1,A3)') again(1:1), again(2:4)
    print *, again(1:4)//'|'
    read (10, '(A)') again
    print *, trim(again)
    read (10, '(T99999,A2)') again
    print *, again(1:2)
    read (10, '(1X,A)') again
    print *, again == line
    same = .true.
    do i = 1, 2000
        read (10, '(A50)', advance='no') again(1:50)
        same = same .and. again(1:50) == line(i:i + 49)
    end do
    print *, same
    do i = 1, 4
        backspace (10)
    end do
    read (10, '(T99998,A)', iostat=ios) again
    print *, again(1:5), ios
    close (10)
    form = '("'//repeat('literal ''text'' ', 133)//'",I5,'''//repeat('x', 2000)//''')'
    write (*, form) 42
    write (*, '(2000X,A)') 'far'
    write (*, '(1000("ab"),I3)') 5
    open (11, file='recl.txt', recl=40)
    write (11, *, iostat=ios) (i, i=1, 12)
    print *, 'over RECL', ios
    write (11, *, iostat=ios) &
        'a text that is longer than a record of the file can be, by a fair amount'
    print *, 'over RECL', ios
    write (11, '(A)', iostat=ios) repeat('y', 60)
    print *, 'over RECL', ios
    write (11, '(10I5)', iostat=ios) (i, i=1, 10)
    print *, 'over RECL', ios
    close (11)
end program
