! A dialogue: list-directed input takes what people type, in any layout. A slash ends the list early,
! and `3*2.5` stands for three values.
program dialogue
  implicit none
  character(20) :: name
  integer :: n, status
  real :: values(100), mean

  write (*, '(a)', advance='no') 'Your name? '
  read *, name
  write (*, '(a)', advance='no') 'How many measurements? '
  read (*, *, iostat=status) n
  if (status /= 0 .or. n < 1 .or. n > size(values)) then
    print '(a)', 'That is no number from 1 to 100.'
    stop 2
  end if
  values = 0
  write (*, '(a)', advance='no') 'The measurements? '
  read *, values(:n)
  mean = sum(values(:n)) / n
  print '(/3a,i0,a)', 'Thank you, ', trim(name), '. ', n, ' measurements:'
  print *, values(:n)
  print '(a,f0.3,a,g0.4)', 'mean ', mean, ', spread ', maxval(values(:n)) - minval(values(:n))
end program
