!> options: -ffpe-trap=zero,overflow,invalid,underflow
!> runs: zero overflow invalid root underflow extended
!> report: Floating point co-processor fault at address *
!> zero: Floating point divide by zero
!> overflow: Floating point overflow
!> invalid: Invalid floating point operation
!> root: Invalid floating point operation
!> root: Negative argument to square root
!> underflow: Floating point underflow
!> extended: Floating point divide by zero
!> zero: in Numbers::quotient, float_traps.f90:23
!> overflow: in Numbers::product, float_traps.f90:27
!> invalid: in Numbers::quotient, float_traps.f90:23
!> root: in Numbers::root, float_traps.f90:31
!> underflow: in Numbers::product, float_traps.f90:27
!> extended: in Numbers::long_quotient, float_traps.f90:*
!> report: called by Main_Thing, float_traps.f90:*
!> not: tarnlibc
module Numbers
contains
    subroutine quotient(a, b, c)
        real(8), volatile :: a, b, c
        c = a / b
    end subroutine
    subroutine product(a, b, c)
        real(8), volatile :: a, b, c
        c = a * b
    end subroutine
    subroutine root(a, c)
        real(8), volatile :: a, c
        c = sqrt(a)
    end subroutine
    subroutine long_quotient(a, c)
        real(8), volatile :: a, c
        real(10), volatile :: b
        b = a
        b = 1 / b
        c = b
    end subroutine
end module
program Main_Thing
    use Numbers
    real(8), volatile :: x, y
    character(20) :: what
    call get_command_argument(1, what)
    x = 0
    y = 1
    select case (what)
    case ('zero')
        call quotient(y, x, y)
    case ('overflow')
        x = huge(x)
        call product(x, x, y)
    case ('invalid')
        call quotient(x, x, y)
    case ('root')
        x = -1
        call root(x, y)
    case ('underflow')
        x = tiny(x)
        call product(x, x, y)
    case ('extended')
        call long_quotient(x, y)
    end select
    print *, y
end program
