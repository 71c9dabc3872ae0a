! An ordinary Fortran 95 program: a little of everything that reaches the run-time. What it prints
! depends on kinds, but never on time or chance.
module tools
  implicit none
  integer, parameter :: dp = selected_real_kind(12, 200)
  integer, parameter :: long = selected_int_kind(15)
  type station
    character(len=8) :: name
    real :: place(2)
    integer, pointer :: heights(:)
  end type station
  interface show
    module procedure show_integers, show_reals, show_logicals
  end interface
  interface operator(.before.)
    module procedure is_before
  end interface
contains
  subroutine show_integers(what, values)
    character(len=*), intent(in) :: what
    integer, intent(in) :: values(:)
    print '(a,t16,12i6)', what, values
  end subroutine show_integers
  subroutine show_reals(what, values)
    character(len=*), intent(in) :: what
    real(dp), intent(in) :: values(:)
    print '(a,t16,6f11.4)', what, values
  end subroutine show_reals
  subroutine show_logicals(what, values)
    character(len=*), intent(in) :: what
    logical, intent(in) :: values(:)
    print '(a,t16,24l2)', what, values
  end subroutine show_logicals
  elemental function is_before(a, b)
    character(len=*), intent(in) :: a, b
    logical :: is_before
    is_before = llt(a, b)
  end function is_before
  elemental function fahrenheit(celsius) result(f)
    real(dp), intent(in) :: celsius
    real(dp) :: f
    f = celsius * 9 / 5 + 32
  end function fahrenheit
  recursive function binomial(n, k) result(b)
    integer, intent(in) :: n, k
    integer :: b
    b = 1
    if (k > 0 .and. k < n) b = binomial(n - 1, k - 1) + binomial(n - 1, k)
  end function binomial
  function integral(f, a, b, steps) result(s)
    interface
      function f(x)
        real, intent(in) :: x
        real :: f
      end function f
    end interface
    real, intent(in) :: a, b
    integer, intent(in), optional :: steps
    real :: s
    integer :: i, n
    n = 8
    if (present(steps)) n = steps
    s = 0
    do i = 1, n
      s = s + f(a + (i - 0.5) * (b - a) / n)
    end do
    s = s * (b - a) / n
  end function integral
  function cube(x)
    real, intent(in) :: x
    real :: cube
    cube = x**3
  end function cube
end module tools

