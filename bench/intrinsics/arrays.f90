! Times array intrinsics that gfortran leaves to its run-time, by the element: arrays WHAT ELEMENTS.
! Arrays are square matrices of REAL*8 with as many elements; masks are LOGICAL*4, half of them
! true at random, or in the `true` rows all. The `strided` rows take every second element of both dimensions.
program arrays
  implicit none
  character(24) :: what, word
  real(8), allocatable :: a(:,:), b(:,:), v(:), w(:), c(:,:,:), d(:,:,:), e(:,:,:)
  integer, allocatable :: i4(:,:), where(:), counts(:), shifts(:)
  logical, allocatable :: m(:,:), most(:,:), f(:)
  ! A number, so that small arrays aren't drowned in comparisons of names.
  character(24), parameter :: names(*) = [ &
    'maxloc                  ', 'maxloc-mask             ', 'maxloc-strided          ', &
    'minloc-strided          ', 'minloc-by3              ', 'findloc-strided         ', &
    'maxloc-dim1             ', 'maxloc-dim2             ', 'maxloc-dim2-mask        ', &
    'minloc-integer          ', 'findloc                 ', 'findloc-dim2            ', &
    'maxval-dim1             ', 'maxval-dim1-mask        ', 'sum-dim1                ', &
    'sum-dim2                ', 'sum-dim2-mask           ', 'count-dim1              ', &
    'count-dim2              ', 'count-strided           ', 'count-strided2          ', &
    'all-dim1                ', 'all-dim2                ', 'all-true-dim1           ', &
    'all-true-dim2           ', 'any-dim2                ', 'pack                    ', &
    'pack-integer            ', 'pack-strided            ', 'unpack                  ', &
    'unpack-strided          ', 'spread1                 ', 'spread1-many            ', &
    'spread3                 ', 'spread-strided          ', 'reshape                 ', &
    'reshape-order           ', 'cshift-dim1             ', 'cshift-dim2             ', &
    'cshift-strided          ', 'cshift-many             ', 'eoshift-dim1            ', &
    'eoshift-many            ', 'eoshift-strided         ']
  real(8) :: start, finish
  integer :: count_, n, which, times, turn, t, one = 1, two = 2, place(2)
  integer(8) :: kept = 0
  call get_command_argument(1, what)
  call get_command_argument(2, word)
  which = findloc(names, what, dim=1)
  read (word, *) count_
  n = nint(sqrt(real(count_)))
  ! Calls of few elements take their time whatever the elements do.
  times = max(3, 20000000 / (count_ + 100))
  allocate (a(n,n), b(n,n), m(n,n), i4(n,n), v(n*n), c(n,n,2), d(2,n,n), shifts(n))
  allocate (where(n), counts(n), f(n), e(10,n/10,n))
  call random_number(a)
  call random_number(b)
  m = b < 0.5_8
  most = b < 2
  i4 = int(a * 1000000)
  v = reshape(a, [n*n])
  shifts = [(mod(7*t, 11) - 5, t = 1, n)]
  do turn = 1, 2
    call cpu_time(start)
    do t = 1, times
      a(1,1) = t
      select case (which)
      case (1)  ! maxloc
        place = maxloc(a)
      case (2)  ! maxloc-mask
        place = maxloc(a, mask=m)
      case (3)  ! maxloc-strided
        place = maxloc(a(::2,::2))
      case (4)  ! minloc-strided
        place = minloc(a(::2,::2))
      case (5)  ! minloc-by3
        place = minloc(a(::3,:))
      case (6)  ! findloc-strided
        place = int(findloc(a(::2,::2), -1.0_8))
      case (7)  ! maxloc-dim1
        where = maxloc(a, dim=one)
      case (8)  ! maxloc-dim2
        where = maxloc(a, dim=two)
      case (9)  ! maxloc-dim2-mask
        where = maxloc(a, dim=two, mask=m)
      case (10)  ! minloc-integer
        place = minloc(i4)
      case (11)  ! findloc
        place = int(findloc(a, -1.0_8))
      case (12)  ! findloc-dim2
        where = int(findloc(a, -1.0_8, dim=two))
      case (13)  ! maxval-dim1
        w = maxval(a, dim=one)
      case (14)  ! maxval-dim1-mask
        w = maxval(a, dim=one, mask=m)
      case (15)  ! sum-dim1
        w = sum(a, dim=one)
      case (16)  ! sum-dim2
        w = sum(a, dim=two)
      case (17)  ! sum-dim2-mask
        w = sum(a, dim=two, mask=m)
      case (18)  ! count-dim1
        counts = count(m, dim=one)
      case (19)  ! count-dim2
        counts = count(m, dim=two)
      case (20)  ! count-strided
        counts(:(n+1)/2) = count(m(::2,::2), dim=one)
      case (21)  ! count-strided2
        counts(:(n+1)/2) = count(m(::2,::2), dim=two)
      case (22)  ! all-dim1
        f = all(m, dim=one)
      case (23)  ! all-dim2
        f = all(m, dim=two)
      case (24)  ! all-true-dim1
        f = all(most, dim=one)
      case (25)  ! all-true-dim2
        f = all(most, dim=two)
      case (26)  ! any-dim2
        f = any(m, dim=two)
      case (27)  ! pack
        w = pack(a, m)
      case (28)  ! pack-integer
        counts = pack(i4, m)
      case (29)  ! pack-strided
        w = pack(a(::2,::2), m(::2,::2))
      case (30)  ! unpack
        b = unpack(v, m, a)
      case (31)  ! unpack-strided
        b(::2,::2) = unpack(v, m(::2,::2), a(::2,::2))
      case (32)  ! spread1
        d = spread(a, one, 2)
      case (33)  ! spread1-many
        e = spread(a(1:n/10,:), one, 10)
      case (34)  ! spread3
        c = spread(a, 3, one + one)
      case (35)  ! spread-strided
        c(:,::2,:) = spread(a(:,::2), 3, one + one)
      case (36)  ! reshape
        v = reshape(a, [n*n])
      case (37)  ! reshape-order
        b = reshape(v, [n,n], order=[two,one])
      case (38)  ! cshift-dim1
        b = cshift(a, 3)
      case (39)  ! cshift-dim2
        b = cshift(a, 3, two)
      case (40)  ! cshift-strided
        b(::2,:) = cshift(a(::2,:), 3, two)
      case (41)  ! cshift-many
        b = cshift(a, shifts, two)
      case (42)  ! eoshift-dim1
        b = eoshift(a, 3)
      case (43)  ! eoshift-many
        b = eoshift(a, shifts, dim=two)
      case (44)  ! eoshift-strided
        b(::2,:) = eoshift(a(::2,:), 3, dim=two)
      case default
        stop 1
      end select
      if (allocated(w)) kept = kept + size(w)
      kept = kept + place(1) + where(1) + counts(1)
    end do
    call cpu_time(finish)
  end do
  print *, (finish - start) / times / (real(n, 8) * n) * 1e9_8
  if (kept == -1) print *, b, c, d, e, f
end program
