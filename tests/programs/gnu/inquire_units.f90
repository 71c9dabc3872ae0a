! NEWUNIT= and everything that INQUIRE tells.
program inquire_units
    implicit none
    integer :: unit, other, number, recl, next, i, ios
    integer(8) :: size, position
    character(80) :: name, access, form, action, blank, delim, pad, encoding, decimal, round, sign
    character(80) :: sequential, direct, stream, formatted, unformatted, readable, writable, both
    character(80) :: where, asynchronous
    logical :: exists, opened, named
    call tell_unit('never opened', 77)
    call tell_unit('standard input', 5)
    call tell_unit('standard output', 6)
    call tell_unit('standard error', 0)
    open (newunit=unit, file='one.txt')
    print *, 'negative', unit < 0
    call tell_unit('new', unit)
    write (unit, '(A)') 'abc', 'def'
    call tell_unit('written', unit)
    rewind (unit)
    call tell_unit('rewound', unit)
    read (unit, *)
    call tell_unit('read', unit)
    inquire (file='one.txt', number=number, opened=opened, exist=exists)
    print *, number == unit, opened, exists
    open (newunit=other, status='scratch', form='unformatted')
    print *, 'two units', other /= unit
    inquire (other, named=named, form=form, opened=opened)
    print *, named, trim(form), opened
    close (other)
    inquire (other, opened=opened, iostat=ios)
    print *, opened, ios
    open (newunit=other, file='direct', access='direct', recl=40, action='write')
    call tell_unit('direct', other)
    close (other)
    open (21, file='set.txt', blank='zero', decimal='comma', delim='quote', pad='no', &
          round='up', sign='plus', encoding='utf-8', asynchronous='yes')
    call tell_unit('set', 21)
    close (21, status='delete')
    open (22, file='stream', access='stream')
    write (22) 1, 2, 3
    call tell_unit('stream', 22)
    close (22)
    open (23, file='one.txt', position='append', action='write')
    call tell_unit('append', 23)
    close (23)
    open (24, file='one.txt', action='read', recl=50)
    call tell_unit('read only', 24)
    open (24, file='one.txt', delim='apostrophe')
    call tell_unit('opened again', 24)
    close (24)
    call tell_file('one.txt')
    call tell_file('missing')
    call tell_file('.')
    open (30, file='trailing blanks   ')
    inquire (30, name=name)
    print *, '['//trim(name(index(name, '/', .true.) + 1:))//']'
    close (30)
    inquire (file='trailing blanks', exist=exists)
    print *, exists
    close (unit, status='delete')
    inquire (file='one.txt', exist=exists)
    print *, exists
    exists = is_connected(unit)
    opened = is_connected(6)
    print *, exists, opened

contains
    logical function is_connected(n)
        integer, intent(in) :: n
        inquire (n, opened=is_connected)
    end function

    subroutine tell_unit(what, n)
        character(*), intent(in) :: what
        integer, intent(in) :: n
        name = '?'
        access = '?'
        recl = -99
        next = -99
        size = -99
        position = -99
        number = -99
        inquire (n, exist=exists, opened=opened, number=number, named=named, name=name, &
                 access=access, sequential=sequential, direct=direct, stream=stream, form=form, &
                 formatted=formatted, unformatted=unformatted, recl=recl, nextrec=next, &
                 blank=blank, position=where, action=action, read=readable, write=writable, &
                 readwrite=both, delim=delim, pad=pad, encoding=encoding, decimal=decimal, &
                 round=round, sign=sign, asynchronous=asynchronous, &
                 size=size, pos=position)
        ! What stands for POS= of a file that is no stream, and for POSITION= inside one, has no
        ! meaning to a program.
        if (access /= 'STREAM') position = -99
        if (where /= 'APPEND') where = 'elsewhere'
        print '(A,": ",3L2,I11,I4)', what, exists, opened, named, recl, next
        print '(3X,*(A,:,1X))', trim(access), trim(sequential), trim(direct), trim(stream), &
            trim(form), trim(formatted), trim(unformatted), trim(blank), trim(where), &
            trim(action), trim(readable), trim(writable), trim(both)
        print '(3X,*(A,:,1X))', trim(delim), trim(pad), trim(encoding), trim(decimal), &
            trim(round), trim(sign), trim(asynchronous)
        if (n > 6) print '(3X,2I6,1X,A)', size, position, trim(name(index(name, '/', .true.) + 1:))
        if (n < 0) print '(3X,2I6,L2)', size, position, number == n
    end subroutine

    subroutine tell_file(what)
        character(*), intent(in) :: what
        inquire (file=what, exist=exists, opened=opened, number=number, named=named, &
                 access=access, sequential=sequential, direct=direct, stream=stream, form=form, &
                 formatted=formatted, unformatted=unformatted, action=action, read=readable, &
                 write=writable, readwrite=both, size=size, blank=blank, position=where, &
                 delim=delim, pad=pad, encoding=encoding)
        if (opened) number = 1
        if (where /= 'APPEND') where = 'elsewhere'
        print '(A,": ",3L2,I4)', what, exists, opened, named, number
        print '(3X,*(A,:,1X))', trim(access), trim(sequential), trim(direct), trim(stream), &
            trim(form), trim(formatted), trim(unformatted), trim(blank), trim(where), &
            trim(action), trim(readable), trim(writable), trim(both), trim(delim), trim(pad), &
            trim(encoding)
        if (what /= '.') print *, size
    end subroutine
end program
