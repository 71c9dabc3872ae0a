! input: 3 4\nline two\n
program limits
  ! Nested and parallel statements, arrays, and what the dialect refuses.
  implicit none
  integer :: ios, i, arr(3,2), n, v(64)
  integer(16) :: big = 5
  real(16) :: q = 1
  real(10) :: t = 2.5_10
  logical(8) :: l8 = .true.
  complex(8) :: z = (1, 2)
  character(60) :: msg
  character(10) :: ia(3)
  character(12) :: s(64)
  namelist /nl/ i

  print *, 'nested', f(3)
  arr = reshape([1, 2, 3, 4, 5, 6], [3, 2])
  print *, arr(1:3:2, :)
  write(ia, '(i3)') 7, 8, 9
  print *, ia
  read(ia, *) arr(:, 1)
  print *, arr(:, 1)
  print *, t, z
  write(*, *, iostat=ios, iomsg=msg) big
  print *, ios, ' ', trim(msg)
  write(*, *, iostat=ios, iomsg=msg) q
  print *, ios, ' ', trim(msg)
  write(*, *, iostat=ios, iomsg=msg) l8
  print *, ios, ' ', trim(msg)
  write(ia(1:3:2), '(i3)', iostat=ios, iomsg=msg) 1, 2
  print *, ios, ' ', trim(msg)
  write(*, '(a)', decimal='comma', iostat=ios, iomsg=msg) 'x'
  print *, ios, ' ', trim(msg)
  open(23, file='x', convert='big_endian', iostat=ios, iomsg=msg)
  print *, ios, ' ', trim(msg)
  read(*, *, iostat=ios) i, n
  print *, ios, i, n
  read(*, '(a)', iostat=ios) msg
  print *, ios, ' ', trim(msg)
  read(*, '(a)', iostat=ios) msg
  print *, ios
  !$omp parallel do
  do i = 1, 64
    write(s(i), '(i8)') i * 7
    read(s(i), *) v(i)
  end do
  print *, all(v == [(i * 7, i = 1, 64)])

contains
  integer function f(k)
    integer, intent(in) :: k
    logical :: l
    open(33, file='inner.txt', status='replace')
    inquire(file='inner.txt', exist=l)
    close(33, status='delete')
    f = k + merge(1, 0, l)
  end function
end program
