! Floating-point exceptions, for Fortran programs: which of them are masked, what becomes of an
! underflow. tarn/float.h tells the rules.
module tarn_float
  implicit none
  public

  interface

    ! A masked underflow gives a small or zero result; an unmasked one is repaired to zero and
    ! counted, or with permit_underflow@(0_2) ends the program.
    subroutine mask_underflow@()
    end subroutine
    subroutine mask_underflows@()
    end subroutine
    subroutine unmask_underflow@()
    end subroutine
    subroutine unmask_underflows@()
    end subroutine
    subroutine permit_underflow@(permitted)
      integer(2), intent(in) :: permitted
    end subroutine
    ! Underflows that were repaired or reported; also stored in `count`.
    integer function underflow_count@(count)
      integer, intent(out) :: count
    end function

    ! Non-zero unmasks every exception but the inexact one, zero masks all.
    subroutine trap_fp_exceptions@(trap)
      integer, intent(in) :: trap
    end subroutine
    ! Double precision for REAL(10).
    subroutine no_extended_precsion@()
    end subroutine

    ! The value, or zero in place of a denormal one.
    real function ftz@(value)
      real, intent(in) :: value
    end function
    double precision function dftz@(value)
      double precision, intent(in) :: value
    end function

    subroutine mask_overflow()
    end subroutine
    subroutine unmask_overflow()
    end subroutine
    subroutine mask_zero_divide()
    end subroutine
    subroutine unmask_zero_divide()
    end subroutine
    subroutine mask_invalid_op()
    end subroutine
    subroutine unmask_invalid_op()
    end subroutine
    subroutine mask_all_fp_ex()
    end subroutine
    subroutine unmask_all_fp_ex()
    end subroutine

  end interface
end module tarn_float
