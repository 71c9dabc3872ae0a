module shapes
  type point
    real :: x = 1, y = 2
  end type
  type mark
    integer :: number = 1
    logical :: seen = .true.
    character(3) :: label = 'abc'
    type(point) :: at(2)
  end type
end module
program namelists
  ! NAMELIST by the native rules, through the table that is made from the group.
  use shapes
  implicit none
  integer :: i = 5, many(10) = [1, 2, 3, 4, 5, 6, 7, 8, 9, 10], grid(2,3) = 0, ios
  integer(8) :: i8 = 123456789012_8
  real(8) :: d = 0.125d0
  real(10) :: x87 = 1.5_10
  complex :: z = (1, 2)
  character(5) :: c = 'text', names(2) = 'xy'
  logical :: l = .true.
  integer(16) :: big = 1
  type(mark) :: m, ms(2)
  integer, target :: field(6) = 0
  integer, pointer :: every_other(:)
  character(80) :: msg
  character(20) :: line
  namelist /setup/ i, many, grid, i8, d, x87, z, c, names, l, m, ms
  namelist /wide/ big
  namelist /strided/ every_other

  write (*, setup)
  open (10, file='group', status='replace')
  write (10, '(a)') 'junk', '&OTHER X=1 /', '! &setup i=1 /', '&setup many(2:3)=21,22', &
    ' i = 7 ! comment', 'many(5) = 3*9,,4, Z=(3.5,-1d2) names(2)(2:3)="QQ"', 'grid(:,2)=5,6', &
    'm = 2 F ''xyz'' 7 2.5, 8 4.5', 'ms(2) = 3 F "two" 1 2 3 4', 'l=.t. d=-12.5E-1 i8=-5', &
    'c = ''it''''s''', '/'
  rewind (10)
  read (10, setup, iostat=ios)
  print *, ios
  write (*, setup)
  rewind (10)
  write (10, setup)
  rewind (10)
  i = 0
  many = 0
  c = '?'
  read (10, setup, iostat=ios)
  print *, ios, i, many(2:3), c
  read (10, setup, iostat=ios)
  print *, ios
  call try('&setup nosuch=1 /')
  call try('&setup i 5 /')
  call try('&setup i= /')
  call try('&setup many(2:11)=1 /')
  call try('&setup grid(1)=1 /')
  call try('&setup many=20*1 /')
  call try('&setup i=5')
  call try('&setup c=bare /')
  close (10, status='delete')

  every_other => field(1:5:2)
  write (*, wide, iostat=ios, iomsg=msg)
  print *, ios, ' ', trim(msg)
  write (*, strided, iostat=ios, iomsg=msg)
  print *, ios, ' ', trim(msg)
  write (line, setup, iostat=ios, iomsg=msg)
  print *, ios, ' ', trim(msg)
contains
  subroutine try(input)
    character(*), intent(in) :: input
    rewind (10)
    write (10, '(a)') input
    rewind (10)
    read (10, setup, iostat=ios, iomsg=msg)
    print *, ios, ' ', trim(msg)
  end subroutine
end program
