! Files without opening them, the command line, the environment and other programs, for Fortran
! programs.
!
! An error is INTEGER(2), 0 when all went well; tarn/files.h lists the other numbers. Everything else
! is default INTEGER unless a line says otherwise. Names are paths of the system: case counts, and
! there are no drives.
module tarn_files
  implicit none
  public

  interface

    ! ---- The command line -------------------------------------------------------------------
    ! The number of arguments; one of them (0 is the program's name) and its length.
    integer function cmnargs@()
    end function
    subroutine getarg@(number, text)
      integer, intent(in) :: number
      character(*), intent(out) :: text
    end subroutine
    integer function lenarg@(number)
      integer, intent(in) :: number
    end function
    ! The arguments one after the other, blank behind the last; and back to the first.
    character(4096) function cmnam@()
    end function
    subroutine cmnamr@()
    end subroutine
    character(4096) function cmprognm@()
    end function
    ! The next argument as an integer. Error 18: there is none; 13: it is no integer.
    subroutine cmnum@(value, error)
      integer, intent(inout) :: value
      integer(2), intent(out) :: error
    end subroutine
    ! The whole line, with the program's name; arguments with blanks stand in quotation marks.
    subroutine command_line@(text)
      character(*), intent(out) :: text
    end subroutine
    subroutine command_line2@(text)
      character(*), intent(out) :: text
    end subroutine
    integer function len_cmline@()
    end function
    ! A line of the standard input; with the number of its characters, -1 at the end of the input.
    subroutine getcl@(text)
      character(*), intent(out) :: text
    end subroutine
    subroutine getcl1@(text, characters_read)
      character(*), intent(out) :: text
      integer, intent(out), optional :: characters_read
    end subroutine

    ! ---- The environment --------------------------------------------------------------------
    ! A variable's value, blank when there is none.
    character(32767) function getenv@(name)
      character(*), intent(in) :: name
    end function
    subroutine dosparam@(name, value)
      character(*), intent(in) :: name
      character(*), intent(out) :: value
    end subroutine
    subroutine getenviron@(name, value)
      character(*), intent(in) :: name
      character(*), intent(out) :: value
    end subroutine
    ! 'NAME=value'; 'NAME=' takes the variable away.
    subroutine putenv@(definition, error)
      character(*), intent(in) :: definition
      integer(2), intent(out), optional :: error
    end subroutine

    ! ---- Files ------------------------------------------------------------------------------
    ! A pattern with * or ? exists when it matches something.
    logical function file_exists@(name)
      character(*), intent(in) :: name
    end function
    logical function fexists@(name)
      character(*), intent(in) :: name
    end function
    subroutine erase@(name, error)
      character(*), intent(in) :: name
      integer(2), intent(out) :: error
    end subroutine
    ! A file that has the new name already stays: an error.
    subroutine rename@(old_name, new_name, error)
      character(*), intent(in) :: old_name, new_name
      integer(2), intent(out) :: error
    end subroutine
    ! Makes a directory; makes one the current directory.
    subroutine mkdir@(name, error)
      character(*), intent(in) :: name
      integer(2), intent(out) :: error
    end subroutine
    subroutine attach@(name, error)
      character(*), intent(in) :: name
      integer(2), intent(out) :: error
    end subroutine
    subroutine attach1@(name, error)
      character(*), intent(in) :: name
      integer(2), intent(out) :: error
    end subroutine
    ! There are no drives: error 15.
    subroutine change_drive@(drive, error)
      character(*), intent(in) :: drive
      integer(2), intent(out) :: error
    end subroutine
    subroutine change_drive1@(drive, error)
      character(*), intent(in) :: drive
      integer(2), intent(out) :: error
    end subroutine
    character(4096) function curdir@()
    end function
    character(4096) function current_dir@()
    end function
    ! Mode: 1 nobody may write, 2 the name begins with a dot, 16 a directory, 128 none of these. The
    ! times (made, last read, last written) are seconds since 1970. Device and links are 0.
    subroutine fileinfo@(name, mode, device, links, size, created, accessed, written, error)
      character(*), intent(in) :: name
      integer, intent(out) :: mode, device, links, size, created, accessed, written
      integer(2), intent(out) :: error
    end subroutine
    subroutine fileinfo8@(name, mode, device, links, size, created, accessed, written, error)
      character(*), intent(in) :: name
      integer, intent(out) :: mode, device, links
      integer(8), intent(out) :: size, created, accessed, written
      integer(2), intent(out) :: error
    end subroutine
    subroutine file_size@(name, size, error)
      character(*), intent(in) :: name
      integer, intent(out) :: size
      integer(2), intent(out) :: error
    end subroutine
    subroutine file_size8@(name, size, error)
      character(*), intent(in) :: name
      integer(8), intent(out) :: size
      integer(2), intent(out) :: error
    end subroutine
    ! Lists what a pattern matches, at most `maximum` files, as full paths in the order of their names.
    ! Attributes are as in fileinfo@; dates are (year - 1980) * 512 + month * 32 + day, times
    ! hours * 2048 + minutes * 32 + seconds / 2, both to be taken without a sign.
    subroutine files@(pattern, count, maximum, names, attributes, dates, times, sizes)
      character(*), intent(in) :: pattern
      integer, intent(out) :: count
      integer, intent(in) :: maximum
      character(*), intent(inout) :: names(*)
      integer(2), intent(inout) :: attributes(*), dates(*), times(*)
      integer, intent(inout) :: sizes(*)
    end subroutine
    subroutine get_files@(pattern, count, maximum, names, attributes, dates, times, sizes)
      character(*), intent(in) :: pattern
      integer, intent(out) :: count
      integer, intent(in) :: maximum
      character(*), intent(inout) :: names(*)
      integer(2), intent(inout) :: attributes(*), dates(*), times(*)
      integer, intent(inout) :: sizes(*)
    end subroutine
    subroutine files8@(pattern, count, maximum, names, attributes, dates, times, sizes)
      character(*), intent(in) :: pattern
      integer, intent(out) :: count
      integer, intent(in) :: maximum
      character(*), intent(inout) :: names(*)
      integer(2), intent(inout) :: attributes(*), dates(*), times(*)
      integer(8), intent(inout) :: sizes(*)
    end subroutine
    ! A path from the root; a path relative to the current directory, where it lies below it.
    character(4096) function full_path_name@(name)
      character(*), intent(in) :: name
    end function
    character(4096) function resolve_path_name@(name)
      character(*), intent(in) :: name
    end function
    character(4096) function local_file_name@(name)
      character(*), intent(in) :: name
    end function
    ! Only attribute 1, nobody may write, can be changed.
    subroutine set_file_attribute@(name, attributes, error)
      character(*), intent(in) :: name
      integer, intent(in) :: attributes
      integer(2), intent(out), optional :: error
    end subroutine
    subroutine get_file_attribute@(name, attributes, error)
      character(*), intent(in) :: name
      integer, intent(inout) :: attributes
      integer(2), intent(out), optional :: error
    end subroutine
    ! A name that no file has, here or in the directory for temporary files.
    subroutine temp_file@(name, error)
      character(*), intent(out) :: name
      integer(2), intent(out) :: error
    end subroutine
    subroutine temp_path@(name, error)
      character(*), intent(out) :: name
      integer(2), intent(out) :: error
    end subroutine
    character(4096) function temp_dir_name@()
    end function
    logical function is_writable_directory@(directory)
      character(*), intent(in) :: directory
    end function

    ! ---- Other programs ---------------------------------------------------------------------
    ! What this program has written is on its way before they start; but not what a unit holds
    ! in whose PRINT or WRITE one of these functions stands: take its result into a variable.
    ! Runs a command by the shell and waits. What the command says by its status is no error.
    subroutine cissue@(command, error)
      character(*), intent(in) :: command
      integer(2), intent(out) :: error
    end subroutine
    ! Starts a program, with arguments as one text, and waits: its exit code; or goes on at once: 0.
    ! -1: it can't be started; -2: nothing was named.
    integer function start_process@(program, arguments)
      character(*), intent(in) :: program, arguments
    end function
    integer function start_pprocess@(program, arguments)
      character(*), intent(in) :: program, arguments
    end function

  end interface
end module tarn_files
