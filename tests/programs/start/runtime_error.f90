!> flags: -fcheck=all
!> run:
!> args: bound
!> status: 1
!> err: *** Error   11, Array subscript(s) out-of-bounds
!> err:     Index '5' of dimension 1 of array 'a' above upper bound of 3
!> err:     At line 29 of file runtime_error.f90
!> run:
!> args: twice
!> status: 1
!> err: *** Error  432, ALLOCATABLE object has already been ALLOCATEd
!> err:     Attempting to allocate already allocated variable 'a'
!> err:     At line 31 of file runtime_error.f90
!> run:
!> args: bound
!> env: TARNENVAR=kill_dialogbox
!> status: 1
!> out: *** Error   11, Array subscript(s) out-of-bounds
!> out:     Index '5' of dimension 1 of array 'a' above upper bound of 3
!> out:     At line 29 of file runtime_error.f90
program runtime_error
  integer, allocatable :: a(:)
  character(10) :: how
  integer, volatile :: n = 5
  call get_command_argument(1, how)
  allocate (a(3))
  select case (how)
  case ('bound')
    a(n) = 1
  case ('twice')
    allocate (a(3))
  end select
end program
