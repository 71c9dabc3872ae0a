! The same statements in either dialect:
!     tarnfc dialects.f90                    as gfortran's run-time writes them
!     tarnfc --dialect=native dialects.f90   as the library's own compilers expect them
program dialects
  implicit none
  integer :: counts(3) = [1, -20, 300]
  real :: third = 1.0 / 3.0
  double precision :: small = 1.0d-7
  complex :: z = (1.5, -2.5)

  print *, 'counts', counts
  print *, third, small
  print *, z, .true.
  print '(f6.1, f4.0, f6.2)', 0.25, 0.5, -0.001
  print '(g12.4, es12.4)', third, small
end program
