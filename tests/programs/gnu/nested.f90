! Functions of an I/O list that do I/O of their own: internal files, other units, deeply.
module helpers
    implicit none
    integer :: depth = 0
contains
    function text_of(n) result(text)
        integer, intent(in) :: n
        character(8) :: text
        write (text, '(A,I0)') 'n=', n
    end function
    recursive function nested_text(n) result(text)
        integer, intent(in) :: n
        character(40) :: text
        if (n == 0) then
            text = '.'
        else
            write (text, '(I0,A,A)') n, '<', trim(nested_text(n - 1))//'>'
        end if
    end function
    integer function parsed(text)
        character(*), intent(in) :: text
        read (text, *) parsed
    end function
    integer function logged(n)
        integer, intent(in) :: n
        write (20, '(A,I4)') 'logged', n
        logged = n*n
    end function
    integer function from_file()
        read (21, *) from_file
    end function
    integer function failing(n)
        integer, intent(in) :: n
        integer :: ios
        read (21, '(I5)', iostat=ios) failing
        failing = ios + n
    end function
    integer function opening(n)
        integer, intent(in) :: n
        open (22, file='made inside')
        write (22, *) n, text_of(n)
        close (22)
        opening = n
    end function
end module
program nested
    use helpers
    implicit none
    integer :: i, values(3)
    character(30) :: line
    open (20, file='log.txt')
    open (21, file='numbers.txt')
    write (21, '(I5)') (10*i, i=1, 5)
    rewind (21)
    print *, text_of(1), 2, text_of(3)
    print '(A,1X,I3,1X,A)', text_of(4), parsed('  17 '), trim(text_of(5))
    print *, nested_text(6)
    write (line, '(A,I4)') trim(text_of(7)), parsed(trim('8 9'))
    print *, line
    print *, (logged(i), i=1, 3), from_file(), from_file()
    print '(3I5)', from_file(), logged(9), failing(0)
    write (*, '(I4,1X)', advance='no') logged(4)
    print '(A,I3)', 'after', opening(5)
    write (line, *) logged(6), trim(text_of(from_file()))
    print *, line
    print *, 'at the end', failing(100), 'and on', logged(7)
    values = [(logged(i), i=1, 3)]
    print *, (text_of(values(i)), logged(values(i)), i=1, 3)
    close (20)
end program
