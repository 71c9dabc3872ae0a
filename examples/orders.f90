! Reads a file of orders with a mistake in it. With neither IOSTAT= nor ERR= the program ends there,
! and the report says what, where, on which unit and in which file, and who called.
module Ledger
  implicit none
contains
  integer function Pieces_Of(unit)
    integer, intent(in) :: unit
    integer :: number
    character(12) :: article
    read (unit, '(i4,1x,a10,i4)') number, article, Pieces_Of
    print '(a,i5,1x,a,i5)', 'order', number, article, Pieces_Of
  end function

  recursive integer function Total(unit, lines) result(sum)
    integer, intent(in) :: unit, lines
    sum = 0
    if (lines > 0) sum = Pieces_Of(unit) + Total(unit, lines - 1)
  end function
end module

program Orders
  use Ledger
  integer :: unit, all

  open (newunit=unit, file='orders.txt', status='replace')
  write (unit, '(a)') '1001 screw      250', '1002 nut        2S0', '1003 washer     400'
  rewind (unit)
  all = Total(unit, 3)
  print *, 'pieces:', all
end program
