! Derived types in I/O lists: component by component, nested, arrays of them.
module shapes
    implicit none
    type point
        real(8) :: x = 0, y = 0
    end type
    type body
        character(6) :: name = 'none'
        type(point) :: corners(2)
        integer :: tags(3) = [1, 2, 3]
        logical :: solid = .true.
        complex :: z = (1.0, -1.0)
    end type
    type, extends(point) :: weighted
        real :: weight = 0.5
    end type
end module

program derived_types
    use shapes
    implicit none
    type(body) :: b, many(2)
    type(weighted) :: w
    b%corners(2) = point(3.5d0, -4.25d0)
    print *, b
    many(1) = b
    many(2)%name = 'other'
    print '(A6,4F7.2,3I3,L2,2F5.1)', many
    print *, many%tags(2), many%corners(1)%x, many(:)%name
    print *, w
    open (10, status='scratch', form='unformatted')
    write (10) many
    rewind (10)
    many%name = 'lost'
    read (10) many
    print *, many%name, many(1)%corners
    close (10)
    open (11, status='scratch')
    write (11, *) b
    rewind (11)
    read (11, *) many(2)%name, many(2)%corners, many(2)%tags, many(2)%solid, many(2)%z
    print *, many(2)
    close (11)
end program
