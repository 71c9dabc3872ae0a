!> options: --virtual-common=big -fcray-pointer
!> without: -flto
!> runs: common before scratch
!> common: (byte 8000000001 of the region ./program, which has 8000000000, from 200000000000 on)
!> common: in fill, regions.f90:36
!> common: called by regions, regions.f90:22
!> before: (8 bytes before the region RESULTS, which has 1000000, from * on)
!> before: in set, regions.f90:44
!> before: called by regions, regions.f90:25
!> scratch: (byte 524288001 of the region SCRATCH_1, which has 524288000, from * on)
!> scratch: in set, regions.f90:44
!> scratch: called by regions, regions.f90:29
program regions
  use tarn_virtual
  implicit none
  character(10) :: word
  integer(8) :: address, size, commit_size, committed
  integer(2) :: handle, status
  call get_command_argument(1, word)
  select case (word)
  case ('common')
    call fill(1000000001_8)
  case ('before')
    address = setup_virtual_region@('RESULTS', 1000000_8, 0_8)
    call set(address - 8)
  case default
    call open_virtual_scratch@(handle, status)
    call get_virtual_scratch_file_info@(handle, address, size, commit_size, committed)
    call set(address + size)
  end select
end program
subroutine fill(last)
  integer(8), intent(in) :: last
  real(8) :: big(1000000000)
  common /big/ big
  big(last - 5:last) = 1
  print *, big(last)
end subroutine
subroutine set(address)
  integer(8), intent(in) :: address
  real(8) :: item
  pointer (place, item)
  place = address
  item = 1
  print *, item
end subroutine
