! What a program leaves in its files, however it ends.
! run: $PROGRAM end
! run: $PROGRAM stop
! run: $PROGRAM error
! run: $PROGRAM exit
! run: $PROGRAM failure
! status: any
program endings
    implicit none
    integer :: n
    character(10) :: how, text
    call get_command_argument(1, how)
    open (10, file='whole')
    write (10, '(A)') 'a record'
    open (11, file='open')
    write (11, '(A)', advance='no') 'half a record'
    open (12, file='flushed')
    write (12, '(A)', advance='no') 'half'
    flush (12)
    write (12, '(A)') ' and half'
    open (13, status='scratch')
    write (13, '(A)') 'gone'
    write (*, '(A)', advance='no') 'prompt'
    write (*, '(A)') 'after'
    write (*, '(A)', advance='no') 'prompt'
    text = 'x'
    select case (how)
    case ('stop');    stop
    case ('error');   error stop 3
    case ('exit');    call exit(4)
    case ('failure'); read (text, *) n
    end select
end program