program ordinary
  use tools
  implicit none
  integer, target :: grid(4, 3)
  integer :: i, j, stat, values(6), clock(3)
  integer, allocatable :: seed(:), big(:, :)
  integer, pointer :: row(:)
  real(dp) :: a(3, 3), b(3), t(4)
  real :: drawn(3), again(3), first, second
  complex :: z(2, 2)
  complex(dp) :: w
  logical :: mask(4, 3)
  character(len=20) :: line, names(4)
  character(len=10) :: date, time, zone
  type(station) :: stations(2)
  intrinsic sin, sqrt
  namelist /setup/ values, names, w, mask
  data names / 'delta', 'Alpha', 'charlie', 'bravo' /

  ! Arrays.
  grid = reshape((/ (mod(7 * i, 11) - 3, i = 1, 12) /), (/ 4, 3 /))
  mask = grid > 1
  call show('sum', sum(grid, dim=1))
  call show('product', product(grid, dim=2, mask=mask))
  call show('extremes', (/ maxval(grid), minval(grid, mask=mask), maxloc(grid), minloc(grid, mask=mask) /))
  call show('along', (/ maxloc(grid, dim=1), minloc(grid, dim=2), maxval(grid, dim=1) /))
  call show('count', (/ count(mask), count(mask, dim=1) /))
  call show('any, all', (/ any(mask), all(mask), any(mask, dim=2), all(mask, dim=1) /))
  call show('pack', pack(grid, mask))
  call show('unpack', unpack((/ 7, 8 /), (/ .false., .true., .true. /), (/ 1, 2, 3 /)))
  call show('shifts', (/ cshift(grid(:, 1), 1), eoshift(grid(:, 2), -2, boundary=99) /))
  call show('shifted rows', reshape(cshift(grid, (/ 1, 0, 2 /)), (/ 12 /)))
  call show('transpose', reshape(transpose(grid), (/ 12 /)))
  call show('spread', reshape(spread((/ 1, 2 /), 1, 3), (/ 6 /)))
  call show('reshape', reshape(reshape((/ 1, 2, 3 /), (/ 2, 3 /), pad=(/ 0, 9 /), order=(/ 2, 1 /)), (/ 6 /)))
  call show('matmul', reshape(matmul(grid, transpose(grid(:3, :))), (/ 12 /)))
  call show('merge', merge(grid(:, 1), grid(:, 3), mask(:, 2)))
  call show('backward', grid(4:1:-2, 2))
  allocate (big(40, 40), stat=stat)
  big = 2
  call show('large', (/ stat, sum(matmul(big, big)) / 1000, size(big), dot_product(big(1, :), big(:, 2)) /))
  deallocate (big)
  forall (i = 1:3, j = 1:3) a(i, j) = real(i * j, dp) / (i + j)
  where (a > 1)
    a = a - 1
  elsewhere
    a = -a
  end where
  b = matmul(a, (/ 1.0_dp, 2.0_dp, 4.0_dp /))
  call show('where', b)
  call show('elemental', fahrenheit((/ -40.0_dp, 37.5_dp /)))
  row => grid(2, :)
  call show('pointer', row)
  print *, associated(row, grid(2, :)), associated(row, grid(3, :)), lbound(row), ubound(grid)
  z = reshape((/ (1, 2), (0, -1), (3, 0), (2, 2) /), (/ 2, 2 /))
  print '(4(2f8.2))', matmul(z, conjg(z)), sum(z), product(z), z(1, 1)**5

  ! Numbers.
  w = cmplx(1, -2, dp)
  t = (/ 1.5_dp, -2.5_dp, 0.1_dp, 3e10_dp /)
  print '(4f16.4)', aint(t), anint(t), mod(t, 2.0_dp), modulo(-t, 2.0_dp)
  print '(4i6)', nint(t(:3)), ceiling(t(1)), floor(t(:3))
  print '(3es16.7)', sqrt(w), exp(w), abs(w), sin(w), log(w)
  print '(3f12.6)', integral(sin, 0.0, 3.0), integral(sqrt, 0.0, 2.0, steps=20), integral(cube, 0.0, 1.0)
  print '(6i8)', binomial(16, 8), 3**7, (-2)**11, int(2.0**10), ishftc(37, 3, 8), ibits(1000, 3, 5)
  print '(2i22)', 3_long**33, selected_int_kind(18) - kind(1_long)
  print *, exponent(8.5), fraction(-12.0), nearest(1.0, 1.0) > 1.0, set_exponent(1.0, 3), digits(b) > 50
  print *, selected_real_kind(6, 30) > 0, selected_real_kind(400), selected_int_kind(99), precision(t) > 11
  call random_seed(size=i)
  allocate (seed(i))
  seed = (/ (j * 12345, j = 1, i) /)
  call random_seed(put=seed)
  call random_number(drawn)
  call random_seed(put=seed)
  call random_number(again)
  print *, all(drawn == again), all(drawn >= 0 .and. drawn < 1), drawn(1) /= drawn(2)
  call date_and_time(date, time, zone)
  call system_clock(clock(1), clock(2), clock(3))
  call cpu_time(first)
  call cpu_time(second)
  print *, verify(trim(date), '0123456789'), time(7:7), scan(zone, '+-'), clock(2) > 0, second >= first

  ! Characters.
  call show('order', (/ names(1) .before. names(2), names(2) .before. names(3), lge('a', 'B') /))
  print '(5a)', '[', trim(names(3)), '|', adjustr(names(1)), ']', repeat('-=', 4), names(2)(2:4)
  call show('find', (/ index('banana', 'an'), index('banana', 'an', .true.), scan('fortran', 'tr'), &
      verify('aabc', 'ab'), len_trim('  x '), ichar('A'), iachar(achar(200)) /))
  write (line, '(i6.4,f7.3,l2)') 42, 3.14159, .true.
  read (line, '(i6,f7.0)') i, first
  print *, line, i, nint(first * 1000)
  print *, transfer(transfer(1.0, 1), 1.0) == 1, char(72) // 'i', (/ 'abc', 'de ' /)

  ! Files.
  open (10, status='scratch', form='unformatted')
  write (10) grid, w
  write (10) 'second'
  rewind (10)
  read (10) values
  read (10) line(:6)
  backspace (10)
  read (10, iostat=stat) line(7:12)
  print *, values(6), line(:12), stat
  close (10)
  open (11, file='ordinary.txt', status='replace')
  write (11, nml=setup)
  write (11, '(3(i4,","))') (i**2, i = 1, 4)
  write (11, *) 2 * 3.5, 'quoted ''text''', (1, -1)
  rewind (11)
  values = 0
  names = ' '
  read (11, nml=setup)
  print *, values, names(2)
  read (11, '(3(i4,1x))') values(:4)
  read (11, *) first, line
  print *, values(:4), first, trim(line)
  read (11, *, iostat=stat) line
  print *, stat < 0
  inquire (11, opened=mask(1, 1), name=line)
  print *, mask(1, 1), line
  close (11, status='delete')
  stations(1) = station('north', (/ 1.5, 2.5 /), row)
  allocate (stations(2)%heights(3))
  stations(2)%name = stations(1)%name(:2) // 'x'
  stations(2)%heights = stations(1)%heights * 2
  print '(a8,3i4)', stations(2)%name, stations(2)%heights
  write (*, '(1x,a,i3)', advance='no') 'open', 1
  write (*, '(e12.4,g12.4,d12.4,b9.8,o5,z5)') 0.05, 0.05, 12.5, 37, 64, 255
  stop 3
end program ordinary
