! OPEN of a unit that is connected: the same file with other modes, another file, other units on the
! same file, and the numbers of NEWUNIT=.
program open_again
    implicit none
    integer :: ios, i, u(6)
    character(20) :: text
    character(12) :: modes(7)
    logical :: opened
    open (11, file='one')
    write (11, '(A)') 'first', 'second'
    call reopen('status', 'new')
    call reopen('status', 'replace')
    call reopen('status', 'scratch')
    call reopen('status', 'old')
    call reopen('status', 'unknown')
    call reopen('access', 'stream')
    call reopen('access', 'sequential')
    call reopen('form', 'unformatted')
    call reopen('form', 'formatted')
    call reopen('action', 'read')
    call reopen('action', 'readwrite')
    open (11, recl=70, iostat=ios)
    print *, 'recl', ios
    open (11, blank='zero', pad='no', delim='quote', decimal='comma', round='up', sign='plus', &
          encoding='utf-8', iostat=ios)
    print *, 'modes', ios
    inquire (11, blank=modes(1), pad=modes(2), delim=modes(3), decimal=modes(4), round=modes(5), &
             sign=modes(6), encoding=modes(7))
    print *, modes
    open (11, file='./one', position='rewind', pad='yes')
    read (11, '(A)') text
    print *, text
    open (12, file='one', iostat=ios)
    read (12, '(A)') text
    print *, 'on two units', ios, text
    close (12)
    open (11, file='two', iostat=ios)
    inquire (11, name=text, pad=modes(1))
    print *, 'another file', ios, text, modes(1)
    write (11, '(A)') 'finished'
    open (11, file='no/where', iostat=ios)
    inquire (11, opened=opened)
    print *, 'a bad file', ios, opened
    open (11, file='two')
    read (11, '(A)') text
    print *, text
    close (11, status='neither', iostat=ios)
    inquire (11, opened=opened)
    print *, 'close', ios, opened
    close (11, status='delete')
    inquire (file='two', exist=opened)
    print *, opened

    do i = 1, 3
        open (newunit=u(i), status='scratch')
    end do
    close (u(2))
    open (newunit=u(4), file='three')
    u(5) = -77
    open (newunit=u(5), file='no/where', iostat=ios)
    print *, ios, u(5)
    close (u(1))
    open (newunit=u(5), status='scratch')
    open (newunit=u(6), status='scratch', form='unformatted')
    print *, u
    open (u(4), file='four')
    inquire (u(4), name=text)
    print *, text
    close (u(4))
    open (u(4), file='five', iostat=ios)
    print *, 'a number given back', ios

contains
    subroutine reopen(specifier, word)
        character(*), intent(in) :: specifier, word
        select case (specifier)
        case ('status'); open (11, file='one', status=word, iostat=ios)
        case ('access'); open (11, file='one', access=word, iostat=ios)
        case ('form');   open (11, file='one', form=word, iostat=ios)
        case ('action'); open (11, file='one', action=word, iostat=ios)
        end select
        inquire (11, opened=opened)
        print *, specifier, ' ', word, ios, opened
    end subroutine
end program
