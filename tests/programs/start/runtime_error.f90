!> flags: -fcheck=all
!> run:
!> args: bound
!> status: 1
!> err: *** Error   11, Array subscript(s) out-of-bounds
!> err:     Index '5' of dimension 1 of array 'a' above upper bound of 3
!> err:     At line 47 of file runtime_error.f90
!> run:
!> args: twice
!> status: 1
!> err: *** Error  432, ALLOCATABLE object has already been ALLOCATEd
!> err:     Attempting to allocate already allocated variable 'a'
!> err:     At line 49 of file runtime_error.f90
!> run:
!> args: never
!> status: 1
!> err: *** Error  407, DEALLOCATE failed
!> err:     Attempt to DEALLOCATE unallocated 'a'
!> err:     At line 52 of file runtime_error.f90
!> run:
!> args: absurd
!> status: 1
!> err: *** Error  408, ALLOCATE was unable to obtain sufficient storage
!> err:     Error allocating 140737488355328 bytes: Cannot allocate memory
!> err:     In file 'runtime_error.f90', around line 56
!> run:
!> args: overflow
!> status: 1
!> err: *** Error  408, ALLOCATE was unable to obtain sufficient storage
!> err:     Integer overflow when calculating the amount of memory to allocate
!> run:
!> args: bound
!> env: TARNENVAR=kill_dialogbox
!> status: 1
!> out: *** Error   11, Array subscript(s) out-of-bounds
!> out:     Index '5' of dimension 1 of array 'a' above upper bound of 3
!> out:     At line 47 of file runtime_error.f90
program runtime_error
  integer, allocatable :: a(:), b(:, :)
  integer(8) :: many
  character(10) :: how
  integer, volatile :: n = 5
  call get_command_argument(1, how)
  allocate (a(3))
  select case (how)
  case ('bound')
    a(n) = 1
  case ('twice')
    allocate (a(3))
  case ('never')
    deallocate (a)
    deallocate (a)
  case ('absurd')
    deallocate (a)
    allocate (a(2_8**45))
  case ('overflow')
    many = 2_8**61
    allocate (b(many, many))
  end select
end program
