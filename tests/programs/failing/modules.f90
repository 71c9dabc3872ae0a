!> runs: end format deallocate stop
!> end: in Readers::Take::fail_by, modules.f90:29
!> format: in Readers::Take::fail_by, modules.f90:31
!> deallocate: in Readers::Take::fail_by, modules.f90:33
!> stop: in Readers::Take::fail_by, modules.f90:35
!> report: called by Readers::Take, modules.f90:22
!> report: called by Readers::Deep, modules.f90:45
!> report: (this call 4 more times)
!> report: called by Main_Thing, modules.f90:54
!> not: tarnlibc
!> not: _gfortran
!> not: -g1
module Readers
    implicit none
    integer, allocatable :: numbers(:)
contains
    subroutine Take(what)
        character(*), intent(in) :: what
        integer :: n
        character(8) :: edit
        edit = '(Q9)'
        call fail_by(what)
        n = 0; edit = ' '
    contains
        subroutine fail_by(how)
            character(*), intent(in) :: how
            select case (how)
            case ('end')
                read (7, *) n
            case ('format')
                write (*, edit) 1
            case ('deallocate')
                deallocate (numbers)
            case default
                error stop 'stopped'
            end select
        end subroutine
    end subroutine
    recursive subroutine Deep(levels, what)
        integer, intent(in) :: levels
        character(*), intent(in) :: what
        if (levels > 0) then
            call Deep(levels - 1, what)
        else
            call Take(what)
        end if
    end subroutine
end module
program Main_Thing
    use Readers
    character(20) :: what
    open (7, file='/dev/null')
    call get_command_argument(1, what)
    call Deep(4, what)
end program
