! Reads a file of orders with a mistake in it. With neither IOSTAT= nor ERR= the program ends there,
! and the report says what, where, on which unit and in which file.
program orders
  implicit none
  integer :: unit, number, pieces, total
  character(12) :: article

  open (newunit=unit, file='orders.txt', status='replace')
  write (unit, '(a)') '1001 screw      250', '1002 nut        2S0', '1003 washer     400'
  rewind (unit)
  total = 0
  do
    read (unit, '(i4,1x,a10,i4)') number, article, pieces
    total = total + pieces
    print '(a,i5,1x,a,i5)', 'order', number, article, pieces
  end do
end program
