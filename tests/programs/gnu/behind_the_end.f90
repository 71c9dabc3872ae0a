! What comes behind the end of a file: under -std=legacy a WRITE appends, else it fails first.
! build: $FC $FLAGS $SRC/behind_the_end.f90 $LINK -o $PROGRAM && $FC $FLAGS -std=legacy $SRC/behind_the_end.f90 $LINK -o ${PROGRAM}_legacy
! run: $PROGRAM
! run: ${PROGRAM}_legacy
program behind_the_end
    implicit none
    character(11), parameter :: forms(2) = ['unformatted', 'formatted  ']
    logical :: plain
    integer :: form, records, reads, i, status
    do form = 1, 2
        plain = form == 2
        do records = 0, 1
            do reads = 1, 2
                open (10, file='file', form=forms(form), status='replace')
                do i = 1, records
                    call put(i)
                end do
                rewind (10)
                call get(records + reads)
                call put(8)
                call put(9)
                call get(1)
                rewind (10)
                call get(5)
                backspace (10)
                call put(7)
                close (10, status='delete')
            end do
        end do
    end do
contains
    subroutine put(value)
        integer, intent(in) :: value
        if (plain) then
            write (10, *, iostat=status) value
        else
            write (10, iostat=status) value
        end if
        print *, forms(form), records, reads, 'put', status
    end subroutine

    subroutine get(times)
        integer, intent(in) :: times
        integer :: i, value
        do i = 1, times
            value = -1
            if (plain) then
                read (10, *, iostat=status) value
            else
                read (10, iostat=status) value
            end if
            print *, forms(form), records, reads, 'get', status, value
        end do
    end subroutine
end program
