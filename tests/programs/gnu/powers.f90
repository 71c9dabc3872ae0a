! Powers with integer exponents of all kinds, and what else gfortran calls for numbers' kinds.
program powers
  implicit none
  integer :: n, i
  integer(8) :: large(7) = [0_8, 1_8, 2_8, -3_8, 33_8, -huge(1_8), huge(1_8)]
  integer :: bases(8) = [0, 1, -1, 2, -2, 3, huge(1), -huge(1) - 1]
  real(8) :: reals(8)
  character(10) :: names(5) = [character(10) :: 'ASCII', 'default', 'iso_10646', 'utf8', '']
  reals = [0d0, -0d0, 1d0, -1.5d0, 3d200, 1d-200, sqrt(-1d0 * bases(2)) , 1 / (0d0 * bases(2))]
  do n = -4, 35
    do i = 1, size(bases)
      if (bases(i) == 0 .and. n < 0) cycle
      print *, bases(i) ** n, int(bases(i), 8) ** n, int(bases(i), 16) ** n, &
        int(bases(i), 8) ** int(n, 8), int(bases(i), 16) ** int(n, 16), bases(i) ** int(n, 16)
    end do
    do i = 1, size(reals)
      print *, reals(i) ** n, real(reals(i)) ** int(n, 8), real(reals(i), 10) ** int(n, 16), &
        real(reals(i), 16) ** n, reals(i) ** int(n, 8)
      print *, cmplx(reals(i), 1.25) ** n, cmplx(-0.5, reals(i), 8) ** int(n, 8), &
        cmplx(reals(i), reals(9 - i), 10) ** int(n, 16), cmplx(reals(i), 3, 16) ** n
    end do
  end do
  do i = 1, size(large)
    print *, 3 ** large(i), (-1_8) ** large(i), 5_16 ** large(i), 1.0000001d0 ** large(i), &
      cmplx(0.6, 0.8) ** large(i)
  end do
  print *, [(selected_int_kind(n), n = -2, 42)]
  do n = -1, 40, 3
    print *, selected_real_kind(n), selected_real_kind(n, 300), selected_real_kind(n, 6000), &
      selected_real_kind(r=n * 200), selected_real_kind(p=n, r=n, radix=2), &
      selected_real_kind(p=n, r=n, radix=10)
  end do
  print *, [(selected_char_kind(names(i)), i = 1, 5)]
  do n = -20, 20
    print *, ishftc(123456789, n, 20), ishftc(-5_8, n, 20 + abs(n)), ishftc(77_16, n * 3, 61), &
      ishftc(123456789, n)
  end do
  call sizes(reshape([(i, i = 1, 24)], [4, 3, 2]))
contains
  subroutine sizes(a)
    integer, intent(in) :: a(:, :, :)
    integer :: d
    print *, size(a), [(size(a, d), d = 1, 3)], size(a(3:1:-2, :, 2)), size(a, kind=8)
  end subroutine
end program
