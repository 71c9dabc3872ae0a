!> options: -fopenmp
!> runs: null overflow both
!> null: The instruction at address * attempted to write to location 00000008
!> null: in Work::touch, threads.f90:22
!> overflow: Stack overflow at address *
!> overflow: in Work::deep, threads.f90:*
!> overflow: (this call * more times)
!> both: The instruction at address * attempted to write to location 00000008
!> both: in Work::touch, threads.f90:22
!> null: called by main_thing (parallel region), threads.f90:45
!> overflow: called by main_thing (parallel region), threads.f90:47
!> both: called by main_thing (parallel region), threads.f90:51
!> not: tarnlibc
module Work
    use iso_c_binding
    implicit none
contains
    subroutine touch()
        integer, pointer :: x(:)
        integer(8), volatile :: address = 0
        call c_f_pointer(transfer(address, c_null_ptr), x, [4])
        x(3) = 1
    end subroutine
    recursive subroutine deep(levels, total)
        integer, intent(in) :: levels
        integer, intent(inout) :: total
        integer :: local(500)
        local = levels + total
        if (local(3) /= 1) call deep(levels + local(4), total)
        total = total + local(7)
    end subroutine
end module
program main_thing
    use Work
    use omp_lib
    integer :: c
    character(20) :: what
    call get_command_argument(1, what)
    c = 2
    !$omp parallel num_threads(2) shared(what, c)
    if (omp_get_thread_num() == 1) then
        ! Wrong on a worker; the first thread waits for it.
        select case (what)
        case ('null')
            call touch()
        case ('overflow')
            call deep(1, c)
        end select
    end if
    !$omp barrier
    if (what == 'both') call touch()
    !$omp end parallel
    print *, c
end program
