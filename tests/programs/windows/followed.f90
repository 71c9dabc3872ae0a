! Texts that show a program's CHARACTER variable follow it: what is typed elsewhere, and what a
! call-back that asks for an update has made of it.
module texts
  use tarn
  implicit none
  integer :: on = 0
  character(12) :: name = 'Ada', label = 'before'
contains
  integer function change_both()
    name = 'Grace'
    label = 'after'
    change_both = 1
  end function
end module

program followed
  use tarn
  use texts
  implicit none
  integer :: i
  i = winio@('%ca[Followed]Name %12rs%nl%12st%ta%rb@%nl&', name, name, label, on)
  i = winio@('said %ws%`ws%nl%^bt[&Rename]%bt[OK]', 'first', 'second', change_both)
  print '(a,i2,4a)', 'button', i, ' ', trim(name), ' ', trim(label)
end program
