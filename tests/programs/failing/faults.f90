!> runs: divide quotient null wild inside overflow abort
!> divide: Integer divide by zero at address *
!> divide: in Faulty::Divide, faults.f90:33
!> quotient: Integer overflow at address *
!> quotient: in Faulty::Divide, faults.f90:33
!> null: Access violation:
!> null: The instruction at address * attempted to write to location 00000008
!> null: in Faulty::Touch, faults.f90:37
!> wild: The instruction at address * attempted to read from an illegal location
!> wild: in Faulty::Look, faults.f90:42
!> inside: The instruction at address * attempted to read from location 00000010
!> inside: in Faulty::Show, faults.f90:46
!> overflow: Stack overflow at address *
!> overflow: in Faulty::Deep, faults.f90:*
!> overflow: (this call * more times)
!> abort: Program aborted.
!> divide: called by Main_Thing, faults.f90:73
!> quotient: called by Main_Thing, faults.f90:75
!> null: called by Main_Thing, faults.f90:78
!> wild: called by Main_Thing, faults.f90:81
!> inside: called by Main_Thing, faults.f90:84
!> overflow: called by Main_Thing, faults.f90:86
!> abort: in Main_Thing, faults.f90:88
!> not: tarnlibc
!> not: _gfortran
module Faulty
    use iso_c_binding
    implicit none
contains
    subroutine Divide(a, b, c)
        integer, intent(in) :: a, b
        integer, intent(out) :: c
        c = a / b
    end subroutine
    subroutine Touch(x)
        integer, volatile :: x
        x = 1
    end subroutine
    subroutine Look(x, total)
        integer, intent(in) :: x(:)
        integer, intent(out) :: total
        total = x(1)
    end subroutine
    subroutine Show(x)
        character(8), pointer :: x
        write (7, '(a)') x
    end subroutine
    recursive subroutine Deep(levels, total)
        integer, intent(in) :: levels
        integer, intent(inout) :: total
        integer :: local(500)
        local = levels + total
        if (local(3) /= 1) call Deep(levels + local(4), total)
        total = total + local(7)
    end subroutine
end module
program Main_Thing
    use Faulty
    integer :: c
    integer, volatile :: by
    integer(8), volatile :: address
    integer, pointer :: p(:), one
    character(8), pointer :: text
    type(c_ptr) :: nowhere
    character(20) :: what
    call get_command_argument(1, what)
    open (7, status='scratch')
    by = 0
    address = 0
    c = 2
    select case (what)
    case ('divide')
        call Divide(7, by, c)
    case ('quotient')
        call Divide(-huge(1) - 1, by - 1, c)
    case ('null')
        call c_f_pointer(transfer(address + 8, nowhere), one)
        call Touch(one)
    case ('wild')
        call c_f_pointer(transfer(address + int(z'7F00000000000000', 8), nowhere), p, [4])
        call Look(p, c)
    case ('inside')
        call c_f_pointer(transfer(address + 16, nowhere), text)
        call Show(text)
    case ('overflow')
        call Deep(1, c)
    case ('abort')
        call abort()
    end select
    print *, c
end program
