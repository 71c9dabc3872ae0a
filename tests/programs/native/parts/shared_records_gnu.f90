program shared_records
  implicit none
  integer :: ios, numbers(3), i
  character(400) :: text

  ! A native file.
  call nat('open', 40, 0)
  call nat('write', 40, 1)
  write (40) 11, 12, 13
  call nat('write long', 40, 300)
  text = repeat('g', 400)
  write (40) text(1:240)
  write (40) text(1:239)
  rewind (40)
  call read_numbers(40)
  call nat('read', 40, 0)
  read (40) text(1:300)
  print *, text(300:300)
  call nat('read long', 40, 240)
  read (40, iostat=ios) text(1:240)
  print *, 'gnu', ios
  backspace (40)
  call nat('read long', 40, 239)
  read (40, iostat=ios)
  print *, 'gnu', ios
  backspace (40)
  do i = 1, 5
    backspace (40)
  end do
  call nat('read', 40, 0)
  write (40) 21, 22, 23
  call nat('rewind', 40, 0)
  call nat('read', 40, 0)
  call nat('read', 40, 0)
  call nat('read', 40, 0)
  call nat('close', 40, 0)
  call show('n.bin')

  ! A gnu file, in the other byte order.
  open (41, file='g.bin', form='unformatted', convert='big_endian', status='replace')
  write (41) 1, 2, 3
  call nat('write', 41, 4)
  call nat('write complex', 41, 0)
  rewind (41)
  call nat('read', 41, 0)
  call read_numbers(41)
  call nat('back', 41, 0)
  call nat('read', 41, 0)
  call nat('read complex', 41, 0)
  call nat('read', 41, 0)
  call nat('close', 41, 0)
  call show('g.bin')

  ! Direct records.
  call nat('open direct', 42, 0)
  write (42, rec=1) 7, 8
  write (42, rec=2) 9
  call nat('direct', 42, 3)
  call nat('read direct', 42, 2)
  call nat('read direct', 42, 4)
  close (42)
  open (42, file='d.bin', access='direct', recl=8)
  call nat('direct', 42, 4)
  call nat('read direct', 42, 3)
  call nat('read direct', 42, 1)
  call nat('read direct', 42, 5)
  close (42)
  call show('d.bin')

  call nat('open lines', 44, 0)
  write (44, '(i2)', rec=2) 2
  call nat('line', 44, 4)
  call nat('read line', 44, 2)
  read (44, '(i5)', rec=4) i
  print *, 'gnu', i
  close (44)
  call show('l.bin')
  open (44, file='l.bin', access='direct', form='formatted', recl=5, status='replace')
  write (44, '(i2)', rec=2) 2
  call nat('line', 44, 4)
  call nat('read line', 44, 2)
  read (44, '(i5)', rec=4) i
  print *, 'gnu', i
  close (44)
  call show('l.bin')

  ! The native layout for a gnu statement that asks for it.
  open (43, file='t.bin', form='unformatted', convert='tarn', status='replace')
  write (43) 1, 2, 3
  call nat('write long', 43, 250)
  inquire (43, convert=text)
  print *, trim(text)
  rewind (43)
  call read_numbers(43)
  read (43) text(1:250)
  backspace (43)
  call nat('read long', 43, 250)
  close (43)
  call show('t.bin')
contains
  subroutine read_numbers(unit)
    integer :: unit
    numbers = -1
    read (unit, iostat=ios) numbers
    print *, 'gnu', ios, numbers
  end subroutine
  subroutine show(name)
    character(*) :: name
    character(1000) :: bytes
    integer :: count, k
    inquire (file=name, size=count)
    open (99, file=name, access='stream', form='unformatted', status='old')
    read (99) bytes(1:count)
    close (99, status='delete')
    print '(a,i4)', name, count
    print '(20z3.2)', (ichar(bytes(k:k)), k = 1, min(count, 60))
  end subroutine
end program
