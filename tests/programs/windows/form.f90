! One form that notes every call-back with its reason and what its variables hold.
module form_state
  use tarn
  implicit none
  integer :: count = 3, flag = 0, other = 1
  real(8) :: area = 2.5d0
  character(12) :: name = 'Ada'
contains
  subroutine note(who)
    character(*), intent(in) :: who
    print '(a, 1x, a, i6, f9.3, 1x, a, 2i2)', who, trim(quillpan_string@('CALL_BACK_REASON')), &
      count, area, trim(name), flag, other
  end subroutine
  integer function on_count()
    call note('count')
    on_count = 2
  end function
  integer function on_area()
    call note('area')
    on_area = 2
  end function
  integer function on_name()
    call note('name')
    on_name = 2
  end function
  integer function double_it()
    call note('double')
    area = 2 * area
    count = count + 1
    double_it = 1
  end function
  integer function on_flag()
    call note('flag')
    on_flag = 1
  end function
  integer function may_close()
    call note('closing')
    may_close = 0
  end function
end module

program form
  use tarn
  use form_state
  implicit none
  integer :: i, started = 0
  integer, external :: outside
  i = winio@('%ca[Form]%sc%cc&', start_up, may_close)
  i = winio@('%il&', 0, 500)
  i = winio@('Count%ta%^6rd%nl&', count, on_count)
  i = winio@('Area%ta%^10rf%nl&', area, on_area)
  i = winio@('Name%ta%^12rs%nl&', name, on_name)
  i = winio@('%^`rb[Flag]  %^`rb[Other]%2ga%nl&', flag, on_flag, other, on_flag, flag, other)
  i = winio@('%nl%^bt[&Double]%^bt[&Outside]%`bt[&Close]', double_it, outside)
  print '(a, i0, a, i0)', 'result ', i, ' started ', started
  call note('after')
contains
  ! A contained procedure sees the variables of the program.
  integer function start_up()
    started = started + 1
    call note('start')
    start_up = 1
  end function
end program

integer function outside()
  use form_state
  call note('outside')
  name = 'Grace'
  call window_update@(name)
  outside = 2
end function
