! The longest line of each text file: ./longest '*.f90' notes.txt
!
! Files are found by pattern with files@ and read by their handles, without units or formats.
program longest
  use tarn
  implicit none
  integer, parameter :: most = 1000
  character(300) :: names(most)
  character(:), allocatable :: pattern
  integer(2) :: attributes(most), dates(most), times(most)
  integer :: sizes(most), count, i

  do
    pattern = trim(cmnam@())
    if (pattern == '') exit
    call files@(pattern, count, most, names, attributes, dates, times, sizes)
    if (count == 0) print '(2a)', 'no such file: ', pattern
    do i = 1, count
      if (iand(attributes(i), 16_2) == 0) call show(trim(names(i)))
    end do
  end do

contains

  subroutine show(name)
    character(*), intent(in) :: name
    character(1000) :: line, best
    integer(2) :: handle, error
    integer :: length, best_length
    best_length = 0
    call openr@(name, handle, error)
    do while (error == 0)
      call readfa@(line, handle, length, error)
      if (error /= 0 .or. length < 0) exit
      if (length > best_length) best = line(1:length)
      best_length = max(length, best_length)
    end do
    if (error /= 0) then
      print '(2a,i0)', name, ': error ', error
    else
      print '(2a,i0,3a)', trim(local_file_name@(name)), ': ', best_length, ' [', best(1:min(best_length, 40)), ']'
    end if
    if (handle /= -1) call closef@(handle, error)
  end subroutine
end program
