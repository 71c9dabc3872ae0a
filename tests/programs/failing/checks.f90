!> options: -fcheck=all
!> runs: above section mismatch extent recursion step index pointer unallocated memory bits lengths
!> above: *** Error   11, Array subscript(s) out-of-bounds
!> above: Index '7' of dimension 1 of array 'a' above upper bound of 5
!> above: in Checks::element, @element
!> section: Index '9' of dimension 1 of array 'a' outside of expected range (1:5)
!> section: in Checks::section, @section
!> mismatch: *** Error  389, Nonconformant arrays
!> mismatch: Array bound mismatch for dimension 1 of array 'a' (5/4)
!> mismatch: in Checks::assign, @assign
!> extent: *** Error  389, Nonconformant arrays
!> extent: Dimension 1 of array 'r' has extent 4 instead of 3
!> extent: in Checks::numbers, *
!> recursion: *** Error   18, This routine has been entered recursively
!> recursion: Recursive call to nonrecursive procedure 'again'
!> recursion: in Checks::again, *
!> recursion: called by Checks::fine, @fine
!> recursion: called by Checks::again, @again
!> step: *** Error    7, DO-loop has zero increment
!> step: in Checks::loop, @loop
!> index: *** Error  431, Active DO-loop index altered
!> index: in Checks::altered, @altered
!> pointer: *** Error  420, Reference through NULL Fortran POINTER
!> pointer: Pointer actual argument 'p' is not associated
!> pointer: in Checks::give, @give
!> unallocated: Allocatable actual argument 'x' is not allocated
!> unallocated: in Checks::hand_on, @hand_on
!> memory: *** Error  408, ALLOCATE was unable to obtain sufficient storage
!> memory: in Checks::much, *
!> bits: *** Error  357, Invalid argument to numeric intrinsic function
!> bits: POS argument (40) out of range 0:32 in intrinsic IBSET
!> bits: in Checks::set_bit, @set_bit
!> lengths: *** Error    4, Character argument/function name of wrong length
!> lengths: Different CHARACTER lengths (4/3) in array constructor
!> lengths: in Checks::texts, @texts
!> report: called by Main_Thing, checks.f90:*
!> not: tarnlibc
!> not: _gfortran
module Checks
    implicit none
contains
    subroutine element(a, i)
        integer, intent(inout) :: a(:)
        integer, intent(in) :: i
        a(i) = 1 ! @element
    end subroutine
    subroutine section(a, v)
        integer, intent(inout) :: a(:)
        integer, intent(in) :: v(:)
        a(v) = 0 ! @section
    end subroutine
    subroutine assign(a, b)
        integer, intent(inout) :: a(:)
        integer, intent(in) :: b(:)
        a(1:size(a)) = b(1:size(b)) ! @assign
    end subroutine
    function numbers(n) result(r)
        integer, intent(in) :: n
        real :: r(n)
        r = 1
    end function
    recursive subroutine fine(n)
        integer, intent(in) :: n
        if (n > 0) call again(n) ! @fine
    end subroutine
    subroutine again(n)
        integer, intent(in) :: n
        if (n > 0) call fine(n - 1) ! @again
    end subroutine
    subroutine loop(n)
        integer, intent(in) :: n
        integer :: i
        do i = 1, 10, n ! @loop
            print *, i
        end do
    end subroutine
    subroutine altered()
        integer :: i
        do i = 1, 3 ! @altered
            call change(i)
        end do
    end subroutine
    subroutine change(i)
        integer :: i
        i = i + 1
    end subroutine
    subroutine take(i)
        integer, intent(in) :: i
        print *, i
    end subroutine
    subroutine give(p)
        integer, pointer, intent(in) :: p
        call take(p) ! @give
    end subroutine
    subroutine hand_on(x)
        integer, allocatable, intent(in) :: x
        call take(x) ! @hand_on
    end subroutine
    subroutine much(n)
        integer(8), intent(in) :: n
        integer, allocatable :: a(:)
        allocate (a(n))
        print *, size(a)
    end subroutine
    subroutine set_bit(i, n)
        integer, intent(inout) :: i
        integer, intent(in) :: n
        i = ibset(i, n) ! @set_bit
    end subroutine
    subroutine texts(s, n)
        character(10), intent(in) :: s
        integer, intent(in) :: n
        print *, [s(1:n), s(1:n - 1)] ! @texts
    end subroutine
end module
program Main_Thing
    use Checks
    character(20) :: what
    integer :: a(5) = 0
    integer, volatile :: four = 4
    real :: r(3)
    integer, pointer :: p
    integer, allocatable :: x
    nullify (p)
    call get_command_argument(1, what)
    select case (what)
    case ('above'); call element(a, four + 3)
    case ('section'); call section(a, [1, four + 5])
    case ('mismatch'); call assign(a, a(1:four))
    case ('extent'); r = numbers(four); print *, r
    case ('recursion'); call again(four)
    case ('step'); call loop(four - 4)
    case ('index'); call altered()
    case ('pointer'); call give(p)
    case ('unallocated'); call hand_on(x)
    case ('memory'); call much(2_8**54 + four)
    case ('bits'); call set_bit(a(1), four + 36)
    case ('lengths'); call texts('abc       ', four)
    end select
end program
