! The work that `bench/run` times: `programs WHAT COUNT PLACE`. COUNT records of three values go to
! or come from the file `bench.WHAT`, or with PLACE `pipe` to standard output. The values are made
! before and each kind of work has its own loop, so that little but the statements takes time.
! The groups of a NAMELIST are a tenth of COUNT; the unformatted programs know their files by themselves.
program programs
    implicit none
    integer, parameter :: kept = 4096
    character(20) :: what, word, place
    integer :: count, unit, i, j, k, total = 0, n(3, kept), m(3)
    integer(8) :: r = 1
    real(8) :: x(3, kept), y(3), sum = 0
    integer :: steps = 1000, grid(8) = [(i, i=1, 8)]
    real(8) :: step_length = 0.125d0, levels(6) = [(i*1.37d0, i=1, 6)], limit = 1d-9
    logical :: verbose = .true.
    character(24) :: title = 'a run of the model'
    namelist /setup/ steps, grid, step_length, levels, limit, verbose, title
    real(8), allocatable :: big(:)
    call get_command_argument(1, what)
    if (what == 'start') stop
    call get_command_argument(2, word)
    call get_command_argument(3, place)
    read (word, *) count
    do i = 1, kept
        do k = 1, 3
            j = mod(i*7919 + k*104729, 1000003)
            x(k, i) = (j - 500000)*(1.1d0 + k*0.7d0)*10d0**(mod(i, 9) - 9)
            n(k, i) = j*(10**mod(i, 4)) - 1000
        end do
    end do
    if (what == 'print') then
        do i = 1, count
            print *, i, x(1, iand(i, kept - 1) + 1), 'some text'
        end do
        stop
    end if
    unit = 10
    if (place(1:4) == 'recs' .or. place == '1MiB' .or. place == 'direct') then
        call records
        if (index(what, 'read') > 0) print *, sum
        stop
    end if
    if (place == 'pipe') then
        unit = 6
    else
        open (unit, file='bench.'//what(index(what, '-') + 1:))
    end if
    select case (what)
    case ('write-e24.16')
        do i = 1, count
            j = iand(i, kept - 1) + 1
            write (unit, '(3E24.16)') x(1, j), x(2, j), x(3, j)
        end do
    case ('write-f12.4')
        do i = 1, count
            j = iand(i, kept - 1) + 1
            write (unit, '(3F12.4)') x(1, j), x(2, j), x(3, j)
        end do
    case ('write-es15.7')
        do i = 1, count
            j = iand(i, kept - 1) + 1
            write (unit, '(3ES15.7)') x(1, j), x(2, j), x(3, j)
        end do
    case ('write-g15.7')
        do i = 1, count
            j = iand(i, kept - 1) + 1
            write (unit, '(3G15.7)') x(1, j), x(2, j), x(3, j)
        end do
    case ('write-list')
        do i = 1, count
            j = iand(i, kept - 1) + 1
            write (unit, *) x(1, j), x(2, j), x(3, j)
        end do
    case ('write-i10')
        do i = 1, count
            j = iand(i, kept - 1) + 1
            write (unit, '(3I10)') n(1, j), n(2, j), n(3, j)
        end do
    case ('write-namelist')
        do i = 1, count/10
            steps = i
            write (unit, nml=setup)
        end do
    case ('read-namelist')
        do i = 1, count/10
            read (unit, nml=setup)
            total = ieor(total, steps)
        end do
    case ('read-e24.16')
        do i = 1, count
            read (unit, '(3E24.16)') y(1), y(2), y(3)
            sum = sum + y(1)
        end do
    case ('read-f12.4')
        do i = 1, count
            read (unit, '(3F12.4)') y(1), y(2), y(3)
            sum = sum + y(1)
        end do
    case ('read-es15.7')
        do i = 1, count
            read (unit, '(3ES15.7)') y(1), y(2), y(3)
            sum = sum + y(1)
        end do
    case ('read-g15.7')
        do i = 1, count
            read (unit, '(3G15.7)') y(1), y(2), y(3)
            sum = sum + y(1)
        end do
    case ('read-list')
        do i = 1, count
            read (unit, *) y(1), y(2), y(3)
            sum = sum + y(1)
        end do
    case ('read-i10')
        do i = 1, count
            read (unit, '(3I10)') m(1), m(2), m(3)
            total = ieor(total, m(3))
        end do
    case default
        error stop 'what?'
    end select
    if (what(1:4) == 'read') print *, sum, total
contains
    ! Unformatted files. 1 MiB records and those of the other byte order are a thousandth as many.
    subroutine records
        if (place == '1MiB') then
            allocate (big(131072))
            big = 1.5d0
            count = max(count/5000, 1)
        end if
        select case (what//place)
        case ('write-values        recs')
            open (unit, file='bench.recs', form='unformatted', status='replace')
            do i = 1, count
                j = iand(i, kept - 1) + 1
                write (unit) x(1, j), x(2, j), x(3, j)
            end do
        case ('read-values         recs')
            open (unit, file='bench.recs', form='unformatted')
            do i = 1, count
                read (unit) y(1), y(2), y(3)
                sum = sum + y(1)
            end do
        case ('write-array         recs')
            open (unit, file='bench.recs', form='unformatted', status='replace')
            do i = 1, count
                write (unit) x(:, iand(i, kept - 1) + 1)
            end do
        case ('read-array          recs')
            open (unit, file='bench.recs', form='unformatted')
            do i = 1, count
                read (unit) y
                sum = sum + y(1)
            end do
        case ('backspace           recs')
            open (unit, file='bench.recs', form='unformatted', position='append')
            do i = 1, min(count, 100000)
                backspace (unit)
            end do
        case ('write-plain         1MiB')
            open (unit, file='bench.1MiB', form='unformatted', status='replace')
            do i = 1, count
                write (unit) big
            end do
        case ('read-plain          1MiB')
            open (unit, file='bench.1MiB', form='unformatted')
            do i = 1, count
                read (unit) big
            end do
        case ('write-swapped       1MiB')
            open (unit, file='bench.1MiB', form='unformatted', status='replace', convert='swap')
            do i = 1, count
                write (unit) big
            end do
        case ('read-swapped        1MiB')
            open (unit, file='bench.1MiB', form='unformatted', convert='swap')
            do i = 1, count
                read (unit) big
            end do
        case ('write-random        direct', 'read-random         direct')
            open (unit, file='bench.random', form='unformatted', access='direct', recl=64)
            write (unit, rec=16777216) y
            do i = 1, count/10
                r = iand(r*1103515245_8 + 12345_8, 16777215_8)
                if (what == 'write-random') then
                    write (unit, rec=r + 1) x(:, iand(i, kept - 1) + 1)
                else
                    read (unit, rec=r + 1) y
                    sum = sum + y(1)
                end if
            end do
        case default
            error stop 'what?'
        end select
    end subroutine
end program
