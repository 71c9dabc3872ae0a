! build: $FC $FLAGS $SRC/system_files.f90 $LINK -o $PROGRAM
! build: $FC -fdefault-integer-8 $FLAGS $SRC/system_files.f90 $LINK -o $PROGRAM.8
! run: umask 22; $PROGRAM
! run: umask 27; $PROGRAM.8
! entries: (?:[lf]?stat|link|symlnk|rename|unlink|umask|chmod|access|chdir|getcwd|gerror|ierrno)\w*
! Files by their names, as functions and as subroutines.
program system_files
    implicit none
    integer :: result, values(13), old
    character(300) :: long
    character(3) :: short
    call before_all()
    open (10, file='f.txt')
    write (10, '(A)') 'content'
    close (10)
    call linking()
    call statuses()
    call modes_as_texts()
    call folders()
    call masks()
    call odd_names()
contains
    subroutine tell(what)
        character(*), intent(in) :: what
        print '(A,1X,I0)', what, result
    end subroutine
    ! The first statement on a unit brings up all, and leaves the last error alone.
    subroutine before_all()
        call link('nothing', 'at all')
        print *, ierrno()
    end subroutine
    subroutine linking()
        result = rename('f.txt', 'g.txt '); call tell('rename')
        call rename('f.txt', 'g.txt', result); call tell('rename')
        result = link('g.txt', 'h.txt'); call tell('link')
        call link('g.txt', 'h.txt', result); call tell('link')
        result = symlnk('g.txt', 's.txt '); call tell('symlnk')
        call symlnk('', 't.txt', result); call tell('symlnk')
        result = unlink('nothing'); call tell('unlink')
        call unlink('.', result); call tell('unlink')
        call unlink('h.txt', result); call tell('unlink')
        call unlink('h.txt')
        print *, ierrno()
        result = unlink('h.txt')
        call gerror(short)
        print *, short
    end subroutine
    subroutine statuses()
        integer :: wide(2, 13)
        result = stat('g.txt  ', values); call tell('stat')
        print *, values(3:8)
        wide = -1
        call stat('g.txt', wide(2, :), result); call tell('stat')
        print *, all(wide(2, :) == values), wide(1, :)
        call lstat('s.txt', values, result); call tell('lstat')
        print *, values(3:4), values(8)
        values = -1
        result = stat('nothing', values); call tell('stat')
        print *, values
        open (10, file='g.txt')
        result = fstat(10, values); call tell('fstat')
        print *, values(3), values(8)
        close (10)
        call fstat(10, values, result)
        print *, result /= 0
        result = access('g.txt', ' '); call tell('access')
        result = access('g.txt', 'rw'); call tell('access')
        result = access('g.txt', 'RWX'); call tell('access')
        result = access('g.txt', 'q'); call tell('access')
        result = access('nothing', 'r'); call tell('access')
    end subroutine
    subroutine modes_as_texts()
        character(16), parameter :: texts(41) = [character(16) :: '644', '0755', '7', '4755', &
            '10777', '8', 'u+x', '+x', 'a-r', 'go=', 'u=rwx,g=rx,o=', 'ug+w', 'u+s', 'g+s', '+t', &
            'a+X', '=r', 'u=g', 'g=u', 'o=u+x', 'u+rw-x', 'a=rwX', '+', 'u', 'x', 'rwx', 'u+q', &
            '', ' 600', 'u+x ', 'a=', 'u=rw,go=r', '-w', 'u-w,+x', 'g=o', 'ugo+r', &
            'ug=rw,o-rwx', '+s', 'a+st', 'u+x-x+r', 'o=g']
        ! gfortran reads on behind an octal number that fills its text.
        character(4), parameter :: before(3) = ['644 ', '751 ', '000 ']
        integer :: i, k
        open (10, file='m.txt')
        close (10)
        do i = 1, size(texts)
            write (*, '(A)', advance='no') texts(i)
            do k = 1, 3
                result = chmod('m.txt', before(k))
                result = chmod('m.txt', texts(i))
                call stat('m.txt', values)
                write (*, '(I4,O8)', advance='no') result, values(3)
            end do
            print '()'
        end do
        call chmod('m.txt', '600 ', result); call tell('chmod')
        call chmod('nothing', '644', result)
        print *, result == 0
        result = chmod('nothing', 'u+x'); call tell('chmod')
        call execute_command_line('mkdir folder')
        do i = 1, size(texts)
            result = chmod('folder', '755 ')
            if (texts(i) /= '+t' .and. texts(i) /= 'a+st') result = chmod('folder', texts(i))
            call stat('folder', values)
            print '(A,I4,O8)', texts(i), result, values(3)
        end do
        result = chmod('folder', '755 ')
    end subroutine
    subroutine folders()
        result = chdir('nothing'); call tell('chdir')
        call chdir('folder ', result); call tell('chdir')
        result = getcwd(long); call tell('getcwd')
        print *, long(len_trim(long) - 6:len_trim(long))
        call getcwd(short, result); call tell('getcwd')
        print *, '[', short, ']'
        call chdir('..')
        call getcwd(long)
        print *, index(long, 'folder')
    end subroutine
    subroutine masks()
        old = umask(63)
        print *, old
        call umask(18, old)
        print *, old
        call umask(18)
        old = 18
        print *, umask(old)
    end subroutine
    ! White space other than blanks belongs to a name; a zero byte ends it.
    subroutine odd_names()
        character(1), parameter :: tab = achar(9), zero = achar(0)
        integer :: i
        character(4), parameter :: names(3) = ['x'//tab//'  ', 'x'//achar(10)//'  ', 'x   ']
        do i = 1, 3
            open (10, file=names(i))
            close (10)
        end do
        result = stat('x'//tab, values); call tell('stat')
        result = rename('x'//tab, 'y'//tab//zero//'rest'); call tell('rename')
        result = unlink('x'//achar(10)//' '); call tell('unlink')
        result = chdir('.'//tab); call tell('chdir')
        result = access('x'//zero//'/y', 'r'); call tell('access')
        call execute_command_line('echo first'//zero//'; echo second')
        call getcwd(long(1:0), result); call tell('getcwd')
    end subroutine
end program
