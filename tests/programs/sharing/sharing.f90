! sharing WHO COUNT FORM: appends COUNT records to the file `shared` that others append to as well,
! and meets nobody in scratch files. A record: who, its number, its length, and that many times the
! last digit of the number.
program sharing
    implicit none
    character(20) :: word, form
    character(700) :: text
    integer :: who, count, i, k, length, found
    call get_command_argument(1, word)
    read (word, *) who
    call get_command_argument(2, word)
    read (word, *) count
    call get_command_argument(3, form)
    do k = 1, 3
        open (20 + k, form='unformatted', status='scratch')
    end do
    open (10, file='shared', form=form, position='append', share='denynone')
    do i = 1, count
        length = mod(i*who, 600)
        text = repeat(char(48 + mod(i, 10)), length)
        if (form == 'formatted') then
            write (10, '(3i8,a)') who, i, length, text(1:length)
        else
            write (10) who, i, length, text(1:length)
        end if
        if (mod(i, 16) /= 0) cycle
        k = 21 + mod(i/16, 3)
        rewind (k)
        write (k) who*100000 + i
        rewind (k)
        read (k) found
        if (found /= who*100000 + i) error stop 'a scratch file was somebody else''s'
    end do
    close (10)
end program
