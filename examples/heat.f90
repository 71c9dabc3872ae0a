! Heat in a rod, set up by a file of two NAMELIST groups: `heat FILE`. What was read is shown as it
! was understood; a mistake in the file is told with its line, its column and the nearest name.
program heat
  implicit none
  type substance
    character(12) :: name = 'iron'
    real(8) :: conductivity = 80.4d0, density = 7874, heat = 449
  end type
  integer, parameter :: most = 200
  type(substance) :: material
  integer :: points = 21, steps = 100, report(5) = 0, unit, step
  real(8) :: length = 1, dt = 0.1d0, ends(2) = 300, start(most) = 293.15d0, t(most), factor
  character(200) :: file
  namelist /rod/ length, points, material
  namelist /run/ steps, dt, report, ends, start

  call get_command_argument(1, file)
  open (newunit=unit, file=file, status='old', action='read')
  read (unit, nml=rod)
  read (unit, nml=run)
  close (unit)
  write (*, nml=rod)

  factor = material%conductivity/(material%density*material%heat)*dt/(length/(points - 1))**2
  t = start
  do step = 1, steps
    t(1) = ends(1)
    t(points) = ends(2)
    t(2:points - 1) = t(2:points - 1) + factor*(t(1:points - 2) - 2*t(2:points - 1) + t(3:points))
    if (any(report == step)) &
      print '(a,i6,a,3f9.2)', 'step', step, ':  a quarter, the middle, three quarters', &
        t([points/4, points/2, 3*points/4])
  end do
end program
