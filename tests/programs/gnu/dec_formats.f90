! What -fdec adds: edit descriptors without widths, exponents without digits, carriage control.
! flags: -fdec -w
program dec_formats
    implicit none
    integer(1) :: i1 = 5
    integer(2) :: i2 = -5
    integer(4) :: i4 = 5
    integer(8) :: i8 = -5
    real(4) :: r4 = 4.18
    real(8) :: r8 = 4.18d0
    character(20) :: s
    integer :: ios
    write (*, '(a,i,a)') ':', i1, ':', ':', i2, ':', ':', i4, ':', ':', i8, ':'
    write (*, '(a,z,a)') ':', i1, ':', ':', i4, ':', ':', i8, ':'
    write (*, '(a,f,a)') ':', r4, ':', ':', r8, ':'
    write (*, '(a,e,a)') ':', r4, ':', ':', r8, ':'
    write (*, '(a,g,a)') ':', r4, ':', ':', r8, ':', ':', i4, ':'
    write (*, '(a,2i,a,l,a)') ':', i4, i4, ':', .true., ':'
    write (*, '(a,i.3,a)', iostat=ios) ':', i4, ':'
    print *, ios
    s = '         123    45'
    read (s, '(i,i)') i4, i2
    print *, i4, i2
    s = '1e    2d+  3e-  4q '
    read (s, '(f5.0,f5.0)') r4, r8
    print *, r4, r8
    read (s(11:), *) r4, r8
    print *, r4, r8
    call paper('list')
    call paper('fortran')
    call paper('none')
contains
    subroutine paper(control)
        character(*), intent(in) :: control
        open (10, file='paper.'//control, carriagecontrol=control)
        write (10, '(a)') '+over', '-one', '0two', '1page', '$prompt', char(0)//'goes on', ' plain'
        write (10, '(a,/,a)') '0a', '+b'
        write (10, '(a,$,/,a)') '0first', '+second'
        close (10)
    end subroutine
end program
