! The statements under test. The program around them, executor_io.c, reads the cases and writes
! the results by itself, so that nothing but these statements goes through the run-time.
!
! A case has up to 32 items of any type. Item k is element k of the array of its type, and
! has(t, k) is 1 for its type and 0 for the others: one I/O list serves every mixture, and each
! item is handed over alone.
#define EACH(item, t) (item, j = 1, has(t, k))
#define INTEGERS EACH(i1(k), 1), EACH(i2(k), 2), EACH(i4(k), 3), EACH(i8(k), 4), EACH(iq(k), 5)
#define LOGICALS EACH(l1(k), 6), EACH(l2(k), 7), EACH(l4(k), 8), EACH(l8(k), 9)
#define REALS EACH(r4(k), 10), EACH(r8(k), 11), EACH(ra(k), 12), EACH(rq(k), 13)
#define COMPLEXES EACH(z4(k), 14), EACH(z8(k), 15), EACH(za(k), 16), EACH(zq(k), 17)
#define CHARACTERS EACH(c1(k)(1:length(k)), 18), EACH(c4(k)(1:length(k)), 19)
#define ITEMS (INTEGERS, LOGICALS, REALS, COMPLEXES, CHARACTERS, k = 1, n)

module cases
    use iso_c_binding
    implicit none
    integer, parameter :: most = 32, longest = 256
    integer(1) :: i1(most)
    integer(2) :: i2(most)
    integer(4) :: i4(most)
    integer(8) :: i8(most)
    integer(16) :: iq(most)
    logical(1) :: l1(most)
    logical(2) :: l2(most)
    logical(4) :: l4(most)
    logical(8) :: l8(most)
    real(4) :: r4(most)
    real(8) :: r8(most)
    real(10) :: ra(most)
    real(16) :: rq(most)
    complex(4) :: z4(most)
    complex(8) :: z8(most)
    complex(10) :: za(most)
    complex(16) :: zq(most)
    character(longest) :: c1(most)
    character(longest, 4) :: c4(most)
    integer(4) :: has(19, most), length(most)
    character(20) :: blank, decimal, delim, pad, round, sign
    common /ex_i1/ i1 /ex_i2/ i2 /ex_i4/ i4 /ex_i8/ i8 /ex_iq/ iq
    common /ex_l1/ l1 /ex_l2/ l2 /ex_l4/ l4 /ex_l8/ l8
    common /ex_r4/ r4 /ex_r8/ r8 /ex_ra/ ra /ex_rq/ rq
    common /ex_z4/ z4 /ex_z8/ z8 /ex_za/ za /ex_zq/ zq
    common /ex_c1/ c1 /ex_c4/ c4 /ex_has/ has /ex_length/ length
    common /ex_modes/ blank, decimal, delim, pad, round, sign
end module

! Internal files. `with` tells whether the statement names the modes.

subroutine internal_write(records, count, size, fmt, n, with, ios)
    use cases
    integer :: count, size, n, with, ios, j, k
    character(size) :: records(count)
    character(*) :: fmt
    if (with /= 0) then
        write (records, fmt, decimal=decimal, round=round, sign=sign, iostat=ios) ITEMS
    else if (count == 1) then
        write (records(1), fmt, iostat=ios) ITEMS
    else
        write (records, fmt, iostat=ios) ITEMS
    end if
end

subroutine internal_list_write(records, count, size, n, with, ios)
    use cases
    integer :: count, size, n, with, ios, j, k
    character(size) :: records(count)
    if (with /= 0) then
        write (records, *, decimal=decimal, delim=delim, round=round, sign=sign, iostat=ios) ITEMS
    else if (count == 1) then
        write (records(1), *, iostat=ios) ITEMS
    else
        write (records, *, iostat=ios) ITEMS
    end if
end

subroutine internal_read(records, count, size, fmt, n, with, ios)
    use cases
    integer :: count, size, n, with, ios, j, k
    character(size) :: records(count)
    character(*) :: fmt
    if (with /= 0) then
        read (records, fmt, blank=blank, decimal=decimal, pad=pad, round=round, iostat=ios) ITEMS
    else if (count == 1) then
        read (records(1), fmt, iostat=ios) ITEMS
    else
        read (records, fmt, iostat=ios) ITEMS
    end if
end

subroutine internal_list_read(records, count, size, n, with, ios)
    use cases
    integer :: count, size, n, with, ios, j, k
    character(size) :: records(count)
    if (with /= 0) then
        read (records, *, blank=blank, decimal=decimal, pad=pad, round=round, iostat=ios) ITEMS
    else if (count == 1) then
        read (records(1), *, iostat=ios) ITEMS
    else
        read (records, *, iostat=ios) ITEMS
    end if
end

! Internal files of character kind 4. `formatted` 0: list-directed.

subroutine wide_write(records, count, size, fmt, n, formatted, ios)
    use cases
    integer :: count, size, n, formatted, ios, j, k
    character(size, 4) :: records(count)
    character(*) :: fmt
    if (formatted /= 0) then
        write (records, fmt, iostat=ios) ITEMS
    else
        write (records, *, iostat=ios) ITEMS
    end if
end

subroutine wide_read(records, count, size, fmt, n, formatted, ios)
    use cases
    integer :: count, size, n, formatted, ios, j, k
    character(size, 4) :: records(count)
    character(*) :: fmt
    if (formatted /= 0) then
        read (records, fmt, iostat=ios) ITEMS
    else
        read (records, *, iostat=ios) ITEMS
    end if
end

! External files.

