! G, EN, ES and list-directed output over all magnitudes; widths and digits that just fit.
program g_editing
    implicit none
    integer :: i, k, d
    real(4) :: r4
    real(8) :: r8
    real(10) :: r10
    real(16) :: r16
    character(40) :: form
    real(8) :: edges(12) = [0.1d0, 0.095d0, 0.0995d0, 0.99995d0, 9.9995d0, 99.9995d0, 999.95d0, &
                            9999.5d0, 99995d0, 0.5d0, 2.5d0, 0d0]
    do i = -12, 12
        r4 = 1.2345678*10.0**i
        r8 = -9.99999999999d0*10d0**i
        r10 = 1.5_10*10.0_10**i
        r16 = 7.77_16*10.0_16**i
        print '(2G12.4,2G20.10,G10.3E4)', r4, r8, r10, r16, r8
        print '(2EN12.3,2ES14.5,EN16.2E3)', r4, r8, r10, r16, r8
        print '(2F14.4,2F22.10,F0.3)', r4, r8, r10, r16, r8
        print '(G0,1X,G0,1X,G0,1X,G0,1X,G0.3)', r4, r8, r10, r16, r8
        print *, r4, r8
        print *, r10, r16
        print *, cmplx(r4, -r4), cmplx(r8, r8, 8)
    end do
    do i = 1, 12
        do d = 1, 6
            write (form, '("(G",I0,".",I0,",2P,G14.",I0,",F",I0,".",I0,")")') d + 8, d, d, d + 4, d
            print form, edges(i), -edges(i), edges(i)
        end do
        do k = -2, 4
            write (form, '("(",I0,"P,E12.4,D12.3,F12.4)")') k
            print form, edges(i), -edges(i), edges(i)
        end do
    end do
    print '(5G8.2)', 1, .true., 'text', 1.0, (1.0, 2.0)
    print '(*(G0,:,", "))', 1, .true., 'text', 1.5, (1.0, 2.0), 2_8, 3_1
    print '(A,*(" <",A,">"))', 'a group without a limit opens once more', 'a', 'b'
    print '(I0,*(2(" (",I0,")")))', 1, 2, 3
    print '(*(" one"/I0))', 4, 5
    print '(A,1X,A)', 'an item of no characters takes what was moved to', '', 'moves alone', ''
    print '(A,T10,A,TL3,A)', 'x', '', 'y', 'z', '', ''
    print '(A,TL2,A,3X,:,A)', 'three', '', '', 'xyz', ''
    print '(3(2X,A),"|")', 'a', '', ''
    print '(A,3X,"")', 'an empty text, too'
    print '(3(F5.1,F4.0,F3.2,F0.0))', 0.0, -0.0, 0.04, -0.04, 0.5, 1.5, 0.99, 0.999, 9.99, 99.99
    print '(6I5)', 99999, -9999, -99999, 100000, 0, -0
    print '(I0,1X,I0.5,1X,I5.0,"|",I3.3,I7.6,I4.4)', -17, 17, 0, 5, -5, -123
    print '(B0,1X,B8.8,1X,O0,1X,O12,1X,Z0,1X,Z8,1X,Z8.8,1X,Z2)', 5, 5, 64, -1, 255, -1, 10, 4096
    print '(4Z20)', 1.0, 1d0, .true., 'ab'
    print '(Z40)', 1.0_16
    r8 = huge(r8)
    print '(G0,1X,ES12.3E2,1X,ES12.3E3,1X,E20.10,1X,F0.1)', r8, r8, r8, tiny(r8), -1/r8
    r8 = 0
    print '(F8.2,E10.2,G10.2,F3.1,F2.1,F4.1,G0)', 1/r8, -1/r8, r8/r8, 1/r8, -1/r8, -1/r8, r8/r8
    print *, 1/r8, -1/r8, r8/r8, 1/real(r8), cmplx(1/r8, r8/r8)
end program
