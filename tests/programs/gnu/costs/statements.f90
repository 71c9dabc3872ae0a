! Statements whose cost is counted by costs.c.
subroutine open_units(count)
    integer :: count, i
    character(12) :: name
    do i = 1, count
        write (name, '(A,I0)') 'unit.', i
        open (100 + 7*i, file=name, status='replace')
        write (100 + 7*i, '(I8)') i
    end do
end

subroutine close_units(count)
    integer :: count, i
    do i = 1, count
        close (100 + 7*i, status='delete')
    end do
end

! Twenty statements on units all over the list.
subroutine write_units(count)
    integer :: count, i, n
    n = 1
    do i = 1, 20
        n = mod(n*37, count) + 1
        write (100 + 7*n, '(I8)') i
    end do
end

! Statement `which`; 0 comes back when there is none of that number.
subroutine run_statement(which, more)
    integer :: which, more, i, n(4)
    real(8), save :: x(4) = [1.5d0, -2.25d0, 3.125d-7, 4.0625d200]
    complex(4), save :: z = (1.5, -2.5)
    character(200) :: line
    character(100) :: lines(3)
    character(40), save :: form
    character(30) :: text
    logical :: l
    more = 1
    select case (which)
    case (1)
        write (*, '(I5,F8.3,1X,A,L2)') 5, 1.5, 'text', .true.
    case (2)
        write (20, '(4(E24.16,:,","),3X,I8)') x, 7
    case (3)
        write (20, '(2(G15.7,ES12.4),EN14.3)') x, z
    case (4)
        write (line, '(4F12.4,I4)') x(1:3), 0.5, 9
    case (5)
        form = '(A,3(I6.3),2(1X,G0))'
        write (line, form) 'run-time format', 1, 2, 3, x(1), 'x'
    case (6)
        write (20, *) x, z, 5, 'list', .false.
    case (7)
        write (line, *) x, 5, 'list'
    case (8)
        write (lines, '(A,I5)') 'a', 1, 'b', 2, 'c', 3
    case (9)
        line = ' 1 2 3.5 4 text T'
        read (line, *) n(1:2), x(1), n(3), text, l
    case (10)
        line = '  12  3.50 text'
        read (line, '(I4,F6.2,1X,A4)') n(1), x(1), text(1:4)
    case (11)
        rewind (21)
        do i = 1, 10
            read (21, '(4I5)') n
        end do
    case (12)
        rewind (21)
        read (21, *) n, n, n
    case (13)
        write (20, '(A)', advance='no') 'part'
        write (20, '(I5,DC,F6.2,SP,I4,RU,F5.1)') 1, 1.5, 2, 0.25
    case (14)
        write (22, '(A10,I6)', rec=3) 'direct', 5
        read (22, '(A10,I6)', rec=3) text, n(1)
    case (15)
        write (20, '(T20,A,TL8,A,TR3,A/,B10,O8,Z8)') 'a', 'b', 'c', 1, 2, 3
    case default
        more = 0
    end select
end

subroutine prepare()
    integer :: i, k
    open (20, file='out.txt')
    open (21, file='in.txt')
    write (21, '(4I5)') ((10*i + k, k=1, 4), i=1, 10)
    open (22, file='direct.txt', access='direct', recl=20, form='formatted')
end

subroutine finish()
    close (20, status='delete')
    close (21, status='delete')
    close (22, status='delete')
end
