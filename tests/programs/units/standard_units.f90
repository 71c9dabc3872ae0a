! Units 0, 5 and 6: closed, connected to files, found again; what is left open at the end; standard
! input from a file and from a pipe.
! run: echo 'a line' | $PROGRAM
! run: $PROGRAM < /dev/null
! run: GFORTRAN_STDOUT_UNIT=16 GFORTRAN_STDERR_UNIT=17 $PROGRAM < /dev/null
program standard_units
    implicit none
    integer :: ios, i
    character(20) :: text, name
    logical :: opened
    read (5, '(A)', iostat=ios) text
    print *, ios
    if (ios == 0) print *, text
    do i = 0, 18
        inquire (i, opened=opened, name=name, action=text)
        if (opened) print *, i, name, text
    end do
    open (40, file='left open')
    write (40, '(A)', advance='no') 'without an end'
    write (*, '(A)', advance='no') 'prompt: '
    close (6)
    print *, 'to fort.6'
    open (6, file='file of 6')
    print *, 'to the file'
    write (*, '(A)', advance='no') 'open in 6'
end program
