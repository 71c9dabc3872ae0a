! What gfortran's run-time gets wrong, or the compiler asks of it in a wrong way: each result is
! compared with what the language says.
program better_than_the_peer
  implicit none
  real :: a(2,3) = reshape([1., 5., 5., 2., 5., 0.], [2,3])
  character(2) :: c(4) = ['ab', 'cd', 'cd', 'aa'], c2(1,4)
  integer :: v(4) = [9, 0, -5, -7], failed = 0
  real(8) :: r(4) = [1, 0, 0, 2]
  logical :: first_only(4) = [.true., .false., .false., .false.], yes = .true., no = .false.
  integer :: m(3,2) = reshape([1, 2, 3, 4, 5, 6], [3,2])
  integer(16) :: far = 2_16**71
  integer :: none(2,0), empty(0,3), one = 1, minus = -1
  c2(1,:) = c

  call same('kind', maxloc(a, kind=8), [2, 1])
  call same('kind, mask', maxloc(a, mask=a > 1, kind=8), [2, 1])
  call same('kind, dim', maxloc(a, dim=2, kind=16), [2, 1])
  call same('kind, text', maxloc(c, kind=8), [2])
  call same('kind, back, text', maxloc(c, mask=c > 'a', kind=8, back=yes), [3])
  call same('back under a mask', minloc(v, mask=first_only, back=yes), [1])
  call same('text under a scalar', [maxloc(c, dim=1, mask=yes, back=no)], [2])
  call same('text under a false scalar', [maxloc(c, dim=1, mask=no)], [0])
  call same('rows of texts under a scalar', maxloc(c2, dim=2, mask=yes), [2])
  call same('findloc in a section', findloc(r(2::2), 0d0, back=yes), [1])
  call same('spread of a negative count', shape(spread(v, 1, minus)), [0, 4])
  call same('shift of many bits', cshift([1, 2, 3, 4, 5], far), [4, 5, 1, 2, 3])
  call same('shifts of many bits', reshape(cshift(m, [far, -far]), [6]), [3, 1, 2, 5, 6, 4])
  call same('empty inner dimension', reshape(matmul(none, empty), [6]), [0, 0, 0, 0, 0, 0])
  call same('empty under a mask', [size(maxval(none, dim=one, mask=none > 0))], [0])
  if (failed > 0) error stop 1
contains
  subroutine same(what, got, expected)
    character(*), intent(in) :: what
    class(*), intent(in) :: got(:)
    integer, intent(in) :: expected(:)
    integer :: places(size(got))
    select type (got)
    type is (integer(4))
      places = got
    type is (integer(8))
      places = int(got)
    type is (integer(16))
      places = int(got)
    end select
    if (size(places) == size(expected)) then
      if (all(places == expected)) return
    end if
    print *, what, ':', places, 'instead of', expected
    failed = failed + 1
  end subroutine
end program
