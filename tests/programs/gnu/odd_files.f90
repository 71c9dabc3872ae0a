! Files that end in the middle of a record, with CR LF, without a line end, with bytes 0 and 26.
program odd_files
    implicit none
    integer :: i, n, ios, size
    character(12) :: text
    character(2), parameter :: crlf = char(13)//char(10)
    character, parameter :: lf = char(10)
    real :: x
    call make('no end'//lf//'last 12')
    call lines()
    call make('cr'//crlf//'lf 1 2'//crlf//crlf//'x'//char(13)//'y'//crlf//'end'//char(13))
    call lines()
    call make('nul'//char(0)//'x'//lf//'ctrl-z'//char(26)//lf//'tab'//char(9)//'y'//lf//char(12)//lf)
    call lines()
    call make('')
    call lines()
    call make(lf)
    call lines()
    call make(lf//lf//'x')
    call lines()
    call make('1 2'//crlf//'3,4'//crlf//'5'//crlf//'''a'//crlf//'b'' 6 7'//crlf)
    open (10, file='odd')
    read (10, *) i, n
    print *, i, n
    read (10, *) i, n
    print *, i, n
    read (10, *) i, text, n
    print *, i, '['//text//']', (iachar(text(ios:ios)), ios=1, 5), n
    close (10)
    call make('  1.5'//crlf//'2.5'//crlf//'7'//char(9)//'8'//crlf)
    open (10, file='odd')
    read (10, '(F8.0)') x
    print *, x
    read (10, '(F8.0)') x
    print *, x
    read (10, *) i, n
    print *, i, n
    close (10)
    call make('12')
    open (10, file='odd')
    read (10, '(I1)', advance='no') i
    read (10, '(I5)', advance='no', iostat=ios, size=size) n
    print *, i, n, ios, size
    read (10, '(I5)', advance='no', iostat=ios, size=size) n
    print *, ios, size
    close (10)
    call make('7')
    open (10, file='odd')
    read (10, *, iostat=ios) i
    print *, i, ios
    read (10, *, iostat=ios) i
    print *, i, ios
    close (10)
    call make('7 ')
    open (10, file='odd')
    read (10, *, iostat=ios) i, n
    print *, i, ios
    close (10)
    call make('3*')
    open (10, file='odd')
    i = -5
    read (10, *, iostat=ios) i
    print *, i, ios
    close (10)
    call make('''open')
    open (10, file='odd')
    read (10, *, iostat=ios) text
    print *, text, ios
    close (10)
    call make('abc')
    open (10, file='odd', position='append')
    write (10, '(A)') 'appended to half a record'
    close (10)
    open (10, file='odd')
    read (10, '(A)') text
    print *, text
    close (10)
    ! Unformatted files that are cut or corrupt.
    call make(char(4)//char(0)//char(0)//char(0)//'abcd'//char(4)//char(0)//char(0)//char(0)// &
              char(8)//char(0)//char(0)//char(0)//'efg')
    open (10, file='odd', form='unformatted')
    read (10) text(1:4)
    print *, text(1:4)
    read (10, iostat=ios) text(1:8)
    print *, 'cut', ios
    close (10)
    call make(char(4)//char(0)//char(0)//char(0)//'abcd'//char(5)//char(0)//char(0)//char(0))
    open (10, file='odd', form='unformatted')
    read (10, iostat=ios) text(1:4)
    print *, 'lengths differ', ios
    close (10)
    call make(char(4)//char(0))
    open (10, file='odd', form='unformatted')
    read (10, iostat=ios) text(1:4)
    print *, 'half a length', ios
    close (10)
    call make('')
    open (10, file='odd', form='unformatted')
    read (10, iostat=ios)
    print *, 'empty', ios
    close (10)
contains
    subroutine make(content)
        character(*), intent(in) :: content
        open (9, file='odd', access='stream', status='replace')
        write (9) content
        close (9)
    end subroutine
    subroutine lines()
        open (10, file='odd')
        print *, 'formatted'
        do i = 1, 8
            text = '????????????'
            read (10, '(A)', iostat=ios) text
            print *, (iachar(text(n:n)), n=1, 8), ios
            if (ios /= 0) exit
        end do
        rewind (10)
        print *, 'by pieces'
        do i = 1, 30
            read (10, '(A3)', iostat=ios, advance='no', size=size) text(1:3)
            print *, text(1:max(size, 0)), size, ios
            if (ios == -1) exit
        end do
        rewind (10)
        print *, 'list-directed'
        do i = 1, 8
            read (10, *, iostat=ios) text
            print *, (iachar(text(n:n)), n=1, 8), ios
            if (ios /= 0) exit
        end do
        close (10)
    end subroutine
end program
