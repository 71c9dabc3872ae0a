! Dates, times and clocks, for Fortran programs. A time value is a count of seconds since
! 1 January 1970. Dates before 29 February 1972 have none here: failure 428.
module tarn_dates
  implicit none
  public

  interface

    ! ---- Texts ------------------------------------------------------------------------------
    ! Today: mm/dd/yyyy, and dd/mm/yyyy. (A program that doesn't use this module may declare them
    ! with a length below 10, and gets years of two digits.)
    character(10) function date@()
    end function
    character(10) function edate@()
    end function
    ! Wednesday, 5 January 2000
    character(30) function fdate@()
    end function
    ! hh:mm:ss
    character(8) function time@()
    end function
    ! The same for a time value: dates are those of UTC, the time is local.
    character(10) function todate@(time)
      integer, intent(in) :: time
    end function
    character(10) function toedate@(time)
      integer, intent(in) :: time
    end function
    character(30) function tofdate@(time)
      integer, intent(in) :: time
    end function
    character(8) function totime@(time)
      integer, intent(in) :: time
    end function

    ! ---- Numbers ----------------------------------------------------------------------------
    ! The fields of the date of a time value; weekday 0 is Sunday.
    subroutine convdate@(time, weekday, day, month, year)
      integer, intent(in) :: time
      integer, intent(out) :: weekday, day, month, year
    end subroutine
    ! Local time, as a count since the beginning of 1900, 1970 and 1980.
    subroutine seconds_since_1900@(result, seconds, minutes, hours, day, month, year)
      real(8), intent(out) :: result
      integer, intent(in) :: seconds, minutes, hours, day, month, year
    end subroutine
    subroutine seconds_since_1970@(result)
      real(8), intent(out) :: result
    end subroutine
    subroutine seconds_since_1980@(result)
      real(8), intent(out) :: result
    end subroutine
    ! Now, with milliseconds, since 1900.
    subroutine dsecs_1900@(result)
      real(8), intent(out) :: result
    end subroutine

    ! ---- Clocks -----------------------------------------------------------------------------
    ! Seconds since the program's start.
    subroutine dclock@(seconds)
      real(8), intent(out) :: seconds
    end subroutine
    subroutine clock@(seconds)
      real, intent(out) :: seconds
    end subroutine
    ! Seconds of a clock that is never set, to the nanosecond.
    real(8) function high_res_clock@()
    end function

  end interface
end module tarn_dates
