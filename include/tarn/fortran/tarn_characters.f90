! Texts and sorting, for Fortran programs. A routine that changes a text leaves its length as it is.
module tarn_characters
  implicit none
  public

  interface

    ! ---- Texts, changed where they stand ----------------------------------------------------
    subroutine upcase@(text)
      character(*), intent(inout) :: text
    end subroutine
    subroutine lcase@(text)
      character(*), intent(inout) :: text
    end subroutine
    ! Moves the text left over its leading blanks, and blanks come behind it. (Not Fortran's TRIM.)
    subroutine trim@(text)
      character(*), intent(inout) :: text
    end subroutine
    ! Moves the text right over its trailing blanks.
    subroutine trimr@(text)
      character(*), intent(inout) :: text
    end subroutine
    ! Fills the text with one character.
    subroutine char_fill@(text, value)
      character(*), intent(inout) :: text
      character(*), intent(in) :: value
    end subroutine
    ! Adds behind the last character that is no blank, as far as there is room.
    subroutine append_string@(text, addition)
      character(*), intent(inout) :: text
      character(*), intent(in) :: addition
    end subroutine

    ! ---- Functions --------------------------------------------------------------------------
    ! The text in the middle of a field of this width.
    function centre@(text, width)
      character(*), intent(in) :: text
      integer, intent(in) :: width
      character(max(width, 0)) :: centre@
    end function
    ! Where the first character stands that is no blank; 0 if there is none.
    integer function nonblk@(text)
      character(*), intent(in) :: text
    end function
    ! A number in digits, and in English words.
    character(11) function cnum@(value)
      integer, intent(in) :: value
    end function
    character(132) function sayint@(value)
      integer, intent(in) :: value
    end function

    ! ---- Sorting: index takes the numbers of the values in ascending order -------------------
    subroutine isort@(index, values, count)
      integer, intent(in) :: count, values(*)
      integer, intent(out) :: index(*)
    end subroutine
    subroutine rsort@(index, values, count)
      integer, intent(in) :: count
      real, intent(in) :: values(*)
      integer, intent(out) :: index(*)
    end subroutine
    subroutine dsort@(index, values, count)
      integer, intent(in) :: count
      real(8), intent(in) :: values(*)
      integer, intent(out) :: index(*)
    end subroutine
    subroutine chsort@(index, values, count)
      integer, intent(in) :: count
      character(*), intent(in) :: values(*)
      integer, intent(out) :: index(*)
    end subroutine
    ! Looks the key up in what is in ascending order: its number, or 0.
    subroutine chseek@(key, values, count, position)
      integer, intent(in) :: count
      character(*), intent(in) :: key, values(*)
      integer, intent(out) :: position
    end subroutine

  end interface
end module tarn_characters
