! Files that nobody named: fort.N, scratch files, units 0, 5 and 6, files opened twice.
! stderr
program default_files
    implicit none
    integer :: i, ios, n
    logical :: exists, named
    character(80) :: name, text
    write (1, *) 'fort one'
    write (77, '(A)') 'fort 77'
    write (78) 1, 2, 3
    inquire (77, name=name, exist=exists, named=named)
    print *, trim(name(index(name, '/', .true.) + 1:)), exists, named
    rewind (77)
    read (77, '(A)') text
    print *, text
    close (77, status='delete')
    open (79)
    write (79, '(A)') 'opened without a name'
    close (79)
    open (80, form='unformatted')
    write (80) 'x'
    close (80)
    open (81, status='scratch')
    inquire (81, named=named)
    print *, 'scratch', named
    write (81, '(I5)') (i, i=1, 3)
    rewind (81)
    read (81, '(I5/I5)') i, n
    print *, i, n
    close (81)
    open (81, status='scratch', form='unformatted', access='direct', recl=4)
    write (81, rec=3) 5
    read (81, rec=3) i
    print *, i
    close (81)
    open (82, status='scratch')
    close (82, status='keep', iostat=ios)
    print *, 'keeping a scratch file', ios
    open (83, file='x.txt', status='scratch', iostat=ios)
    print *, 'a scratch file with a name', ios
    write (0, '(A)') 'to standard error'
    write (0, *) 'list', 1, 2.5
    write (6, '(A)') 'to unit 6'
    write (*, '(A)') 'to *'
    flush (6)
    flush (0)
    open (84, file='twice.txt')
    open (85, file='twice.txt', iostat=ios)
    print *, 'opened twice', ios
    write (84, '(A)') 'one'
    open (84, file='other.txt')
    write (84, '(A)') 'another file now'
    close (84)
    open (84, file='twice.txt', status='new', iostat=ios)
    print *, 'new, but there', ios > 0
    open (84, file='not there', status='old', iostat=ios)
    print *, 'old, but not there', ios
    open (84, file='twice.txt', status='replace')
    close (84)
    open (84, file='twice.txt', status='old')
    open (84, blank='zero', iostat=ios)
    print *, 'modes changed', ios
    open (84, form='unformatted', iostat=ios)
    print *, 'form changed', ios
    close (84)
    open (86, file='', iostat=ios)
    print *, 'an empty name', ios
    open (6, file='out.txt')
    print *, 'now in a file'
    write (6, *) 'and this'
    close (6)
    write (*, *) 'after the close'
    open (5, file='out.txt')
    read (*, '(A)') text
    write (0, *) text
    read (5, '(A)') text
    write (0, *) text
    read (*, '(A)', iostat=ios) text
    write (0, *) ios
end program
