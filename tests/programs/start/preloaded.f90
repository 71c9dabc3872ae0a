!> start: preload
!> run:
!> args: x
!> status: 9
!> err: Note: The following floating-point exceptions are signalling: IEEE_DIVIDE_BY_ZERO
!> err: STOP 9
!> run:
!> args: x y
!> status: 1
!> env: TARNENVAR=kill_dialogbox
!> out: *** Error  432, ALLOCATABLE object has already been ALLOCATEd
!> out:     Attempting to allocate already allocated variable 'a'
!> out:     At line 19 of file preloaded.f90
real, volatile :: x
integer, allocatable :: a(:)
x = 0
allocate (a(2))
if (command_argument_count() == 2) then
  allocate (a(2))
end if
x = 1 / x
stop 9
end
