! Times MATMUL of square matrices, by the product: matmul TYPE SIZE.
program products
  implicit none
  character(20) :: what, word
  integer :: n, times, turn, t, which
  character(16), parameter :: names(*) = [ &
    'real4           ', 'real8           ', 'real8-transposed', 'real8-strided   ', &
    'real8-vector    ', 'complex4        ', 'complex8        ', 'integer4        ', &
    'logical4        ']
  real(8) :: start, finish, best
  real(4), allocatable :: a4(:,:), b4(:,:), c4(:,:)
  real(8), allocatable :: a(:,:), b(:,:), c(:,:)
  complex(4), allocatable :: u4(:,:), v4(:,:), w4(:,:)
  complex(8), allocatable :: u(:,:), v(:,:), w(:,:)
  integer, allocatable :: i(:,:), j(:,:), k(:,:)
  logical, allocatable :: l(:,:), m(:,:), o(:,:)
  call get_command_argument(1, what)
  call get_command_argument(2, word)
  read (word, *) n
  ! A number, so that small products aren't drowned in comparisons of names.
  which = findloc(names, what, dim=1)
  times = int(max(1.0_8, 5e8_8 / (real(n, 8)**3 + 3000)))
  allocate (a(n,n), b(n,n), c(n,n))
  call random_number(a)
  call random_number(b)
  a4 = real(a); b4 = real(b); c4 = a4
  u = cmplx(a, b, 8); v = cmplx(b, a, 8); w = u
  u4 = cmplx(u); v4 = cmplx(v); w4 = u4
  i = int(a * 100); j = int(b * 100); k = i
  l = a < 0.01; m = b < 0.01; o = l
  best = huge(best)
  do turn = 1, 3
    call cpu_time(start)
    do t = 1, times
      select case (which)
      case (1)  ! real4
        c4 = matmul(a4, b4)
      case (2)  ! real8
        c = matmul(a, b)
      case (3)  ! real8-transposed
        c = matmul(transpose(a), b)
      case (4)  ! real8-strided
        c = matmul(a(n:1:-1,:), b(:,n:1:-1))
      case (5)  ! real8-vector
        c(:,1) = matmul(a, b(:,1))
      case (6)  ! complex4
        w4 = matmul(u4, v4)
      case (7)  ! complex8
        w = matmul(u, v)
      case (8)  ! integer4
        k = matmul(i, j)
      case (9)  ! logical4
        o = matmul(l, m)
      case default
        stop 1
      end select
    end do
    call cpu_time(finish)
    best = min(best, finish - start)
  end do
  print *, best / times * 1e9_8
end program
