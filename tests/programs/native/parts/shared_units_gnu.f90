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
end program
