! Times array intrinsics that gfortran leaves to its run-time, by the element: arrays WHAT ELEMENTS.
! Arrays are square matrices of REAL*8 with as many elements; masks are LOGICAL*4, half of them
! true at random. The `strided` rows take every second element of both dimensions.
program arrays
  implicit none
  character(24) :: what, word
  real(8), allocatable :: a(:,:), b(:,:), v(:), w(:), c(:,:,:), d(:,:,:)
  integer, allocatable :: i4(:,:), where(:), counts(:), shifts(:)
  logical, allocatable :: m(:,:), f(:)
  real(8) :: start, finish
  integer :: count_, n, times, turn, t, one = 1, two = 2, place(2)
  integer(8) :: kept = 0
  call get_command_argument(1, what)
  call get_command_argument(2, word)
  read (word, *) count_
  n = nint(sqrt(real(count_)))
  times = max(3, 20000000 / count_)
  allocate (a(n,n), b(n,n), m(n,n), i4(n,n), v(n*n), c(n,n,2), d(2,n,n), shifts(n), where(n), counts(n), f(n))
  call random_number(a)
  call random_number(b)
  m = b < 0.5_8
  i4 = int(a * 1000000)
  v = reshape(a, [n*n])
  shifts = [(mod(7*t, 11) - 5, t = 1, n)]
  do turn = 1, 2
    call cpu_time(start)
    do t = 1, times
      a(1,1) = t
      select case (what)
      case ('maxloc')
        place = maxloc(a)
      case ('maxloc-mask')
        place = maxloc(a, mask=m)
      case ('maxloc-strided')
        place = maxloc(a(::2,::2))
      case ('maxloc-dim1')
        where = maxloc(a, dim=one)
      case ('maxloc-dim2')
        where = maxloc(a, dim=two)
      case ('maxloc-dim2-mask')
        where = maxloc(a, dim=two, mask=m)
      case ('minloc-integer')
        place = minloc(i4)
      case ('findloc')
        place = int(findloc(a, -1.0_8))
      case ('findloc-dim2')
        where = int(findloc(a, -1.0_8, dim=two))
      case ('maxval-dim1')
        w = maxval(a, dim=one)
      case ('maxval-dim1-mask')
        w = maxval(a, dim=one, mask=m)
      case ('sum-dim1')
        w = sum(a, dim=one)
      case ('sum-dim2')
        w = sum(a, dim=two)
      case ('sum-dim2-mask')
        w = sum(a, dim=two, mask=m)
      case ('count-dim1')
        counts = count(m, dim=one)
      case ('count-dim2')
        counts = count(m, dim=two)
      case ('count-strided')
        counts(:(n+1)/2) = count(m(::2,::2), dim=one)
      case ('all-dim2')
        f = all(m, dim=two)
      case ('pack')
        w = pack(a, m)
      case ('pack-integer')
        counts = pack(i4, m)
      case ('pack-strided')
        w = pack(a(::2,::2), m(::2,::2))
      case ('unpack')
        b = unpack(v, m, a)
      case ('spread1')
        d = spread(a, one, 2)
      case ('spread3')
        c = spread(a, 3, one + one)
      case ('reshape')
        v = reshape(a, [n*n])
      case ('reshape-order')
        b = reshape(v, [n,n], order=[two,one])
      case ('cshift-dim1')
        b = cshift(a, 3)
      case ('cshift-dim2')
        b = cshift(a, 3, two)
      case ('cshift-many')
        b = cshift(a, shifts, two)
      case ('eoshift-dim1')
        b = eoshift(a, 3)
      case default
        stop 1
      end select
      if (allocated(w)) kept = kept + size(w)
      kept = kept + place(1) + where(1) + counts(1)
    end do
    call cpu_time(finish)
  end do
  print *, (finish - start) / times / (real(n, 8) * n) * 1e9_8
  if (kept == -1) print *, b, c, d, f
end program
