C flags: -ffixed-line-length-132
C     FORMATTED RECORDS IN THE MANNER OF FORTRAN 77: FORMAT STATEMENTS,
C     REVERSION, REPEATED GROUPS, HOLLERITH, SCALE FACTORS, TABS, SIGNS,
C     BLANKS IN FIELDS, FORMATS IN CHARACTER VARIABLES AND ARRAYS.
      PROGRAM FORMTS
      INTEGER I, J, K, IVEC(12), IOS
      REAL R, RVEC(6)
      DOUBLE PRECISION D
      COMPLEX Z
      LOGICAL L
      CHARACTER*8 C, FMTS(3)
      CHARACTER*40 FMT
      DATA IVEC /1, -2, 3, -4, 5, -6, 7, -8, 9, -10, 11, -12/
      DATA RVEC /1.5, -0.25, 1234.5, 1E-5, -9.99995E7, 0.0/
      D = 3.14159265358979D0
      Z = (1.25, -3.75)
      L = .TRUE.
      C = 'ABCDEFGH'
      OPEN (7, FILE='FORMTS.DAT')
      WRITE (7, 10) IVEC
   10 FORMAT (1X, 12I6)
      WRITE (7, 20) IVEC
   20 FORMAT (' ', I4, 2(I5, 1X), '/', I3.2)
      WRITE (7, 30) (IVEC(I), RVEC(I), I = 1, 6)
   30 FORMAT (5H TEXT, (I4, F12.4))
      WRITE (7, 40) IVEC
   40 FORMAT (I3, (2(I4), (I5)))
      WRITE (7, 50) RVEC
   50 FORMAT (3(F10.3, E12.4) / 2(1PE12.4, 0PF10.3) / G12.5, G10.3)
      WRITE (7, 60) RVEC, D
   60 FORMAT (1P, 2E14.6, -2P, F10.2, 0P, 2G14.6, 2P, F9.1, 1X, D22.14)
      WRITE (7, 70) (RVEC(I), I = 1, 4)
   70 FORMAT (SP, F8.2, SS, F8.2, S, F8.2, SP, F5.0)
      WRITE (7, 80) Z, L, C
   80 FORMAT (2F8.3, L3, A4, T2, '[', T40, ']', TL6, '<', TR2, '>')
      WRITE (7, 90) C, C, C
   90 FORMAT (A, A10, A3)
      WRITE (7, 100) 5, -10
  100 FORMAT (10X, 'NO VALUES BEYOND HERE', :, 2I5)
      WRITE (7, 110)
  110 FORMAT (1X, 'A''B', 3H'C', //, ' TWO RECORDS ON')
      WRITE (7, 120) 1, 2, 3
  120 FORMAT (I2, :, ' AND', ' THEN')
      WRITE (7, 130) 9999, -999, 0, 0
  130 FORMAT (I3, I3, I4.0, I4.3)
      FMT = '(1X, 3(I3, '','')) AND MORE'
      WRITE (7, FMT) 1, 2, 3, 4
      FMTS(1) = '(1X,'
      FMTS(2) = '2(I5,'
      FMTS(3) = 'F6.2))'
      WRITE (7, FMTS) 1, 1.5, 2, 2.5, 3, 3.5
      REWIND 7
      READ (7, 200) (IVEC(I), I = 12, 1, -1)
  200 FORMAT (1X, 12I6)
      WRITE (*, *) IVEC
      READ (7, 210) I, J, K
  210 FORMAT (1X, I4, 2(I5, 1X))
      WRITE (*, *) I, J, K
      READ (7, 220, IOSTAT=IOS) I, C, J
  220 FORMAT (T3, I3, TL3, A3, T12, I4)
      WRITE (*, *) I, C, J, IOS
      CLOSE (7)
C     INPUT FIELDS.
      OPEN (8, FILE='FIELDS.DAT')
      WRITE (8, '(A)') '1 2 3 4 5 6 7 8 ', '  12  34-567+890', '12345678        ',
     1 '1.5E2   1.5+2   ', '15      -15     ', ' .5D1  5.       ', 'T.FALSE. .T f   ',
     2 '        1 2     '
      REWIND 8
      READ (8, '(8I2)') (IVEC(I), I = 1, 8)
      WRITE (*, *) (IVEC(I), I = 1, 8)
      READ (8, '(4I4)') (IVEC(I), I = 1, 4)
      WRITE (*, *) (IVEC(I), I = 1, 4)
      READ (8, '(F8.3, F8.3)') R, RVEC(1)
      WRITE (*, *) R, RVEC(1)
      READ (8, '(2F8.3)') R, RVEC(1)
      WRITE (*, *) R, RVEC(1)
      READ (8, '(2PF8.3, -1PF8.3)') R, RVEC(1)
      WRITE (*, *) R, RVEC(1)
      READ (8, '(BZ, F7.2, BN, E9.1)') R, RVEC(1)
      WRITE (*, *) R, RVEC(1)
      READ (8, '(L1, L7, L3, L3)') L, L, L, L
      WRITE (*, *) L
      READ (8, '(I8, BZ, I4)') I, J
      WRITE (*, *) I, J
      BACKSPACE 8
      READ (8, '(BN, I8, I4)') I, J
      WRITE (*, *) I, J
      READ (8, 300, END=400) I
  300 FORMAT (I5)
      WRITE (*, *) 'NOT REACHED'
  400 WRITE (*, *) 'END OF FILE'
      CLOSE (8)
      END
