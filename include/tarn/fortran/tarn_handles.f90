! Fortran handles, for Fortran programs: files by a small number, for bytes and lines of text
! without I/O statements.
!
! A handle and an error are INTEGER(2), everything else is default INTEGER unless a line says
! otherwise. An error is 0 when all went well; the other numbers are listed in tarn/handles.h: 2 there
! is no such file, 5 access is denied, 6 no such handle, 112 the disk is full ... A handle of a file
! that can't be opened is -1.
module tarn_handles
  implicit none
  public

  interface

    ! ---- Opening and closing ----------------------------------------------------------------
    ! For reading; for writing, with the file emptied or made; for both, with the file kept or made.
    subroutine openr@(name, handle, error)
      character(*), intent(in) :: name
      integer(2), intent(out) :: handle, error
    end subroutine
    subroutine openw@(name, handle, error)
      character(*), intent(in) :: name
      integer(2), intent(out) :: handle, error
    end subroutine
    subroutine openrw@(name, handle, error)
      character(*), intent(in) :: name
      integer(2), intent(out) :: handle, error
    end subroutine
    ! Mode: 0 reads, 1 writes, 2 does both (the file is kept or made); and 16 nobody else may have
    ! the file, 32 others may read it, 48 write it, 64 do both.
    subroutine openf@(name, mode, handle, error)
      character(*), intent(in) :: name
      integer(2), intent(in) :: mode
      integer(2), intent(out) :: handle, error
    end subroutine
    subroutine closef@(handle, error)
      integer(2), intent(in) :: handle
      integer(2), intent(out) :: error
    end subroutine
    ! Closes, and deletes the file.
    subroutine closefd@(handle, error)
      integer(2), intent(in) :: handle
      integer(2), intent(out) :: error
    end subroutine

    ! ---- Bytes and lines --------------------------------------------------------------------
    ! Reads at most `count` bytes into a variable or array of any type; fewer, or none, are the end
    ! of the file and no error.
    subroutine readf@(buffer, handle, count, bytes_read, error)
      !GCC$ attributes no_arg_check :: buffer
      type(*) :: buffer
      integer(2), intent(in) :: handle
      integer, intent(in) :: count
      integer, intent(out) :: bytes_read
      integer(2), intent(out) :: error
    end subroutine
    ! Reads a line: its first characters_read characters, the rest of `text` stays as it was; -1 at
    ! the end of the file. Carriage returns and Ctrl-Z are dropped, tabs become blanks.
    subroutine readfa@(text, handle, characters_read, error)
      character(*), intent(inout) :: text
      integer(2), intent(in) :: handle
      integer, intent(out) :: characters_read
      integer(2), intent(out) :: error
    end subroutine
    ! The same into `length` bytes of anything.
    subroutine readfa1@(buffer, length, handle, characters_read, error)
      !GCC$ attributes no_arg_check :: buffer
      type(*) :: buffer
      integer, intent(in) :: length
      integer(2), intent(in) :: handle
      integer, intent(out) :: characters_read
      integer(2), intent(out) :: error
    end subroutine
    subroutine writef@(buffer, handle, count, error)
      !GCC$ attributes no_arg_check :: buffer
      type(*) :: buffer
      integer(2), intent(in) :: handle
      integer, intent(in) :: count
      integer(2), intent(out) :: error
    end subroutine
    ! Writes the text as it stands, trailing blanks too, and a line end (CR LF).
    subroutine writefa@(text, handle, error)
      character(*), intent(in) :: text
      integer(2), intent(in) :: handle
      integer(2), intent(out) :: error
    end subroutine
    subroutine writefa1@(buffer, length, handle, error)
      !GCC$ attributes no_arg_check :: buffer
      type(*) :: buffer
      integer, intent(in) :: length
      integer(2), intent(in) :: handle
      integer(2), intent(out) :: error
    end subroutine

    ! ---- Positions, in bytes from 0 ---------------------------------------------------------
    ! In 32 bits a place behind 2 GiB is negative; the forms with `long` have 64.
    subroutine rfpos@(handle, position, error)
      integer(2), intent(in) :: handle
      integer, intent(out) :: position
      integer(2), intent(out) :: error
    end subroutine
    subroutine rfposlong@(handle, position, error)
      integer(2), intent(in) :: handle
      integer(8), intent(out) :: position
      integer(2), intent(out) :: error
    end subroutine
    ! Moves, but never past the end of the file: new_position is where the handle stands then.
    subroutine fpos@(handle, position, new_position, error)
      integer(2), intent(in) :: handle
      integer, intent(in) :: position
      integer, intent(out) :: new_position
      integer(2), intent(out) :: error
    end subroutine
    subroutine fposlong@(handle, position, new_position, error)
      integer(2), intent(in) :: handle
      integer(8), intent(in) :: position
      integer(8), intent(out) :: new_position
      integer(2), intent(out) :: error
    end subroutine
    ! Moves to the end.
    subroutine move_to_eof@(handle, position, error)
      integer(2), intent(in) :: handle
      integer, intent(out) :: position
      integer(2), intent(out) :: error
    end subroutine
    subroutine fpos_eof@(handle, position, error)
      integer(2), intent(in) :: handle
      integer, intent(out) :: position
      integer(2), intent(out) :: error
    end subroutine
    subroutine move_to_eoflong@(handle, position, error)
      integer(2), intent(in) :: handle
      integer(8), intent(out) :: position
      integer(2), intent(out) :: error
    end subroutine
    subroutine fpos_eoflong@(handle, position, error)
      integer(2), intent(in) :: handle
      integer(8), intent(out) :: position
      integer(2), intent(out) :: error
    end subroutine
    ! Makes the file empty; what waits to be written is dropped.
    subroutine empty@(handle, error)
      integer(2), intent(in) :: handle
      integer(2), intent(out) :: error
    end subroutine
    ! Cuts the file where the handle stands.
    subroutine file_truncate@(handle, error)
      integer(2), intent(in) :: handle
      integer(2), intent(out) :: error
    end subroutine

    ! ---- What a handle stands for -----------------------------------------------------------
    ! Tabs reach the program as they are.
    subroutine read_tabs1@(handle)
      integer(2), intent(in) :: handle
    end subroutine
    ! The system's descriptor, or -1.
    integer function translate_fortran_handle@(handle)
      integer(2), intent(in) :: handle
    end function
    ! Writes out what waits to be written.
    subroutine flush_fortran_handle@(handle, error)
      integer(2), intent(in) :: handle
      integer(2), intent(out), optional :: error
    end subroutine
    ! The handle of a file that is open, or -1; the full path of a handle, or blanks.
    subroutine get_handle@(path, handle)
      character(*), intent(in) :: path
      integer(2), intent(out) :: handle
    end subroutine
    subroutine get_path@(handle, path)
      integer(2), intent(in) :: handle
      character(*), intent(out) :: path
    end subroutine

  end interface
end module tarn_handles
