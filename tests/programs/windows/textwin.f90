! A unit on a text window: lines go there and come from there.
program textwin
  use tarn
  implicit none
  integer :: window, n, i, iostat
  character(20) :: word
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
  call destroy_window@(window)
end program
