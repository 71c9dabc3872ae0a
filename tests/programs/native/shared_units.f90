! input: 1\n2\n3\n
! gnu: parts/shared_units_gnu.f90
! One program in two dialects: each goes on where the other stopped.
subroutine nat(k)
  integer :: k, i, ios
  character(20) :: s = ' '
  select case(k)
  case(1); write(6,'(a)') 'native line'; write(*,*) 1
  case(2); write(30,'(a)') 'native rec  '
  case(3); read(30,'(a)',iostat=ios) s; print *, 'nat read ', ios, s
  case(4); open(31,file='m2.txt',status='replace'); write(31,'(a)') 'native opened'; rewind(31)
  case(5); read(31,'(a)',iostat=ios) s; print *, 'nat31 ', ios, s
  case(6); read(*,*) i; print *, 'nat in', i
  case(8); read(32,'(a)',iostat=ios) s; print *, 'nat32 ', ios, s
  case(9); backspace(32)
  case(10); rewind(32)
  case(11); endfile(32)
  case(12); close(32)
  case(7); write(6,'(a)',advance='no') 'n-part,'
  end select
end subroutine
