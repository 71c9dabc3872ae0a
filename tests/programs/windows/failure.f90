! A failure in a call-back: the report stands in a window until it is closed.
module work
  integer :: n = 0
contains
  integer function Compute()
    integer, allocatable :: list(:)
    call Deeper(list)
    Compute = 1
  end function
  subroutine Deeper(list)
    integer, allocatable :: list(:)
    deallocate (list)
  end subroutine
end module
program Window_Program
  use tarn
  use work
  integer :: i
  i = winio@('%ca[Work]%rd%nl%`^bt[&Go]', n, Compute)
end program
