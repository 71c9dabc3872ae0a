! flags: -fopenmp
! Seeded sequences of random numbers: scalars and arrays of all kinds, sections, threads.
program random
  implicit none
  integer :: seed(8), more(12), got(8), n, i
  real(4) :: s, a(1000)
  real(8) :: d, b(20, 30), large(70000)
  real(10) :: x, e(5)
  real(16) :: q, f(5)
  type item
    real :: r
    real(8) :: w
    character :: c
  end type
  type(item) :: items(6)

  call random_seed(size=n)
  print *, n
  seed = [(i * 1234567, i = 1, 8)]
  call random_seed(put=seed)
  call random_seed(get=got)
  print *, all(got == seed)
  call random_number(s); call random_number(d); call random_number(x); call random_number(q)
  print *, s, d, x, q
  call random_number(a); call random_number(b); call random_number(e); call random_number(f)
  print *, a(1:5), sum(real(a, 8)), b(1:3, 1), sum(b), e, f
  call random_seed(get=got)
  print *, got
  b = 0; a = 0
  call random_number(b(2:18:4, 3:27:6))
  call random_number(b(19:1:-7, 30))
  call random_number(b(:, 10:20))
  call random_number(a(5:4))
  call random_number(a(900:100:-1))
  print *, sum(b), b(6, 9), b(12, 30), a(100), a(101), sum(real(a, 8))
  items = item(0, 0, 'a')
  call random_number(items%r)
  call random_number(items(2:6:2)%w)
  print *, items%r, items%w
  large = 0
  do i = 1, 3
    call random_number(large(:20000 * i))
    call random_number(a(:300 * i))
    print *, sum(large), large(20000 * i), sum(real(a, 8)), a(300 * i)
  end do
  call random_number(large)
  print *, sum(large), large(32768), large(32769), large(70000)
  more = [(i * i, i = 1, 12)]
  call random_seed(put=more)
  call random_number(d)
  print *, d
  call random_seed(put=more(11:1:-1))
  call random_seed(get=got)
  print *, got
  seed = 0
  call random_seed(put=seed)
  call random_number(a(:4))
  print *, a(:4)

  call threads()
  call random_init(.true., .false.)
  call random_number(d)
  print *, d
  call random_init(.true., .true.)
  call random_seed(get=got)
  print *, got

  print *, irand(), rand(), irand(1), irand(0), rand(0), irand(7), rand(-3), rand(1)
  call srand(2147483647)
  print *, irand(), rand()
  call srand(0)
  print *, [(irand(), i = 1, 4)], [(rand(), i = 1, 4)]
contains
  subroutine threads()
    use omp_lib
    real(8) :: first(4, 0:3)
    integer :: turn
    do turn = 0, 3
      !$omp parallel num_threads(4)
      if (omp_get_thread_num() == turn) call random_number(first(:, turn))
      !$omp end parallel
    end do
    print *, first
  end subroutine
end program
