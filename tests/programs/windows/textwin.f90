! A unit on a text window: lines go there and come from there.
program textwin
  use tarn
  use iso_c_binding
  implicit none
  interface
    subroutine cw_write(unit, text) bind(c, name='__cw_write')
      import c_int, c_char
      integer(c_int), value :: unit
      character(kind=c_char), intent(in) :: text(*)
    end subroutine
    integer(c_int) function text_of(window, buffer, flag) bind(c, name='__get_quillpan_text')
      import c_int, c_char
      integer(c_int), value :: window, flag
      character(kind=c_char), intent(out) :: buffer(*)
    end function
  end interface
  integer :: window, n, i, iostat, inner, control
  character(20) :: word
  character(100) :: text
  window = create_window@('Talk', 100, 80, 500, 300)
  call open_to_window@(30, window)
  write (30, '(a)') 'How many?'
  read (30, *, iostat=iostat) n
  do i = 1, n
    write (30, '(a, i0)') 'line ', i
  end do
  write (30, '(a)', advance='no') 'A word: '
  read (30, '(a)') word
  write (30, *) 'Thank you, ', trim(word)
  print '(i0, 1x, i0, 1x, a)', iostat, n, trim(word)
  ! A unit's control in a form is found by the unit's number too.
  i = winio@('%`40.4cw%lw', 40, inner, control)
  write (40, '(a)') 'by the unit'
  call cw_write(40, 'by its number' // c_null_char)
  n = text_of(inner, text, 1)
  print '(a)', text(14:n - 5)  ! behind the first line's end
  call destroy_window@(window)
end program
