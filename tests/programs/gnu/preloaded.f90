! A program linked with gfortran's run-time, with the library put in front of it when it runs.
! preload
! run: env $PRELOAD $PROGRAM 5 < /dev/null
! run: printf '1 2\n3.5 text\n' | env $PRELOAD $PROGRAM 5
program preloaded
    implicit none
    integer :: i, n, ios
    real :: x
    character(20) :: text
    call get_command_argument(1, text)
    read (text, *) n
    print *, 'hello', n, (i*0.5, i=1, n)
    read (*, *, iostat=ios) i, n
    print *, ios
    if (ios == 0) then
        read (*, *) x, text
        print *, x, text
    end if
    open (10, file='pre.txt')
    write (10, '(3(I4,ES12.4))') (i, exp(real(i)), i=1, 7)
    rewind (10)
    read (10, '(3(I4,ES12.4))') i, x
    print *, i, x
    stop 0
end program
