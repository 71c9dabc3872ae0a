! Files, the command line and other programs in a Fortran program. It starts itself with arguments.
program files
  use tarn
  implicit none
  integer(2) :: error
  if (cmnargs@() > 0) then
    call say_arguments
    stop 3
  end if
  call names_and_sizes
  call lists
  call programs

contains

  subroutine names_and_sizes
    character(60) :: name
    integer :: mode, device, links, size, created, accessed, written
    integer(8) :: size8
    open (10, file='report.txt')
    write (10, '(a)') 'twelve bytes'
    close (10)
    call file_size@('report.txt', size, error)
    call file_size8@('report.txt', size8, error)
    print *, size, size8, error
    call rename@('report.txt', 'renamed.txt', error)
    print *, error, fexists@('report.txt'), fexists@('renamed.txt'), file_exists@('re*.t?t')
    call set_file_attribute@('renamed.txt', 1)
    call fileinfo@('renamed.txt', mode, device, links, size, created, accessed, written, error)
    print *, mode, size, error, written > 1600000000
    call fileinfo@('report.txt', mode, device, links, size, created, accessed, written, error)
    print *, error
    call erase@('renamed.txt', error)
    call erase@('renamed.txt', error)
    print *, error
    call temp_file@(name, error)
    print *, trim(name), error
    call mkdir@('folder', error)
    call attach@('folder', error)
    name = curdir@()
    print *, name(len_trim(name) - 6:), error
    print *, trim(local_file_name@(full_path_name@('a/b'))), ' ', is_writable_directory@('.')
    call attach@('..', error)
    call change_drive@('C', error)
    print *, error
    call putenv@('TARN_TEST_NAME=a value')
    print *, '[', trim(getenv@('TARN_TEST_NAME')), '] [', trim(getenv@('TARN_TEST_NONE')), ']'
  end subroutine

  subroutine lists
    character(200) :: found(5)
    integer(2) :: attributes(5), dates(5), times(5)
    integer :: sizes(5), count, i
    do i = 1, 7
      open (10, file=achar(96 + i) // '.dat')
      write (10, '(a)') repeat('x', i)
      close (10)
    end do
    call files@('*.dat', count, 5, found, attributes, dates, times, sizes)
    do i = 1, count
      print *, found(i)(1:1), found(i)(len_trim(found(i)) - 5:len_trim(found(i))), &
        attributes(i), sizes(i), dates(i) /= 0
    end do
    call files@('*.none', count, 5, found, attributes, dates, times, sizes)
    print *, count
  end subroutine

  subroutine programs
    integer :: status
    print *, 'before'
    call cissue@('echo from the shell', error)
    print *, 'after', error
    status = start_process@('./program', '"one two" 17 x ""')
    print *, status
    print *, start_process@('nowhere', ''), start_process@('', '')
    print *, start_pprocess@('true', '')
  end subroutine

  subroutine say_arguments
    character(40) :: line
    integer :: n
    print *, cmnargs@(), lenarg@(1), ' ', trim(cmprognm@())
    print *, trim(cmnam@())
    call cmnum@(n, error)
    print *, n, error
    call cmnum@(n, error)
    print *, n, error
    call cmnamr@()
    call getarg@(3, line)
    print *, trim(cmnam@()), ' ', trim(line)
    call command_line@(line)
    print *, trim(line), len_cmline@()
  end subroutine
end program
