! What everyday programs do besides long runs of one format: `bench/run` times it as WHAT COUNT.
! Programs that read find the file that their counterpart wrote.
program everyday
    implicit none
    integer, parameter :: kept = 4096
    character(20) :: what, word
    integer :: count, i, j, k, length, n, total = 0, ids(8)
    integer(8) :: r = 1
    real(8) :: x(3, kept), y(3), sum = 0, grid(200), matrix(20, 20)
    real(4) :: z
    logical :: there
    character(80) :: line, name
    character(200) :: text
    call get_command_argument(1, what)
    call get_command_argument(2, word)
    read (word, *) count
    do i = 1, kept
        do k = 1, 3
            j = mod(i*7919 + k*104729, 1000003)
            x(k, i) = (j - 500000)*0.0031d0
        end do
    end do
    grid = [(i*0.37d0, i=1, 200)]
    matrix = reshape([(i*1.7d0, i=1, 400)], [20, 20])
    select case (what)
    case ('write-table')
        open (10, file='every.table', status='replace')
        do i = 1, count
            j = iand(i, kept - 1) + 1
            write (10, '(i8,3f12.4)') i, x(1, j), x(2, j), x(3, j)
        end do
    case ('read-table')
        open (10, file='every.table', status='old')
        do i = 1, count
            read (10, '(i8,3f12.4)') n, y
            sum = sum + y(1)
        end do
    case ('read-table-list')
        open (10, file='every.table', status='old')
        do i = 1, count
            read (10, *) n, y
            sum = sum + y(1)
        end do
    case ('write-scalars')
        open (10, file='every.scalars', status='replace')
        do i = 1, count
            j = iand(i, kept - 1) + 1
            write (10, *) i, x(1, j), real(x(2, j)), i > 3, 'name'
        end do
    case ('read-scalars')
        open (10, file='every.scalars', status='old')
        do i = 1, count
            read (10, *) n, y(1), z, there, word
            sum = sum + y(1)
        end do
    case ('write-vector')
        open (10, file='every.vector', status='replace')
        do i = 1, count/100
            write (10, *) grid
        end do
    case ('read-vector')
        open (10, file='every.vector', status='old')
        do i = 1, count/100
            read (10, *) grid
            sum = sum + grid(7)
        end do
    case ('write-matrix')
        open (10, file='every.matrix', status='replace')
        do i = 1, count/400
            do j = 1, 20
                write (10, '(20f10.3)') matrix(j, :)
            end do
        end do
    case ('read-matrix')
        open (10, file='every.matrix', status='old')
        do i = 1, count/400
            do j = 1, 20
                read (10, '(20f10.3)') matrix(j, :)
            end do
            sum = sum + matrix(3, 4)
        end do
    case ('write-csv')
        open (10, file='every.csv', status='replace')
        do i = 1, count
            j = iand(i, kept - 1) + 1
            write (10, '(i0,",",a,",",f0.3,",",es12.5)') i, 'station', x(1, j), x(2, j)
        end do
    case ('read-csv')
        open (10, file='every.csv', status='old')
        do i = 1, count
            read (10, *) n, word, y(1), y(2)
            sum = sum + y(1)
        end do
    case ('read-csv-split')
        open (10, file='every.csv', status='old')
        do i = 1, count
            read (10, '(a)') line
            j = index(line, ',')
            read (line(:j - 1), *) n
            k = j + index(line(j + 1:), ',')
            read (line(k + 1:), *) y(1), y(2)
            sum = sum + y(1)
        end do
    case ('write-lines')
        open (10, file='every.lines', status='replace')
        do i = 1, count
            write (10, '(a)') 'a line of some text that has no numbers in it'
        end do
    case ('read-lines')
        open (10, file='every.lines', status='old')
        do
            read (10, '(a)', iostat=n) line
            if (n /= 0) exit
            total = total + len_trim(line)
        end do
    case ('read-list-text')
        open (10, file='every.lines', status='old')
        do i = 1, count
            read (10, *) word, line
            total = total + len_trim(word)
        end do
    case ('copy-size')
        open (10, file='every.lines', status='old')
        do
            read (10, '(a)', advance='no', size=length, iostat=n) line
            if (n > 0 .or. is_iostat_end(n)) exit
            total = total + length
        end do
    case ('write-internal-i')
        do i = 1, count
            write (line, '(i0)') i
            total = total + ichar(line(1:1))
        end do
    case ('write-internal-f')
        do i = 1, count
            write (line, '(f12.4)') x(1, iand(i, kept - 1) + 1)
            total = total + ichar(line(5:5))
        end do
    case ('write-internal-list')
        do i = 1, count
            write (line, *) x(1, iand(i, kept - 1) + 1)
            total = total + ichar(line(5:5))
        end do
    case ('write-internal-name')
        do i = 1, count
            write (name, '(a,i5.5,a)') 'out', i, '.dat'
            total = total + ichar(name(5:5))
        end do
    case ('read-internal-i')
        line = '  12345'
        do i = 1, count
            read (line, '(i7)') n
            total = total + n
        end do
    case ('read-internal-list')
        line = '  12345'
        do i = 1, count
            read (line, *) n
            total = total + n
        end do
    case ('read-internal-f')
        line = '  123.45678'
        do i = 1, count
            read (line, *) y(1)
            sum = sum + y(1)
        end do
    case ('write-nonadvancing')
        open (10, file='every.parts', status='replace')
        do i = 1, count/10
            do j = 1, 10
                write (10, '(i6)', advance='no') j*i
            end do
            write (10, *)
        end do
    case ('read-nonadvancing')
        open (10, file='every.parts', status='old')
        do i = 1, count/10
            do j = 1, 10
                read (10, '(i6)', advance='no') n
                total = total + n
            end do
            read (10, *)
        end do
    case ('write-print')
        do i = 1, count
            j = iand(i, kept - 1) + 1
            print '(a,i6,a,f10.3)', 'step', i, ' energy', x(1, j)
        end do
    case ('write-flush')
        open (10, file='every.flush', status='replace')
        do i = 1, count/10
            write (10, '(i8,f12.4)') i, x(1, iand(i, kept - 1) + 1)
            flush (10)
        end do
    case ('write-stream')
        open (10, file='every.stream', access='stream', form='unformatted', status='replace')
        do i = 1, count
            write (10) i, x(:, iand(i, kept - 1) + 1)
        end do
    case ('read-stream')
        open (10, file='every.stream', access='stream', form='unformatted', status='old')
        do i = 1, count
            read (10) n, y
            sum = sum + y(1)
        end do
    case ('read-stream-bytes')
        open (10, file='every.stream', access='stream', form='unformatted', status='old')
        do i = 1, count
            read (10) word(1:1)
            total = total + ichar(word(1:1))
        end do
    case ('read-stream-pos')
        open (10, file='every.stream', access='stream', form='unformatted', status='old')
        do i = 1, count/10
            r = mod(r*1103515245_8 + 12345_8, 20000_8)
            read (10, pos=r*28 + 1) n, y
            sum = sum + y(1)
        end do
    case ('write-stream-text')
        open (10, file='every.sttext', access='stream', form='formatted', status='replace')
        do i = 1, count
            write (10, '(i8,f12.4)') i, x(1, iand(i, kept - 1) + 1)
        end do
    case ('write-direct')
        open (10, file='every.direct', form='unformatted', access='direct', recl=24, status='replace')
        do i = 1, count
            write (10, rec=i) x(:, iand(i, kept - 1) + 1)
        end do
    case ('read-direct')
        open (10, file='every.direct', form='unformatted', access='direct', recl=24)
        do i = 1, count
            read (10, rec=i) y
            sum = sum + y(1)
        end do
    case ('update-direct')
        open (10, file='every.direct', form='unformatted', access='direct', recl=24)
        do i = 1, count/10
            r = mod(r*1103515245_8 + 12345_8, 1000_8)
            read (10, rec=r + 1) y
            y(1) = y(1) + 1
            write (10, rec=r + 1) y
        end do
    case ('update-in-turn')
        open (10, file='every.direct', form='unformatted', access='direct', recl=24)
        do i = 1, count/10
            read (10, rec=i) y
            y(1) = y(1) + 1
            write (10, rec=i) y
        end do
    case ('write-direct-text')
        open (10, file='every.dtext', form='formatted', access='direct', recl=44, status='replace')
        do i = 1, count
            write (10, '(i8,3f12.4)', rec=i) i, x(:, iand(i, kept - 1) + 1)
        end do
    case ('read-direct-text')
        open (10, file='every.dtext', form='formatted', access='direct', recl=44)
        do i = 1, count
            read (10, '(i8,3f12.4)', rec=i) n, y
            sum = sum + y(1)
        end do
    case ('inquire-exist')
        do i = 1, count/10
            inquire (file='every.table', exist=there)
            if (there) total = total + 1
        end do
    case ('inquire-missing')
        do i = 1, count/10
            inquire (file='every.missing', exist=there)
            if (there) total = total + 1
        end do
    case ('inquire-unit')
        open (10, file='every.unit')
        do i = 1, count
            inquire (unit=10, opened=there, number=n)
            total = total + n
        end do
    case ('open-close')
        do i = 1, count/100
            write (name, '(a,i0)') 'every.open/', i
            open (10, file=name)
            write (10, '(i8)') i
            close (10)
        end do
    case ('open-read')
        do i = 1, count/100
            write (name, '(a,i0)') 'every.open/', i
            open (10, file=name, status='old')
            read (10, *) n
            close (10)
        end do
    case ('open-delete')
        do i = 1, count/100
            write (name, '(a,i0)') 'every.open/', i
            open (10, file=name)
            close (10, status='delete')
        end do
    case ('open-scratch')
        do i = 1, count/100
            open (10, status='scratch')
            write (10, *) i
            rewind (10)
            read (10, *) n
            close (10)
        end do
    case ('open-many')
        do i = 1, 900
            write (name, '(a,i0)') 'every.open/', i
            open (100 + i, file=name)
        end do
        do j = 1, count/1000
            do i = 1, 900
                write (100 + i, '(i8)') j
            end do
        end do
    case ('backspace-text')
        open (10, file='every.table', status='old', position='append')
        do i = 1, count/10
            backspace (10)
        end do
    case ('backspace-read')
        open (10, file='every.table', status='old')
        do i = 1, count/10
            read (10, *) n
            backspace (10)
            read (10, *) y(1)
        end do
    case ('rewind-read')
        open (10, file='every.table', status='old')
        do i = 1, count/10
            rewind (10)
            read (10, *) n
        end do
    case ('rewind-write')
        open (10, file='every.state', status='replace')
        do i = 1, count/100
            rewind (10)
            write (10, '(i8,f12.4)') i, x(1, iand(i, kept - 1) + 1)
        end do
    case ('read-append')
        do i = 1, count/100
            open (10, file='every.log', position='append')
            write (10, '(a,i8)') 'step', i
            close (10)
        end do
    case ('read-twice')
        do i = 1, 2
            open (10, file='every.lines', status='old')
            do
                read (10, '(a)', end=1) text
                total = total + len_trim(text)
            end do
