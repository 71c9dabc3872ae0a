! status: 1
! error: *** Error   94, Unit has neither been OPENed nor preconnected
program statements
  ! One statement of each kind, with its outcomes, as a gfortran program makes them.
  implicit none
  integer :: i, ios, n
  real :: x
  character(80) :: line, msg
  character(20) :: word
  logical :: l

  print *, 'Hello', 42
  write(*, '(a,i5,f8.3)') 'formatted', 7, 3.14159
  open(10, file='t.txt', status='replace', iostat=ios)
  print *, 'open', ios
  do i = 1, 3
    write(10, '(i3,1x,a)') i, 'line'
  end do
  rewind(10)
  do
    read(10, '(i3,1x,a)', iostat=ios, iomsg=msg) n, line
    if (ios /= 0) exit
    write(*, '(a,i3,2a)') 'got', n, ' ', trim(line)
  end do
  print *, 'iostat', ios, ' ', trim(msg)
  backspace(10); backspace(10)
  read(10, *) n
  print *, 'after backspace', n
  inquire(10, opened=l, access=word, number=n)
  print *, l, ' ', trim(word), n
  close(10, status='delete')
  inquire(file='t.txt', exist=l)
  print *, 'exists', l

  write(line, '(3i4)') 1, 2, 3
  read(line, *) i, n, ios
  print *, i, n, ios
  read(line, '(i4,f4.0)', err=20) i, x
  print *, i, x
  line = 'xx'
  read(line, '(i2)', err=10) n
  print *, 'not reached'
10 print *, 'ERR= taken'
20 open(newunit=n, status='scratch')
  write(n, *) 'a b'
  rewind n
  read(n, '(a)') line
  print *, '[', trim(line), ']'
  close(n)
  open(11, status='bad', err=30)
30 print *, 'ERR= of OPEN taken'
  open(12, file='/nonexistent/x', iostat=ios, iomsg=msg)
  print *, ios, ' ', trim(msg)

  open(22, file='e.txt')
  write(22, '(a)') 'abc'
  rewind(22)
  do
    read(22, '(a1)', advance='no', eor=40, end=50, size=n) msg
    write(*, '(2a)', advance='no') msg(1:1), ';'
  end do
40 print *, 'EOR= taken'
  read(22, '(a)', end=50) msg
50 print *, 'END= taken'
  close(22, status='delete')

  open(21, file='d.dat', access='direct', form='formatted', recl=10, status='replace')
  write(21, '(i5)', rec=3) 33
  read(21, '(i5)', rec=3) n
  inquire(21, recl=i, nextrec=ios)
  print *, n, i, ios
  close(21, status='delete')
  print '(8i4)', (i, i = 1, 10)
  write(77, *) 'x'
  print *, 'not reached'
end program
