! OPEN with every value of its specifiers: what it returns and what INQUIRE says then.
! flags: -fdec
program open_specifiers
    implicit none
    integer :: i, j, k, ios
    character(11), parameter :: status(8) = [character(11) :: 'old', 'NEW', 'replace', 'unknown', &
                                             'scratch', 'ol', ' old', '']
    character(11), parameter :: action(4) = [character(11) :: 'read', 'write', 'readwrite', 'x']
    character(11), parameter :: names(6) = [character(11) :: 'there', 'missing', 'nodir/x', '', &
                                            '  blanks', 'empty']
    character(11), parameter :: access(6) = [character(11) :: 'sequential', 'direct', 'stream', &
                                             'append', 'Direct', 'x']
    character(11), parameter :: form(3) = [character(11) :: 'formatted', 'unformatted', 'x']
    character(11), parameter :: position(4) = [character(11) :: 'asis', 'rewind', 'append', 'x']
    integer, parameter :: recl(2) = [10, 1000000]

    ! The peer's first failure may hear of a missing message catalogue instead.
    open (10, file='nodir/x', iostat=ios)
    do i = 1, size(names)
        do j = 1, size(status)
            call prepare
            open (10, file=names(i), status=status(j), iostat=ios)
            call tell('file and status', ios)
            do k = 1, size(action)
                call prepare
                open (10, file=names(i), status=status(j), action=action(k), iostat=ios)
                call tell('with action', ios)
            end do
        end do
    end do
    do j = 1, size(status)
        call prepare
        open (10, status=status(j), iostat=ios)
        call tell('no file', ios)
    end do
    do i = 1, size(access)
        do j = 1, size(form)
            call prepare
            open (10, file='there', access=access(i), form=form(j), iostat=ios)
            call tell('access and form', ios)
            if (access(i) == 'stream') cycle
            do k = 1, size(recl)
                call prepare
                open (10, file='there', access=access(i), form=form(j), recl=recl(k), iostat=ios)
                call tell('with recl', ios)
            end do
        end do
        do j = 1, size(position)
            if (access(i) == 'stream') cycle
            call prepare
            open (10, file='there', access=access(i), recl=4, position=position(j), iostat=ios)
            call tell('position', ios)
        end do
    end do
    do i = 1, 2
        do j = 1, 30
            call prepare
            call open_mode(j, form(i))
        end do
    end do
    call prepare
    open (10, file='there', recl=0, iostat=ios)
    call tell('no length', ios)
    open (10, file='there', share='denynone', iostat=ios)
    call tell('share', ios)
    open (10, file='there', share='denyrw', iostat=ios)
    call tell('share', ios)
    open (10, file='there', share='denyrw', action='read', iostat=ios)
    call tell('share', ios)
    open (10, file='there', readonly, iostat=ios)
    call tell('readonly', ios)

contains
    subroutine prepare
        integer :: ignored
        open (99, file='missing', iostat=ignored)
        close (99, status='delete')
        open (99, file='fort.10', iostat=ignored)
        close (99, status='delete')
        open (99, file='  blanks', iostat=ignored)
        close (99, status='delete')
        open (99, file='empty', status='replace')
        close (99)
        open (99, file='there', status='replace')
        write (99, '(A)') 'one', 'two'
        close (99)
    end subroutine

    subroutine open_mode(which, form)
        integer, intent(in) :: which
        character(*), intent(in) :: form
        character(17), parameter :: words(30) = [character(17) :: &
            'null', 'zero', 'x', 'none', 'quote', 'apostrophe', 'x', 'yes', 'no', 'x', &
            'point', 'comma', 'x', 'utf-8', 'default', 'x', 'up', 'down', 'zero', 'nearest', &
            'compatible', 'processor_defined', 'x', 'plus', 'suppress', 'x', 'yes', 'no', &
            'big_endian', 'swap']
        associate (w => words(which))
            select case (which)
            case (1:3);   open (10, file='there', form=form, blank=w, iostat=ios)
            case (4:7);   open (10, file='there', form=form, delim=w, iostat=ios)
            case (8:10);  open (10, file='there', form=form, pad=w, iostat=ios)
            case (11:13); open (10, file='there', form=form, decimal=w, iostat=ios)
            case (14:16); open (10, file='there', form=form, encoding=w, iostat=ios)
            case (17:23); open (10, file='there', form=form, round=w, iostat=ios)
            case (24:26); open (10, file='there', form=form, sign=w, iostat=ios)
            case (27:28); open (10, file='there', form=form, asynchronous=w, iostat=ios)
            case default; open (10, file='there', form=form, convert=w, iostat=ios)
            end select
            call tell(w, ios)
        end associate
    end subroutine

    subroutine tell(what, ios)
        character(*), intent(in) :: what
        integer, intent(in) :: ios
        integer :: number, next, ignored, i_
        integer(8) :: length, bytes
        logical :: there, opened, named
        character(17) :: c(22)
        print *, what, ios
        c = '@'
        inquire (10, exist=there, opened=opened, named=named, number=number, nextrec=next, &
                 recl=length, size=bytes, name=c(1), access=c(2), sequential=c(3), direct=c(4), &
                 form=c(5), formatted=c(6), unformatted=c(7), blank=c(8), position=c(9), &
                 action=c(10), read=c(11), write=c(12), readwrite=c(13), delim=c(14), pad=c(15), &
                 convert=c(16), asynchronous=c(17), decimal=c(18), encoding=c(19), round=c(20), &
                 sign=c(21), stream=c(22))
        print '(3L2,2I4,2(1X,I0),*(1X,A))', there, opened, named, number, next, length, bytes, &
            (trim(c(i_)), i_=1, 22)
        close (10, iostat=ignored)
    end subroutine
end program
