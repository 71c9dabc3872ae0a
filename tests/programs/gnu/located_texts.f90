! MINLOC and MAXLOC of texts, with masks, dimensions and BACK=, between variables that a
! callee must leave alone.
! flags: -O1
! entries: _gfortran_m?(?:min|max)loc\d_
program located_texts
    implicit none
    integer :: before, after(2), i1(6)
    character(2) :: c(9), c2(3,3)
    integer :: d(3), e(3)
    integer(8) :: wide(3)
    i1 = [1, 2, 3, 1, 2, 3]
    before = minloc(i1, dim=1, back=.true.)
    c = ['aa', 'bb', 'aa', 'cc', 'bb', 'cc', 'aa', 'bb', 'aa']
    c2 = reshape(c, [3, 3])
    d = minloc(c2, dim=2, mask=c2 > 'aa', back=.true.)
    e = maxloc(c2, dim=2, mask=c2 < 'cc', back=.true.)
    wide = maxloc(c2, dim=1, back=.true.)
    after = maxloc(c2, mask=c2 < 'cc')
    print *, before, after, d, e, wide
    print *, minloc(c2, back=.true.)
end program
