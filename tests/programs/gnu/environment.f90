! The switches that gfortran's programs take from the environment.
! run: $PROGRAM
! run: GFORTRAN_STDOUT_UNIT=8 GFORTRAN_STDERR_UNIT=9 GFORTRAN_STDIN_UNIT=7 $PROGRAM
! run: GFORTRAN_OPTIONAL_PLUS=y $PROGRAM
! run: GFORTRAN_OPTIONAL_PLUS=1 GFORTRAN_LIST_SEPARATOR=, $PROGRAM
! run: GFORTRAN_LIST_SEPARATOR="  ,  " $PROGRAM
! run: GFORTRAN_LIST_SEPARATOR="" $PROGRAM
! run: GFORTRAN_UNBUFFERED_ALL=y $PROGRAM
! run: GFORTRAN_UNBUFFERED_PRECONNECTED=y $PROGRAM
! run: GFORTRAN_CONVERT_UNIT="big_endian;native:20" $PROGRAM
! run: GFORTRAN_CONVERT_UNIT="swap:20-21,25" $PROGRAM
! run: GFORTRAN_CONVERT_UNIT="little_endian;big_endian:21" $PROGRAM
! run: GFORTRAN_FORMATTED_BUFFER_SIZE=20 GFORTRAN_UNFORMATTED_BUFFER_SIZE=4096 $PROGRAM
! run: GFORTRAN_SHOW_LOCUS=n $PROGRAM
! run: mkdir tmp; TMPDIR=$PWD/tmp $PROGRAM
! run: GFORTRAN_TMPDIR=/nowhere/at/all $PROGRAM
! stderr
program environment
    implicit none
    integer :: i, ios
    print *, 'print', 5, -5, 1.5, (1.0, 2.0)
    write (*, '(I4,F6.2,I4)') 5, 1.5, -5
    write (0, *) 'unit 0', 1, 2
    write (6, *) 'unit 6', 1, 2
    write (8, *) 'unit 8', 1, 2
    write (9, *) 'unit 9', 1, 2
    do i = 20, 25
        open (i, form='unformatted', access='sequential')
        write (i) i, 2.5d0, 'text'
        close (i)
    end do
    open (30, status='scratch', iostat=ios)
    write (30, *) 'scratch'
    close (30)
    open (31, file='with convert', form='unformatted', convert='big_endian')
    write (31) 1
    close (31)
end program