subroutine open_unit(unit, file, status, access, form, action, position, recl, encoding, ios)
    use cases
    integer :: unit, recl, ios
    character(*) :: file, status, access, form, action, position, encoding
    if (form == 'unformatted' .and. recl > 0) then
        open (unit, file=file, status=status, access=access, form=form, action=action, &
              recl=recl, convert=encoding, iostat=ios)
    else if (form == 'unformatted') then
        open (unit, file=file, status=status, access=access, form=form, action=action, &
              position=position, convert=encoding, iostat=ios)
    else if (access == 'direct') then
        open (unit, file=file, status=status, access=access, form=form, action=action, &
              recl=recl, blank=blank, decimal=decimal, delim=delim, pad=pad, round=round, &
              sign=sign, encoding=encoding, iostat=ios)
    else if (recl > 0) then
        open (unit, file=file, status=status, access=access, form=form, action=action, &
              position=position, recl=recl, iostat=ios)
    else if (blank == 'null' .and. decimal == 'point' .and. encoding == 'default') then
        open (unit, file=file, status=status, access=access, form=form, action=action, &
              position=position, iostat=ios)
    else
        open (unit, file=file, status=status, access=access, form=form, action=action, &
              position=position, blank=blank, decimal=decimal, delim=delim, pad=pad, &
              round=round, sign=sign, encoding=encoding, iostat=ios)
    end if
end

subroutine close_unit(unit, status, ios)
    integer :: unit, ios
    character(*) :: status
    close (unit, status=status, iostat=ios)
end

subroutine position_unit(unit, how, ios)
    integer :: unit, ios
    character(*) :: how
    ios = 0
    select case (how)
    case ('backspace')
        backspace (unit, iostat=ios)
    case ('rewind')
        rewind (unit, iostat=ios)
    case ('endfile')
        endfile (unit, iostat=ios)
    case ('flush')
        flush (unit, iostat=ios)
    end select
end

subroutine unit_write(unit, fmt, advance, n, ios)
    use cases
    integer :: unit, n, ios, j, k
    character(*) :: fmt, advance
    if (advance == 'no') then
        write (unit, fmt, advance='no', iostat=ios) ITEMS
    else
        write (unit, fmt, iostat=ios) ITEMS
    end if
end

subroutine unit_read(unit, fmt, advance, n, size, ios)
    use cases
    integer :: unit, n, size, ios, j, k
    character(*) :: fmt, advance
    size = -7
    if (advance == 'no') then
        read (unit, fmt, advance='no', size=size, iostat=ios) ITEMS
    else
        read (unit, fmt, iostat=ios) ITEMS
    end if
end

subroutine unit_list_write(unit, n, ios)
    use cases
    integer :: unit, n, ios, j, k
    write (unit, *, iostat=ios) ITEMS
end

subroutine unit_list_read(unit, n, ios)
    use cases
    integer :: unit, n, ios, j, k
    read (unit, *, iostat=ios) ITEMS
end

! Records of a direct file by REC=, places in a stream file by POS=.

subroutine unit_write_at(unit, fmt, what, place, n, ios)
    use cases
    integer :: unit, n, ios, j, k
    integer(8) :: place
    character(*) :: fmt, what
    if (what == 'rec') then
        write (unit, fmt, rec=place, iostat=ios) ITEMS
    else
        write (unit, fmt, pos=place, iostat=ios) ITEMS
    end if
end

subroutine unit_read_at(unit, fmt, what, place, n, ios)
    use cases
    integer :: unit, n, ios, j, k
    integer(8) :: place
    character(*) :: fmt, what
    if (what == 'rec') then
        read (unit, fmt, rec=place, iostat=ios) ITEMS
    else
        read (unit, fmt, pos=place, iostat=ios) ITEMS
    end if
end

! Unformatted. place 0: the next record, or the current place of a stream.

subroutine raw_write(unit, what, place, n, ios)
    use cases
    integer :: unit, n, ios, j, k
    integer(8) :: place
    character(*) :: what
    if (what == 'rec') then
        write (unit, rec=place, iostat=ios) ITEMS
    else if (what == 'pos') then
        write (unit, pos=place, iostat=ios) ITEMS
    else
        write (unit, iostat=ios) ITEMS
    end if
end

subroutine raw_read(unit, what, place, n, ios)
    use cases
    integer :: unit, n, ios, j, k
    integer(8) :: place
    character(*) :: what
    if (what == 'rec') then
        read (unit, rec=place, iostat=ios) ITEMS
    else if (what == 'pos') then
        read (unit, pos=place, iostat=ios) ITEMS
    else
        read (unit, iostat=ios) ITEMS
    end if
end

subroutine inquire_unit(unit, numbers, texts, ios)
    integer :: unit, ios
    integer(8) :: numbers(5)
    character(20) :: texts(20)
    logical :: exists, opened, named
    texts = ''
    numbers = -77
    inquire (unit, exist=exists, opened=opened, named=named, access=texts(1), &
             sequential=texts(2), direct=texts(3), form=texts(4), formatted=texts(5), &
             unformatted=texts(6), blank=texts(7), position=texts(8), action=texts(9), &
             read=texts(10), write=texts(11), readwrite=texts(12), delim=texts(13), &
             pad=texts(14), encoding=texts(15), decimal=texts(16), round=texts(17), &
             sign=texts(18), stream=texts(19), asynchronous=texts(20), recl=numbers(1), &
             nextrec=numbers(2), pos=numbers(3), size=numbers(4), iostat=ios)
    numbers(5) = merge(1, 0, exists) + merge(2, 0, opened) + merge(4, 0, named)
end
