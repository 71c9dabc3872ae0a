! What the run-time costs: intrinsic procedures and formatted files that the compiler doesn't expand
! in line, each the best of a few rounds, in milliseconds. `speed FILE` leaves the times in a file,
! or shows them beside those that it holds: of the same program on another run-time, say.
module stopwatch
  implicit none
  integer, parameter :: long = selected_int_kind(18), rounds = 8
  character(16) :: names(20)
  real(8) :: best(20)
  integer :: steps = 0
contains
  real(8) function now()
    integer(long) :: ticks, rate
    call system_clock(ticks, rate)
    now = 1000 * real(ticks, 8) / rate
  end function
  subroutine note(name, start)
    character(*), intent(in) :: name
    real(8), intent(in) :: start
    integer :: i
    do i = 1, steps
      if (names(i) == name) exit
    end do
    if (i > steps) then
      steps = i
      names(i) = name
      best(i) = huge(best)
    end if
    best(i) = min(best(i), now() - start)
  end subroutine
  subroutine report()
    character(200) :: file
    character(16) :: name
    real(8) :: theirs
    integer :: i, unit
    logical :: there
    call get_command_argument(1, file)
    inquire (file=file, exist=there)
    if (.not. there) then
      print '(a16,f10.2," ms")', (names(i), best(i), i = 1, steps)
      if (file == '') return
      open (newunit=unit, file=file, action='write')
      write (unit, '(a16,es16.8)') (names(i), best(i), i = 1, steps)
    else
      open (newunit=unit, file=file, status='old', action='read')
      print '(16x,3a10)', 'there', 'here', 'ratio'
      do i = 1, steps
        read (unit, '(a16,f16.0)', end=10) name, theirs
        print '(a16,2f10.2,f9.1,"x")', name, theirs, best(i), theirs / best(i)
      end do
    end if
10  close (unit)
  end subroutine
end module

program speed
  use stopwatch
  implicit none
  integer, parameter :: n = 400, m = 1000
  real(8) :: a(n, n), b(n, n), c(n, n), start, total
  real, allocatable :: x(:, :), y(:), z(:, :), packed(:)
  logical, allocatable :: mask(:, :)
  character(:), allocatable :: text
  integer, allocatable :: counts(:), places(:, :)
  integer :: i, j, round, sums(3)

  allocate (x(m, m), y(m * m), z(m, m), mask(m, m), counts(m), places(2, rounds))
  text = repeat('ab ', 300000) // 'abc'
  forall (i = 1:n, j = 1:n) a(i, j) = mod(i * j, 17) - 8
  forall (i = 1:m, j = 1:m) x(i, j) = mod(i * i * 31 + i * j * 17 + j * j, 1009)
  b = transpose(a)
  mask = x > 500
  sums = 0
  do round = 1, rounds
    start = now()
    c = matmul(a, b)
    call note('MATMUL', start)
    start = now()
    packed = pack(x, mask)
    call note('PACK', start)
    start = now()
    counts = count(mask, dim=2)
    call note('COUNT, DIM=2', start)
    start = now()
    places(:, round) = maxloc(x, mask=mask, back=.true.)
    counts = counts + maxloc(x, dim=1, mask=mask)
    call note('MAXLOC, MASK=', start)
    start = now()
    z = cshift(x, 3, dim=2)
    call note('CSHIFT', start)
    start = now()
    z = z + reshape(x, [m, m], order=[2, 1])
    call note('RESHAPE, ORDER=', start)
    sums(1) = sums(1) + index(text, 'abc') + verify(text, 'ab ')
    start = now()
    sums(2) = sums(2) + index(text, 'abc') + scan(text, 'xyz') + len_trim(text)
    call note('INDEX and SCAN', start)
    start = now()
    call random_number(y)
    call note('RANDOM_NUMBER', start)
    open (10, status='scratch')
    start = now()
    write (10, '(i8,3f12.4)') (i, x(:3, mod(i, m) + 1), i = 1, 20000)
    call note('formatted WRITE', start)
    rewind 10
    start = now()
    total = 0
    do i = 1, 20000
      read (10, '(i8,3f12.0)') j, y(1:3)
      total = total + sum(y(1:3))
    end do
    call note('formatted READ', start)
    close (10)
  end do
  print '(a,9i11)', 'the same everywhere:', int(sum(c)), sum(counts), places(:, 1), sums(:2), &
    int(sum(z)), size(packed), int(total)
  call report()
end program
