program g
  character(20) :: s
  integer :: i, ios
  print *, 'gnu 1'
  call nat(1)
  print *, 'gnu 2'
  open(30,file='m.txt',status='replace')
  write(30,'(a)') 'gnu rec  '
  call nat(2)
  write(30,'(a)') 'gnu again'
  rewind(30)
  read(30,'(a)') s; print *, s
  call nat(3)
  read(30,'(a)') s; print *, s
  call nat(3)
  rewind(30); call nat(3); call nat(2); rewind(30)
  do
    read(30,'(a)',iostat=ios) s; if (ios/=0) exit
    print *, '[',trim(s),']'
  end do
  close(30)
  call nat(4)
  read(31,'(a)') s; print *, s
  write(31,'(a)') 'gnu in native'
  rewind(31); call nat(5); call nat(5); call nat(5)
  close(31)
  read(*,*) i; print *, 'gnu in', i
  call nat(6)
  read(*,*) i; print *, 'gnu in', i
  write(6,'(a)',advance='no') 'g-part,'
  call nat(7)
  print '(a)', 'end'
  open(32,file='n.txt',status='replace')
  write(32,'(a)') 'one','two','three'
  rewind(32); read(32,'(a)') s; write(32,'(a)') 'new'
  call nat(8)          ! behind the gnu WRITE nothing is left
  call nat(10); call nat(8); call nat(8)
  call nat(9); call nat(8)
  write(32,'(a)',advance='no') 'open'
  call nat(10)         ! ends the open record
  do
    read(32,'(a)',iostat=ios) s; if (ios/=0) exit
    print *, '[',trim(s),']'
  end do
  rewind(32); read(32,'(a)') s; backspace(32); write(32,'(a)') 'first'
  call nat(11)
  call nat(12)
  open(32,file='n.txt'); read(32,'(a)') s; print *, s; read(32,'(a)',iostat=ios) s; print *, ios
  close(32,status='delete')
end program
