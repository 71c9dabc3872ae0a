! Texts that array intrinsics allocate: the compiler sets no span in their descriptors.
program allocated_texts
    character(3) :: c(6) = ['abc','bcj','cjk','jkl','klm','lmn']
    character(3), allocatable :: cr(:)
    character(:), allocatable :: d(:)
    logical :: m(6) = [.true.,.false.,.true.,.false.,.true.,.true.]
    cr = pack(c, m, c)
    print *, cr
    cr = pack(c, m)
    print *, cr, size(cr)
    d = pack(c, m)
    print *, d, len(d)
    cr = cshift(c, 2)
    print *, cr
    cr = eoshift(c, 2, 'xyz')
    print *, cr
    cr = unpack(c, m, c)
    print *, cr
    cr = reshape(c, [3])
    print *, cr
    cr = c(6:1:-1)
    print *, cr(2:3)
    write (*, *) spread(cr, 1, 2)
    cr = [c(1:2), 'zzz']
    print *, cr
end program
