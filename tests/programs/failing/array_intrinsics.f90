!> runs: dim result order source vector chosen seed copies
!> dim: *** Error  388, DIM out of range
!> dim: DIM of SUM is 5; it should be between 1 and 2
!> result: *** Error  389, Nonconformant arrays
!> result: The result of RESHAPE has extent 3 in dimension 2; it should be 2
!> order: *** Error  395, ORDER array is not a permutation of (1,2,...,size(SHAPE)) (RESHAPE)
!> order: The ORDER of RESHAPE has the value 1
!> source: *** Error  389, Nonconformant arrays
!> source: The SOURCE of RESHAPE has 4 elements; the result has 20
!> vector: *** Error  403, VECTOR has insufficient elements (UNPACK)
!> vector: The VECTOR of UNPACK has only 4 elements
!> chosen: *** Error  397, The result array size is too small (PACK)
!> chosen: The VECTOR of PACK has 2 elements; MASK chooses 4
!> seed: *** Error  406, Invalid call to random number seeder
!> seed: PUT= of RANDOM_SEED has 3 elements, and needs 8
!> copies: Argument NCOPIES of REPEAT intrinsic is negative (its value is -1)
!> report: in Main_Thing, *
!> not: tarnlibc
!> not: _gfortran
! What array intrinsics find wrong in a program that has asked for no checks.
program Main_Thing
    character(20) :: what
    integer :: a(2, 3) = reshape([1, 2, 3, 4, 5, 6], [2, 3])
    integer :: v(4) = [1, 2, 3, 4], twice(2) = 1
    integer, volatile :: two = 2
    integer, allocatable :: seed(:)
    logical :: every(4) = .true., all_of(2, 3) = .true.
    call get_command_argument(1, what)
    select case (what)
    case ('dim'); print *, sum(a, dim=two + 3)
    case ('result'); print *, merge(a, 0, reshape(every, [two, two]))
    case ('order'); print *, reshape(a, [3, two], order=twice)
    case ('source'); print *, reshape(v, [two + 3, 4])
    case ('vector'); print *, unpack(v, all_of, 0)
    case ('chosen'); print *, pack(v, every, v(1:two))
    case ('seed')
        allocate (seed(two + 1))
        seed = 1
        call random_seed(put=seed)
    case ('copies'); print *, repeat(what, two - 3)
    end select
end program
