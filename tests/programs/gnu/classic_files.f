C flags: -ffixed-line-length-132
C     FILES IN THE MANNER OF FORTRAN 77: SEQUENTIAL AND DIRECT, FORMATTED
C     AND NOT, WITH END=, ERR=, IOSTAT=, AND THE AUXILIARY STATEMENTS.
      PROGRAM FILES
      INTEGER I, J, N, IOS, NREC
      REAL A(10), B(10)
      DOUBLE PRECISION D(5)
      COMPLEX Z(3)
      LOGICAL L(4), EX, OD
      CHARACTER*10 C(3), S
      DATA A /1., 2., 3., 4., 5., 6., 7., 8., 9., 10./
      DATA D /1D0, 2D-10, 3D10, -4D100, 5D-100/
      DATA Z /(1., 2.), (3., 4.), (5., 6.)/
      DATA L /.TRUE., .FALSE., .TRUE., .FALSE./
      DATA C /'FIRST', 'SECOND', 'THIRD'/
      OPEN (UNIT=9, FILE='SEQ.DAT', FORM='UNFORMATTED', STATUS='UNKNOWN')
      DO 10 I = 1, 20
   10 WRITE (9) I, (A(J), J = 1, MOD(I, 10) + 1)
      WRITE (9) D, Z, L, C
      ENDFILE 9
      REWIND 9
      N = 0
   20 READ (9, END=30, ERR=40) I
      N = N + I
      GO TO 20
   30 WRITE (*, *) 'SUM', N
      GO TO 50
   40 WRITE (*, *) 'ERROR'
   50 BACKSPACE 9
      BACKSPACE 9
      READ (9) D, Z, L, C
      WRITE (*, *) D, Z
      WRITE (*, *) L, C
      BACKSPACE 9
      BACKSPACE 9
      READ (9) I, B(1)
      WRITE (*, *) I, B(1)
      CLOSE (9, STATUS='KEEP')
      INQUIRE (FILE='SEQ.DAT', EXIST=EX, OPENED=OD)
      WRITE (*, *) EX, OD
      OPEN (9, FILE='DIR.DAT', ACCESS='DIRECT', RECL=80, FORM='FORMATTED')
      DO 60 I = 10, 1, -1
   60 WRITE (9, 70, REC=I) I, (A(J), J = 1, 5)
   70 FORMAT (I5, 5F10.3)
      DO 80 I = 1, 10, 3
      READ (9, 70, REC=I, ERR=90) N, (B(J), J = 1, 5)
   80 WRITE (*, *) N, B(5)
      INQUIRE (9, NEXTREC=NREC, RECL=N)
      WRITE (*, *) NREC, N
      READ (9, 70, REC=99, IOSTAT=IOS) N
      WRITE (*, *) IOS .GT. 0
   90 CLOSE (9, STATUS='DELETE')
      OPEN (9, FILE='SEQ.TXT')
      DO 100 I = 1, 5
  100 WRITE (9, '(A, I3)') 'LINE', I
      DO 110 I = 1, 3
  110 BACKSPACE 9
      READ (9, '(4X, I3)') N
      WRITE (*, *) N
      WRITE (9, '(A)') 'REPLACED'
      BACKSPACE 9
      READ (9, '(A)', END=120) S
      WRITE (*, *) S
      READ (9, '(A)', END=120) S
      WRITE (*, *) 'NOT REACHED'
  120 WRITE (*, *) 'END'
      REWIND 9
      READ (9, *) S, I
      WRITE (*, *) S, I
      READ (9, '(A4, BN, I3)', IOSTAT=IOS) S, I
      WRITE (*, *) S, I, IOS
      CLOSE (9)
C     INTERNAL FILES.
      WRITE (S, '(I5, F5.1)') 42, 1.5
      WRITE (*, *) S
      READ (S, '(I5, F5.1)') I, B(1)
      WRITE (*, *) I, B(1)
      WRITE (C, '(A, I2)') ('ROW', I, I = 1, 3)
      WRITE (*, *) C
      READ (C, '(3X, I2)') I, J, N
      WRITE (*, *) I, J, N
      READ (C(2)(4:), *, ERR=130, END=130) I
      WRITE (*, *) I
  130 READ (C(1), '(I3)', ERR=140) I
      WRITE (*, *) 'NOT REACHED'
  140 WRITE (*, *) 'BAD DIGITS'
      PAUSE_LIKE = 1
      WRITE (*, 150) PAUSE_LIKE
  150 FORMAT (' ', F4.1, $)
      WRITE (*, *)
      END
