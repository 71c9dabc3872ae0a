! Random numbers, for Fortran programs: the library's two generators, which have nothing to do with
! RANDOM_NUMBER. Each is one stream for all threads. Numbers come from [0, 1).
module tarn_random
  implicit none
  public

  interface

    ! ---- The congruential generator of 59 bits ----------------------------------------------
    real(8) function random@()
    end function
    ! A seed from a value; from two words, which get_random_seed@ gives; from the time of day.
    subroutine set_seed@(seed)
      real(8), intent(in) :: seed
    end subroutine
    subroutine set_random_seed@(words)
      integer, intent(in) :: words(2)
    end subroutine
    subroutine get_random_seed@(words)
      integer, intent(out) :: words(2)
    end subroutine
    subroutine date_time_seed@()
    end subroutine

    ! ---- The Mersenne twister ---------------------------------------------------------------
    ! 24 and 53 bits as REALs, 32 and 64 bits as integers.
    subroutine mt_randomr4@(value)
      real, intent(out) :: value
    end subroutine
    subroutine mt_randomr8@(value)
      real(8), intent(out) :: value
    end subroutine
    subroutine mt_randomi4@(value)
      integer, intent(out) :: value
    end subroutine
    subroutine mt_randomi8@(value)
      integer(8), intent(out) :: value
    end subroutine
    ! Arrays of numbers, quicker than one after the other.
    subroutine mt_randomr4_array@(values, count)
      integer, intent(in) :: count
      real, intent(out) :: values(*)
    end subroutine
    subroutine mt_randomr8_array@(values, count)
      integer, intent(in) :: count
      real(8), intent(out) :: values(*)
    end subroutine
    ! Action 3 sets the seed, where 0 counts as 1; action 4 gets it.
    subroutine mt_random_seed@(action, seed)
      integer, intent(in) :: action
      integer, intent(inout) :: seed
    end subroutine
    subroutine mt_date_time_seed@()
    end subroutine

  end interface
end module tarn_random
