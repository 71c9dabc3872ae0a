! ASSOCIATED of pointers whose declared type is shorter than their target's, sections included, and
! EXTENDS_TYPE_OF of objects without a type.
! entries: _gfortran_(?:associated|is_extension_of)
module shapes
    implicit none
    type base
        integer :: i = 0
    end type
    type, extends(base) :: longer
        real(8) :: x(3) = 0
    end type
end module
program polymorphic_pointers
    use shapes
    implicit none
    type(longer), target :: all(6)
    class(base), pointer :: part(:)
    class(*), pointer :: any(:)
    class(*), allocatable :: free
    part => all
    print *, associated(part, all), associated(part, all(1:5)), associated(part, all(::2))
    part => all(2:6:2)
    print *, associated(part, all(2:6:2)), associated(part, all(2:4)), part%i
    any => all(::3)
    print *, associated(any, all(::3)), associated(any, all)
    nullify (part)
    print *, associated(part, all)
    print *, extends_type_of(all(1), free), extends_type_of(free, all(1))
    allocate (free, source=base(1))
    print *, extends_type_of(all(1), free), extends_type_of(free, all(1))
end program
