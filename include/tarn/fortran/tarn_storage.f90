! Storage by address, for Fortran programs.
!
! An address is an INTEGER(8), -1 when there was no storage; a size is a number of bytes, in an
! INTEGER(4) or INTEGER(8). A program reaches the bytes by C_F_POINTER or by a Cray pointer.
module tarn_storage
  implicit none
  public

  ! Pieces of large blocks of address space, which take memory where they are touched.
  interface get_storage@
    subroutine get_storage@(address, size)
      integer(8), intent(out) :: address
      integer(8), intent(in) :: size
    end subroutine
    subroutine get_storage4@(address, size)
      integer(8), intent(out) :: address
      integer(4), intent(in) :: size
    end subroutine
  end interface
  interface shrink_storage@
    subroutine shrink_storage@(address, size)
      integer(8), intent(inout) :: address
      integer(8), intent(in) :: size
    end subroutine
    subroutine shrink_storage4@(address, size)
      integer(8), intent(inout) :: address
      integer(4), intent(in) :: size
    end subroutine
  end interface
  interface
    subroutine return_storage@(address)
      integer(8), intent(in) :: address
    end subroutine
  end interface

  ! The same by the allocator behind malloc.
  interface get_mstorage@
    subroutine get_mstorage@(address, size)
      integer(8), intent(out) :: address
      integer(8), intent(in) :: size
    end subroutine
    subroutine get_mstorage4@(address, size)
      integer(8), intent(out) :: address
      integer(4), intent(in) :: size
    end subroutine
  end interface
  interface shrink_mstorage@
    subroutine shrink_mstorage@(address, size)
      integer(8), intent(inout) :: address
      integer(8), intent(in) :: size
    end subroutine
    subroutine shrink_mstorage4@(address, size)
      integer(8), intent(inout) :: address
      integer(4), intent(in) :: size
    end subroutine
  end interface
  interface
    subroutine return_mstorage@(address)
      integer(8), intent(in) :: address
    end subroutine
  end interface

  ! The same by whole pages of their own; they do not shrink.
  interface get_gstorage@
    subroutine get_gstorage@(address, size)
      integer(8), intent(out) :: address
      integer(8), intent(in) :: size
    end subroutine
    subroutine get_gstorage4@(address, size)
      integer(8), intent(out) :: address
      integer(4), intent(in) :: size
    end subroutine
  end interface
  interface
    subroutine return_gstorage@(address)
      integer(8), intent(in) :: address
    end subroutine
  end interface

  interface
    ! Gives the system back the large blocks of which nothing is in use; how many bytes they were.
    subroutine giveback_allocation_blocks@(freed)
      integer(8), intent(out) :: freed
    end subroutine
    ! Lists the pieces in use on standard output.
    subroutine dbg_display_get_storage_list@()
    end subroutine
    ! Events of the library's own ALLOCATE and DEALLOCATE: 1 prints and counts them; and the number
    ! at which to stop in a debugger.
    subroutine set_debug_allocate@(flag)
      integer, intent(in) :: flag
    end subroutine
    subroutine set_debug_allocate_break_number@(number)
      integer, intent(in) :: number
    end subroutine
  end interface
end module tarn_storage