1           close (10)
        end do
    case ('write-complex')
        open (10, file='every.complex', status='replace')
        do i = 1, count
            j = iand(i, kept - 1) + 1
            write (10, *) cmplx(x(1, j), x(2, j), 8)
        end do
    case ('write-single')
        open (10, file='every.single', status='replace')
        do i = 1, count
            write (10, *) real(x(1, iand(i, kept - 1) + 1)), real(i)
        end do
    case ('write-integers')
        open (10, file='every.integers', status='replace')
        do i = 1, count/8
            ids = i
            write (10, *) ids
        end do
    case ('read-integers')
        open (10, file='every.integers', status='old')
        do i = 1, count/8
            read (10, *) ids
            total = ieor(total, ids(3))
        end do
    case ('write-implied')
        open (10, file='every.implied', status='replace')
        do i = 1, count/10
            write (10, '(10(i4,1x,f8.3))') (j, x(1, j), j=1, 10)
        end do
    case ('write-big')
        open (10, file='every.big', form='unformatted', status='replace')
        do i = 1, count/10
            write (10) matrix
        end do
    case ('read-big')
        open (10, file='every.big', form='unformatted', status='old')
        do i = 1, count/10
            read (10) matrix
            sum = sum + matrix(2, 3)
        end do
    case ('read-part')
        open (10, file='every.big', form='unformatted', status='old')
        do i = 1, count/10
            read (10) y(1)
            sum = sum + y(1)
        end do
    case ('write-slice')
        open (10, file='every.slice', form='unformatted', status='replace')
        do i = 1, count/10
            write (10) matrix(3, :)
        end do
    case ('write-swapped')
        open (10, file='every.swapped', form='unformatted', status='replace', convert='big_endian')
        do i = 1, count
            write (10) i, x(:, iand(i, kept - 1) + 1)
        end do
    case ('read-swapped')
        open (10, file='every.swapped', form='unformatted', status='old', convert='big_endian')
        do i = 1, count
            read (10) n, y
            sum = sum + y(1)
        end do
    case default
        error stop 'what?'
    end select
    if (what(1:5) /= 'write') print *, sum, total
end program
