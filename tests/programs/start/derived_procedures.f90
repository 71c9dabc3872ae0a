!> args: 1
!> status: 1
!> err: *** Error  381, the well is dry
!> err:     in derived_procedures.f90, line 67
!> err:     on unit 6
!> run:
!> args: 2
!> status: 1
!> err: *** Error  381, Fortran run-time error (a procedure of a derived type returned IOSTAT 2)
!> err:     in derived_procedures.f90, line 67
!> err:     on unit 6
!> run:
!> args: 3
!> status: 1
!> err: *** Error   51, Format/data mismatch (FORMAT mismatch: I-Format with CHARACTER item (at data position 1))
!> err:     in derived_procedures.f90, line 47
!> err:     on unit 6
!> run:
!> args: 4
!> status: 1
!> err: *** Error  433, A function called from within an I/O statement has performed I/O on the same unit (a child statement is running on it)
!> err:     in derived_procedures.f90, line 57
!> err:     on unit 6
!> run:
!> args: -2
!> out:  before  .
! What a procedure of a derived type does wrong, where nobody catches it.
module items
  implicit none
  type item
    integer :: how
  contains
    procedure :: put
    generic :: write(formatted) => put
  end type
contains
  subroutine put(dtv, unit, iotype, v_list, iostat, iomsg)
    class(item), intent(in) :: dtv
    integer, intent(in) :: unit
    character(*), intent(in) :: iotype
    integer, intent(in) :: v_list(:)
    integer, intent(out) :: iostat
    character(*), intent(inout) :: iomsg
    iostat = 0
    select case (dtv%how)
    case (3)
      write (unit, '(i5)') 'abc'
    case (4)
      write (unit, *) 'inner', writing(unit)
    case default
      iostat = dtv%how
      if (dtv%how == 1) iomsg = 'the well is dry'
    end select
  end subroutine
  integer function writing(unit)
    integer, intent(in) :: unit
    write (unit, *) 1
    writing = 1
  end function
end module
program derived_procedures
  use items
  character(4) :: how
  type(item) :: x
  call get_command_argument(1, how)
  read (how, *) x%how
  write (*, *) 'before', x, '.'
end program
