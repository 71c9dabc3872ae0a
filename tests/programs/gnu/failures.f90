! Failures that nobody catches: what was written before must be there. The status is ours.
! run: $PROGRAM read
! run: $PROGRAM open
! run: $PROGRAM end
! run: $PROGRAM format
! run: $PROGRAM record > out.txt
! run: $PROGRAM internal | cat
! run: $PROGRAM stat
! status: any
program failures
    implicit none
    character(20) :: what, text
    integer :: n
    integer, allocatable :: values(:)
    call get_command_argument(1, what)
    open (10, file='before.txt')
    write (10, '(A)') 'written before'
    write (10, '(A)', advance='no') 'unfinished'
    print *, 'printed before'
    select case (what)
    case ('read')
        text = 'no number'
        read (text, *) n
    case ('open')
        open (11, file='not/there')
    case ('end')
        open (11, file='empty.txt')
        read (11, *) n
    case ('format')
        text = '(Q9)'
        write (*, text) 1
    case ('record')
        open (11, file='direct.txt', access='direct', recl=8)
        read (11, rec=5) n
    case ('internal')
        write (text(1:3), '(I5)') 12345
    case ('stat')
        allocate (values(12))
        n = stat('.', values)
    end select
    print *, 'not reached'
end program
