! Exceptions of the processor, for Fortran programs: traps, and the state at an exception.
!
! A trap is an INTEGER function without arguments that is called when an exception strikes. Result 0
! goes on where the program was, -2 ends it at once, anything else gives the usual report. It should
! do little: a statement on a unit that was at work fails.
module tarn_exceptions
  use, intrinsic :: iso_c_binding, only: c_ptr
  implicit none
  public

  ! Classes.
  integer, parameter :: exception_access = 0, exception_invalid = 1, exception_denormal = 2
  integer, parameter :: exception_zero_divide = 3, exception_overflow = 4, exception_underflow = 5
  integer, parameter :: exception_inexact = 6, exception_stack = 7, exception_control_c = 8
  integer, parameter :: exception_breakpoint = 9, exception_single_step = 10
  integer, parameter :: exception_privileged = 11, exception_all = 12, exception_arithmetic = 13
  integer, parameter :: exception_integer_divide = 14, exception_integer_overflow = 15
  integer, parameter :: exception_low_memory = 16

  abstract interface
    integer function exception_trap()
    end function
  end interface

  interface

    ! Sets a trap; the address of the one before, 0 where there was none.
    integer(8) function trap_exception@(exception_class, trap)
      import :: exception_trap
      integer, intent(in) :: exception_class
      procedure(exception_trap) :: trap
    end function
    subroutine restore_default_handler@(exception_class)
      integer, intent(in) :: exception_class
    end subroutine
    ! Index 0 is the handler of break keys, any other one a class.
    integer(8) function set_trap@(trap, index)
      import :: exception_trap
      procedure(exception_trap) :: trap
      integer, intent(in) :: index
    end function

    ! In a trap: the class; the address of the instruction; the records of tarn/exceptions.h.
    integer function exception_trapped@()
    end function
    integer(8) function exception_address@()
    end function
    type(c_ptr) function exception_information@()
      import :: c_ptr
    end function
    type(c_ptr) function machine_state@()
      import :: c_ptr
    end function
    ! In a trap of class 0: where the access went, and 1 if it was a write; `failed` is 1 in others.
    subroutine access_details@(address, is_write, failed)
      integer(8), intent(out) :: address
      integer, intent(out) :: is_write, failed
    end subroutine
    ! In a trap for an underflow: puts a zero in place of the result; 1 where it could.
    integer function clear_flt_underflow@()
    end function

  end interface
end module tarn_exceptions
