! Water levels of a river: a text file is written and read back, a direct-access file is updated in
! place, and INQUIRE tells what the program's files are.
program gauges
  implicit none
  type :: reading
    character(8) :: station
    real :: level  ! metres
  end type
  type(reading), parameter :: today(4) = [ &
    reading('Basel', 5.42), reading('Maxau', 4.87), reading('Worms', 2.31), reading('Bonn', 3.08)]
  integer :: unit, i, status, lines, length, next
  logical :: is_open, exists
  character(80) :: line, name, access, form
  type(reading) :: one

  ! A sequential text file: a heading, then one line a station.
  open (newunit=unit, file='levels.txt', status='replace', action='readwrite')
  write (unit, '(a)') 'station  level'
  write (unit, '(a8,f6.2)') (today(i), i = 1, size(today))
  inquire (unit, name=name, access=access, form=form, opened=is_open)
  print '(5a,l2)', 'levels.txt is ', trim(access), ', ', trim(form), ', open:', is_open

  rewind (unit)
  lines = 0
  do
    read (unit, '(a)', iostat=status) line
    if (status /= 0) exit
    lines = lines + 1
    print '(i3,2a)', lines, ': ', trim(line)
  end do
  print '(a,l2)', 'end of file met: ', is_iostat_end(status)

  ! Back over the end and the last line, and read that again.
  backspace (unit)
  backspace (unit)
  read (unit, '(a8,f6.2)') one
  print '(2a,f5.2)', 'last station: ', one%station, one%level
  close (unit)

  ! A direct-access file: any record at any time.
  open (newunit=unit, file='levels.dat', access='direct', form='formatted', recl=14, status='replace')
  do i = size(today), 1, -1
    write (unit, '(a8,f6.2)', rec=i) today(i)
  end do
  write (unit, '(a8,f6.2)', rec=3) reading('Worms', 2.46)
  read (unit, '(a8,f6.2)', rec=3) one
  inquire (unit, recl=length, nextrec=next)
  print '(2a,f5.2,2(a,i0))', 'record 3: ', one%station, one%level, ', record length ', length, &
    ', next record ', next
  read (unit, '(a8,f6.2)', rec=99, iostat=status) one
  print '(a,l2)', 'record 99 is refused: ', status > 0
  close (unit, status='delete')

  inquire (file='levels.dat', exist=exists)
  print '(a,l2)', 'levels.dat is still there: ', exists
  open (newunit=unit, file='levels.txt', status='old', position='append')
  write (unit, '(a8,f6.2)') reading('Cologne', 2.79)
  close (unit, status='delete')
end program
