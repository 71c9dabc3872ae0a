! Texts, sorting, random numbers and dates through the Fortran modules.
program library_routines
  use tarn
  implicit none
  character(20) :: t
  character(3) :: names(5) = ['eve', 'bob', 'zoe', 'ann', 'cat']
  integer :: index(5), place, w, d, m, y, i
  real(8) :: x(3), s
  t = '  hello World'
  call trim@(t)
  call upcase@(t)
  write (*, '(3a)') '[', t, ']'
  write (*, '(3a)') '[', centre@('mid', 11), ']'
  call append_string@(t, '!')
  write (*, '(a,i3)') t, nonblk@('   x')
  write (*, '(2a)') cnum@(-42), trim(sayint@(1234567))
  call chsort@(index, names, 5)
  write (*, '(5(1x,a))') names(index)
  names = names(index)
  call chseek@('eve', names, 5, place)
  call isort@(index, [3, 1, 2], 3)
  write (*, '(4i3)') place, index(1:3)

  ! 13**13 / 2**59
  call set_random_seed@([1, 0])
  write (*, '(f20.17)') random@()
  i = 42
  call mt_random_seed@(3, i)
  call mt_randomr8_array@(x, 3)
  call mt_random_seed@(3, i)
  call mt_randomr8@(s)
  write (*, '(l2)') s == x(1)

  write (*, '(3(1x,a))') todate@(946684800), toedate@(68169600), tofdate@(946684800)
  call convdate@(951782400, w, d, m, y)
  write (*, '(4i5)') w, d, m, y
  call seconds_since_1900@(s, 5, 4, 3, 2, 1, 1900)
  write (*, '(f10.1,2i4)') s, len(date@()), len(time@())
  call seconds_since_1900@(s, 86400, -1440, 0, 40000, 1, 1900)
  write (*, '(f14.1)') s
  call dclock@(s)
  write (*, '(l2)') s >= 0 .and. s < 60
end program
