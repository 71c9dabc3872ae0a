! REWIND, BACKSPACE, ENDFILE and CLOSE after READs and WRITEs of every kind, finished or not.
program positions
    implicit none
    integer :: ios, i, n
    character(40) :: text
    open (20, file='a')
    write (20, '(A)') 'one', 'two', 'three', 'four'
    backspace (20)
    read (20, '(A)') text
    print *, text
    backspace (20)
    backspace (20)
    write (20, '(A)') 'THREE'
    call show('cut by a write')
    backspace (20)
    read (20, '(A)', iostat=ios) text
    print *, 'behind the end', ios
    backspace (20)
    backspace (20)
    read (20, '(A)') text
    print *, text
    rewind (20)
    read (20, *)
    read (20, '(A1)', advance='no') text
    backspace (20)
    read (20, '(A)') text
    print *, 'from within: ', text
    rewind (20)
    write (20, '(A)', advance='no') 'open'
    backspace (20)
    read (20, '(A)') text
    print *, text
    rewind (20)
    write (20, '(A)', advance='no') 'open'
    call show('rewound')
    rewind (20)
    write (20, '(A)', advance='no') 'open'
    endfile (20)
    call show('ended')
    endfile (20, iostat=ios)
    print *, ios
    endfile (20, iostat=ios)
    print *, ios
    backspace (20)
    endfile (20, iostat=ios)
    print *, ios
    backspace (20)
    backspace (20)
    read (20, '(A)') text
    print *, text
    rewind (20)
    write (20, '(A)') '1', '2', '3'
    rewind (20)
    read (20, '(A)') text
    endfile (20)
    call show('endfile within')
    rewind (20)
    write (20, '(A)', advance='no') 'closed'
    close (20)
    open (20, file='a')
    call show('closed')
    close (20)

    ! Far back, across many buffers.
    open (20, file='far')
    do i = 1, 30000
        write (20, '(I0,A)') i, repeat('.', mod(i, 17))
    end do
    do i = 1, 29000
        backspace (20)
    end do
    read (20, '(A)') text
    print *, text
    backspace (20)
    write (20, '(A)') repeat('x', 100000)
    backspace (20)
    read (20, '(A)') text
    print *, text
    inquire (20, size=n)
    print *, n
    close (20, status='delete')

    open (21, file='direct', access='direct', recl=8)
    rewind (21, iostat=ios)
    print *, 'direct', ios
    backspace (21, iostat=ios)
    print *, ios
    endfile (21, iostat=ios)
    print *, ios
    close (21)
    open (21, file='stream', access='stream')
    backspace (21, iostat=ios)
    print *, 'stream', ios
    endfile (21, iostat=ios)
    print *, ios
    close (21)
    open (21, file='a', action='read')
    endfile (21, iostat=ios)
    print *, 'for reading', ios
    close (21)
    rewind (22, iostat=ios)
    print *, 'not connected', ios
    backspace (22, iostat=ios)
    print *, ios
    flush (22, iostat=ios)
    print *, ios
    close (22, iostat=ios)
    print *, ios
    endfile (22, iostat=ios)
    inquire (22, form=text)
    print *, ios, text
    n = -40
    rewind (n, iostat=ios)
    print *, ios

contains
    subroutine show(what)
        character(*), intent(in) :: what
        integer :: state
        print *, what
        rewind (20)
        do
            read (20, '(A)', iostat=state) text
            if (state /= 0) exit
            print *, '   ', text
        end do
        print *, '   ', state
    end subroutine
end program
