! gnu: parts/shared_records_gnu.f90
! Unformatted files of one program in two dialects: whoever opened a file has said how its records
! stand on it, and either side reads and writes them.
subroutine nat(what, unit, value)
  implicit none
  character(*) :: what
  integer :: unit, value, ios
  character(400) :: text
  integer :: numbers(3)
  complex :: z
  select case (what)
  case ('open'); open (unit, file='n.bin', form='unformatted', status='replace')
  case ('open direct'); open (unit, file='d.bin', access='direct', recl=8, status='replace')
  case ('write'); write (unit) value, [value + 1, value + 2]
  case ('write long'); text = repeat('n', value); write (unit) text(1:value)
  case ('write complex'); write (unit) (1.0, 2.0)
  case ('read complex'); read (unit) z; print *, 'native', z
  case ('read')
    numbers = -1
    read (unit, iostat=ios) numbers
    print *, 'native', ios, numbers
  case ('read long')
    read (unit, iostat=ios) text(1:value)
    print *, 'native', ios, text(value:value)
  case ('rewind'); rewind (unit)
  case ('back'); backspace (unit)
  case ('open lines'); open (unit, file='l.bin', access='direct', form='formatted', recl=5, status='replace')
  case ('line'); write (unit, '(i3)', rec=value) value
  case ('read line')
    read (unit, '(i5)', rec=value, iostat=ios) numbers(1)
    print *, 'native', ios, numbers(1)
  case ('direct'); write (unit, rec=value) value, value
  case ('read direct')
    numbers = -1
    read (unit, rec=value, iostat=ios) numbers(1:2)
    print *, 'native', ios, numbers
  case ('close'); close (unit)
  end select
end subroutine
