! flags: -fdefault-integer-8
! What takes default integers, where they have 64 bits.
program default_integer_8
  implicit none
  integer :: words(4), back(4), fields(9), small(3), n
  real(8) :: d
  call random_seed(size=n)
  print *, n
  words = [1, -2, huge(1), 4]
  call random_seed(put=words)
  call random_seed(get=back)
  print *, all(back == words)
  call random_number(d)
  call random_seed(get=back(4:1:-1))
  print *, d, back
  call gmtime(951827415, fields); print *, fields
  call gmtime(67767976233532799, fields); print *, fields
  call gmtime(-62135596800, fields); print *, fields
  call idate(small); print *, small(3) > 2020
  call itime(small); print *, all(small >= 0 .and. small < 61)
  print *, index('abcabc', 'c', .true.), scan('abc', 'cb'), selected_int_kind(12)
end program
