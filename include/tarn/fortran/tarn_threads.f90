! The library's own threads, for Fortran programs; tarn/threads.h tells the rules.
module tarn_threads
  implicit none
  public

  interface

    ! How many processors MATMUL of large matrices may use; any count but 1 to the number of
    ! processors means all of them. The count that it is now.
    integer function set_max_cores@(count)
      integer, intent(in) :: count
    end function

  end interface
end module tarn_threads
