! run: TZ=UTC $PROGRAM
! run: TZ=XXX-5:30 $PROGRAM
! run: TZ=XXX3:30YYY $PROGRAM
! Dates and clocks: what doesn't depend on the moment is printed, the rest is checked.
program times
  implicit none
  integer :: values(8), fields(9), more(9), small(3), c, rate, top
  integer(8) :: wide(8), c8, rate8, top8, later8
  character(12) :: date, time
  character(5) :: zone
  character(8) :: short
  character(24) :: exact
  character(30) :: text
  real(4) :: s, used(2)
  real(8) :: t, r8
  real(10) :: t10
  real(16) :: t16

  call date_and_time(date, time, zone, values)
  read (date, '(i4,i2,i2)') small
  print *, zone, values(4), len_trim(date), len_trim(time), time(7:7), all(small == values(1:3))
  print *, values(1) > 2020, values(8) >= 0 .and. values(8) < 1000
  call date_and_time(short(1:3), time(1:2), zone(1:1), wide)
  print *, zone(1:1), wide(4), all(abs(wide(1:6) - values(1:6)) < 60)
  call date_and_time()

  call ltime(951827415, fields); print *, fields
  call gmtime(951827415, fields); print *, fields
  call gmtime(-1, fields); print *, fields
  call ltime(huge(1), more(9:1:-1)); print *, more
  call idate(small); print *, all(small == [values(3), values(2), values(1)])
  call itime(small); print *, abs(small(1) - values(5)) <= 1
  call texts()

  call system_clock(c, rate, top); print *, rate, top, c >= 0
  call system_clock(c8, rate8, top8); print *, rate8, top8, c8 > 0
  call system_clock(later8); print *, later8 >= c8, later8 - c8 < 1000000000
  call system_clock(count_rate=rate); print *, rate
  call system_clock(count_rate=r8, count_max=c8); print *, r8, c8
  call kinds()

  call cpu_time(s); call cpu_time(t); call cpu_time(t10); call cpu_time(t16)
  print *, s >= 0, t >= 0 .and. t < 60, t10 >= t - 1e-3, t16 >= t
  call second(s); print *, s >= 0
  call etime(used, s); print *, abs(s - sum(used)) < 1e-3, s >= 0
  call dtime(used, s); print *, abs(s - sum(used)) < 1e-3
  call dtime(used, s); print *, s < 10
  print *, secnds(0.0) < 86401.0, abs(secnds(secnds(0.0))) < 5.0, secnds(86399.9) >= 0.0, &
    abs(secnds(1e6) - secnds(1e6 - 86400 * 11)) < 5, secnds(-1.0) > secnds(0.0)
  print *, time8() > 1600000000, mclock() >= 0, mclock8() >= 0
contains
  subroutine texts()
    character(24) :: from_function
    from_function = ctime(951827415_8)
    print *, from_function, '|', ctime(0), '|', ctime(253402300800_8), '|'
    call by_subroutine()
    print *, len_trim(fdate())
  end subroutine
  subroutine kinds()
    integer(1) :: c1
    integer(2) :: c2, rate2, top2
    integer(16) :: c16, rate16, top16
    call system_clock(count_max=c1)
    call system_clock(c2, rate2, top2)
    call system_clock(c16, rate16, top16)
    print *, c1, rate2, top2, rate16, top16
  end subroutine
end program
subroutine by_subroutine()
  character(30) :: long
  character(24) :: exact
  character(10) :: short
  call ctime(951827415_8, long); print *, long, '|'
  call ctime(951827415_8, exact); print *, exact, '|'
  call ctime(951827415_8, short); print *, short, '|'
  call fdate(long); print *, len_trim(long)
  call fdate(short); print *, len_trim(short)
end subroutine
