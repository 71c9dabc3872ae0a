! Unformatted files that are cut off or hold nonsense. (What follows a record that gfortran searches
! for without an end, and BACKSPACE over such ones, isn't compared.)
program unformatted_broken
    implicit none
    integer(1) :: part(40)
    integer :: i
    part = 0
    part(1) = 8
    part(5:12) = [(int(i, 1), i=1, 8)]
    part(13) = 8
    part(17) = 4
    part(21:24) = 99
    part(25) = 4
    do i = 0, 28
        call try(i, part(1:i))
    end do
    call try(100, [integer(1) :: 0, 0, 0, 0])
    call try(101, [integer(1) :: 4, 0, 0, 0, 1, 2, 3, 4, 5, 0, 0, 0])
    call try(102, [integer(1) :: 4, 0, 0, 0, 1, 2, 3, 4, 5, 0, 0, 0, 4, 0, 0, 0, 1, 2, 3, 4])
    call try(103, [integer(1) :: -1, -1, -1, 127, 1, 2, 3, 4, 5, 6, 7, 8, 9])
    call try(104, [integer(1) :: -4, -1, -1, -1, 1, 2, 3, 4, 4, 0, 0, 0, &
                   4, 0, 0, 0, 5, 6, 7, 8, -4, -1, -1, -1])
    call try(105, [integer(1) :: 0, 0, 0, 0, 0, 0, 0, 0, -4, -1, -1, -1, 1, 2, 3, 4, 4, 0, 0, 0, &
                   0, 0, 0, 0, 0, 0, 0, 0])
contains
    subroutine try(number, bytes)
        integer :: number, n, k, ios(4), values(4)
        integer(1) :: bytes(:)
        open (10, file='broken.bin', access='stream', status='replace')
        write (10) bytes
        close (10)
        do n = 0, 4
            open (10, file='broken.bin', form='unformatted', action='read')
            values = -1
            do k = 1, 4
                read (10, iostat=ios(k)) values(1:n)
            end do
            print *, number, n, ios, values
            rewind (10)
            read (10, iostat=ios(1)) values(1)
            print *, ios(1), values(1)
            close (10)
            open (10, file='broken.bin', access='direct', recl=12, action='read')
            values = -1
            do k = 1, 4
                read (10, rec=k, iostat=ios(k)) values(1:min(n, 3))
            end do
            print *, ios, values
            close (10)
            open (10, file='broken.bin', access='stream', action='read')
            values = -1
            read (10, iostat=ios(1)) values(1:n)
            read (10, pos=14, iostat=ios(2)) values(4)
            print *, ios(1:2), values
            close (10)
        end do
    end subroutine
end program
