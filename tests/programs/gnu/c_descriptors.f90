! Arrays as C sees them, and what C makes of them. Checks are asked for, so that C gets a status.
! build: $CC $FLAGS -c $SRC/parts/c_descriptors.c -o c.o && $FC $FLAGS -fcheck=bounds $SRC/c_descriptors.f90 c.o $LINK -o $PROGRAM
! entries: associated|is_contiguous0|is_extension_of|CFI_\w+
module c_routines
  use, intrinsic :: iso_c_binding
  implicit none
  interface
    subroutine c_show(x) bind(c)
      type(*), intent(in) :: x(..)
    end subroutine
    subroutine c_sections(x) bind(c)
      import
      integer(c_int) :: x(:, :, :)
    end subroutine
    subroutine c_allocates(x) bind(c)
      import
      integer(c_int), allocatable :: x(:, :)
    end subroutine
    subroutine c_text(x) bind(c)
      import
      character(:, c_char), allocatable :: x
    end subroutine
    subroutine c_points(x, target) bind(c)
      import
      real(c_double), pointer :: x(:)
      real(c_double), target :: target(:)
    end subroutine
  end interface
  type :: point
    integer :: x = 0
  end type
  type, extends(point) :: named_point
    character(4) :: name = 'here'
  end type
contains
  subroutine ask(x)
    type(*), intent(in) :: x(..)
    print *, is_contiguous(x), shape(x)
  end subroutine
  subroutine ask_type(x, y)
    class(point), intent(in) :: x, y
    print *, extends_type_of(x, y), extends_type_of(y, x), same_type_as(x, y)
  end subroutine
end module

program c_descriptors
  use c_routines
  implicit none
  integer(c_int), target :: cube(4, 5, 6), row(9)
  integer(c_int), allocatable :: table(:, :)
  integer(c_int), pointer :: p(:, :), q(:, :), r(:), s(:)
  real(c_double), target :: numbers(6) = [1, 2, 3, 4, 5, 6]
  real(c_double), pointer :: pointed(:)
  character(:, c_char), allocatable :: text
  type(c_ptr) :: address

  call c_show(cube)
  call c_show(cube(::2, :, 3))
  call c_show(cube(:, 5:1:-1, 1:2))
  call c_show(numbers(2:2))
  call c_show([(1.5, 2.5)])
  call c_sections(cube)
  flush (6)
  call c_allocates(table)
  print *, lbound(table), ubound(table), table
  flush (6)
  call c_text(text)
  print *, len(text), text
  flush (6)
  call c_points(pointed, numbers(::2))
  print *, pointed, lbound(pointed)

  p => cube(:, :, 2)
  q => cube(::2, :, 2)
  print *, associated(p, cube(:, :, 2)), associated(p, q), associated(p, cube(:, :, 3)), &
    associated(q, cube(1:4:2, :, 2)), associated(q, cube(3:1:-2, :, 2))
  r => row(3:2)
  s => row(3:3)
  print *, associated(r), associated(r, row(3:2)), associated(s, row(3:4:2))
  call ask(p)
  call ask(q)
  call ask(cube(:, :, 2:3))
  call ask(3)
  call ask_type(point(1), named_point(2))
  call ask_type(named_point(1), named_point(2))
  address = c_loc(row)
  call c_f_pointer(address, p, [3, 3])
  print *, associated(p), shape(p), c_associated(address, c_loc(row(1))), c_associated(address, c_loc(row(2)))
end program
