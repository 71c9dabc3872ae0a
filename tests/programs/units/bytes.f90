! The older routines: single bytes, seeking and telling.
program bytes
    implicit none
    integer :: i, ios
    integer(8) :: at
    character(5) :: c
    character(20) :: text
    open (10, file='bytes')
    write (10, '(A)') 'hello', 'world'
    print *, ftell(10)
    rewind (10)
    do i = 1, 14
        c = 'zzzzz'
        ios = fgetc(10, c)
        at = ftell(10)
        print *, ios, iachar(c(1:1)), '['//c(2:)//']', at
    end do
    call seek(2_8, 0)
    call seek(-3_8, 2)
    call seek(1_8, 1)
    call seek(-100_8, 0)
    call seek(0_8, 7)
    call fseek(99, 0, 0, ios)
    at = ftell(99)
    print *, ios, at, fgetc(99, c), fputc(99, c), fnum(99)
    rewind (10)
    print *, fputc(10, 'abc'), fputc(10, 'X'), ftell(10)
    write (10, '(A)') 'line'
    ios = fputc(10, 'Y')
    write (10, '(A)') 'line 2'
    rewind (10)
    do
        read (10, '(A)', iostat=ios) text
        if (ios /= 0) exit
        print *, text
    end do
    open (11, file='/dev/ptmx', iostat=ios)
    do i = 8, 10
        call ttynam(11, text(:i))
        print *, ios, isatty(11), '['//text(:i)//']'
    end do
    ios = fputc(6, 'Q')
    ios = fput('R')
    print *, 'behind'
    close (10)

contains
    subroutine seek(offset, whence)
        integer(8), intent(in) :: offset
        integer, intent(in) :: whence
        call fseek(10, offset, whence, ios)
        at = ftell(10)
        print *, 'seek', ios, at
        if (ios == 0) then
            ios = fgetc(10, c)
            print *, ios, c
        end if
    end subroutine
end program
