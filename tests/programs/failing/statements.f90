!> runs: alloc twice format end convert missing contained stop sent tail block
!> alloc: *** Error  408, ALLOCATE was unable to obtain sufficient storage
!> alloc: in Shapes::fail, @alloc
!> twice: Attempting to allocate already allocated variable 'a'
!> twice: in Shapes::fail, @twice
!> format: *** Error   74, Invalid editing descriptor *
!> format: in Shapes::fail, @format
!> end: *** Error   57, Attempt to read past end-of-file
!> end: in Shapes::fail, @end
!> convert: *** Error   52, Invalid character in field *
!> convert: in Shapes::fail, @convert
!> missing: *** Error  128, File does not exist ('/no/such/file')
!> missing: in Shapes::fail, @missing
!> contained: Integer divide by zero at address *
!> contained: in Shapes::grow_shape::scale_all, @scale
!> contained: called by Shapes::grow_shape, @grow
!> contained: called by Shapes::fail, @shape
!> stop: ERROR STOP 3
!> stop: in Shapes::fail, @stop
!> sent: Quit (SIGQUIT), raised by the program
!> sent: in Shapes::fail, @sent
!> alloc: called by Shapes::Down, @down
!> twice: called by Shapes::Down, @down
!> format: called by Shapes::Down, @down
!> end: called by Shapes::Down, @down
!> convert: called by Shapes::Down, @down
!> missing: called by Shapes::Down, @down
!> contained: called by Shapes::Down, @down
!> stop: called by Shapes::Down, @down
!> sent: called by Shapes::Down, @down
!> tail: Program aborted.
!> tail: in Main::last, @last
!> tail: called by Main::finish, @tail
!> block: Integer divide by zero at address *
!> block: in Main::finish, @block
!> alloc: called by Main, @main
!> twice: called by Main, @main
!> format: called by Main, @main
!> end: called by Main, @main
!> convert: called by Main, @main
!> missing: called by Main, @main
!> contained: called by Main, @main
!> stop: called by Main, @main
!> sent: called by Main, @main
!> tail: called by Main, @finish
!> block: called by Main, @finish
!> not: tarnlibc
!> not: _gfortran
module Shapes
    implicit none
    type :: shape
        integer :: area = 0
    contains
        procedure :: grow => grow_shape
    end type
contains
    subroutine grow_shape(this, by)
        class(shape), intent(inout) :: this
        integer, intent(in) :: by
        call scale_all(by) ! @grow
    contains
        subroutine scale_all(n)
            integer, intent(in) :: n
            this%area = 10 / n ! @scale
        end subroutine
    end subroutine
    recursive subroutine Down(n, what)
        integer, intent(in) :: n
        character(*), intent(in) :: what
        if (n == 0) then
            call fail(what) ! @down
        else
            call Down(n - 1, what)
        end if
    end subroutine
    subroutine fail(what)
        character(*), intent(in) :: what
        integer, allocatable :: a(:)
        integer(8), volatile :: much = 2_8**50
        integer, volatile :: i = 0
        character(10), volatile :: text = '(q)'
        type(shape) :: s
        select case (what)
        case ('alloc')
            allocate (a(much)) ! @alloc
        case ('twice')
            allocate (a(10))
            allocate (a(10)) ! @twice
        case ('format')
            write (*, text) 1 ! @format
        case ('end')
            open (9, status='scratch')
            read (9, *) i ! @end
        case ('convert')
            read (text, '(i5)') i ! @convert
        case ('missing')
            open (9, file='/no/such/file', status='old') ! @missing
        case ('contained')
            call s%grow(i) ! @shape
            print *, s%area
        case ('stop')
            error stop 3 ! @stop
        case ('sent')
            call kill(getpid(), 3) ! @sent
        end select
    end subroutine
end module
program Main
    use Shapes
    character(20) :: what
    call get_command_argument(1, what)
    if (what == 'tail' .or. what == 'block') call finish(what) ! @finish
    call Down(3, trim(what)) ! @main
contains
    subroutine finish(what)
        character(*) :: what
        block
            integer, volatile :: zero
            zero = 0
            if (what == 'block') zero = 7 / zero ! @block
        end block
        call last(what) ! @tail
    end subroutine
    subroutine last(what)
        character(*) :: what
        if (what == 'tail') call abort ! @last
    end subroutine
end program
