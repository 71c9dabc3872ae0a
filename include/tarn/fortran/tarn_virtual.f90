! Virtual storage for Fortran programs: ranges of address space that take memory only where they are
! touched, and read as zeros until then.
!
! An address is an INTEGER(8), for C_F_POINTER or a Cray pointer; a size is a number of bytes, in an
! INTEGER(8). A COMMON block of any size needs no routine: tarnfc --virtual-common=NAME.
module tarn_virtual
  implicit none
  public

  integer, parameter :: region_decommit = int(z'4000'), region_release = int(z'8000')

  interface
    ! A region of the name and size, anywhere or at `address`, a multiple of 4096; its start, 0 where
    ! there is no such range.
    integer(8) function setup_virtual_region@(name, size, address)
      character(*), intent(in) :: name
      integer(8), intent(in) :: size, address
    end function
    ! Anywhere, with half the size as often as it takes to get some; below 32 MiB the program ends.
    integer(8) function setup_expanding_region@(name, size)
      character(*), intent(in) :: name
      integer(8), intent(in) :: size
    end function
    ! Gives the memory of the region that begins there back, and with region_release the addresses;
    ! 0: there was nothing to do.
    integer function remove_virtual_region@(start, kind)
      integer(8), intent(in) :: start
      integer, intent(in) :: kind
    end function
    ! Pages of 4096 bytes that are committed together; 512 and more ask for large pages.
    subroutine set_commit_pages@(pages)
      integer, intent(in) :: pages
    end subroutine
    ! Of the region of that name; 0: there is none.
    integer function get_virtual_common_info@(name, address, size, commit_size, committed)
      character(*), intent(in) :: name
      integer(8), intent(inout) :: address, size, commit_size, committed
    end function

    ! Regions by slots 1 to 32. A handle is the slot's number with bit 15 set, and either serves.
    subroutine set_virtual_scratch_file_size@(size)
      integer(8), intent(in) :: size
    end subroutine
    ! Status 0; -13: all slots are in use; 1: there is no range.
    subroutine open_virtual_scratch@(handle, status)
      integer(2), intent(inout) :: handle
      integer(2), intent(out) :: status
    end subroutine
    subroutine create_virtual_scratch_file@(slot, address, status)
      integer(2), intent(in) :: slot
      integer(8), intent(inout) :: address
      integer(2), intent(out) :: status
    end subroutine
    subroutine get_virtual_scratch_file_info@(slot, address, size, commit_size, committed)
      integer(2), intent(in) :: slot
      integer(8), intent(out) :: address, size, commit_size, committed
    end subroutine
    ! The memory goes; the slot's next region has the same address.
    subroutine close_virtual_scratch@(slot)
      integer(2), intent(in) :: slot
    end subroutine
    ! The addresses go, too.
    subroutine release_virtual_scratch@(slot)
      integer(2), intent(in) :: slot
    end subroutine
  end interface
end module tarn_virtual
