! How programs end: STOP and ERROR STOP with and without a code, files left open, records unfinished.
! flags: -std=gnu -ffpe-summary=none
! run: $PROGRAM end
! run: $PROGRAM stop
! run: $PROGRAM stop3
! run: $PROGRAM text
! run: $PROGRAM quiet
! run: $PROGRAM error
! run: $PROGRAM error4
! run: $PROGRAM errortext
! run: $PROGRAM exit
! run: $PROGRAM stop3 > out.txt
! status: same
program stops
    implicit none
    character(20) :: what
    integer :: code = 7
    call get_command_argument(1, what)
    open (10, file='left.txt')
    write (10, '(A)') 'a record'
    write (10, '(A)', advance='no') 'an unfinished one'
    write (*, '(A)') 'printed'
    write (*, '(A)', advance='no') 'unfinished'
    open (11, status='scratch')
    write (11, *) 'scratch'
    select case (what)
    case ('stop')
        stop
    case ('stop3')
        stop 3
    case ('text')
        stop 'a text'
    case ('quiet')
        stop 5, quiet=.true.
    case ('error')
        error stop
    case ('error4')
        error stop 4
    case ('errortext')
        error stop 'an error'
    case ('exit')
        call exit(code)
    end select
end program
