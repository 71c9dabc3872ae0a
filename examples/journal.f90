! A text window that a unit writes to, with a timer: WRITE appends a line every half second.
module journal_state
  implicit none
  integer, parameter :: unit = 21
  integer :: lines = 0
  integer :: running = 1, stopped = 0
contains
  integer function tick()
    tick = 2
    if (running == 0) return
    lines = lines + 1
    write (unit, '(a, i5, a, f8.3)') 'reading', lines, ':  ', 20 + 2 * sin(lines / 5.0)
  end function
  integer function pause_it()
    running = 0
    stopped = 1
    write (unit, '(a)') '-- paused --'
    pause_it = 1
  end function
  integer function go_on()
    running = 1
    stopped = 0
    go_on = 1
  end function
end module

program journal
  use tarn
  use journal_state
  implicit none
  integer :: i
  i = winio@('%ca[Journal]&')
  i = winio@('%ww[not_fixed_size]%pv%56.14cw[vscroll,border]%ff&', unit)
  i = winio@('%nl%cn%~^9bt[&Pause] %~^9bt[&Go on] %`9bt[&Close]&', running, pause_it, stopped, go_on)
  i = winio@('%dl', 0.5d0, tick)
  print '(i0, a)', lines, ' readings'
end program
