! DECIMAL=, ROUND=, SIGN=, BLANK=, PAD=, DELIM= of the connection, of the statement, of the format.
program modes
    implicit none
    integer :: i, j, ios
    real(8) :: x, y, values(5) = [2.5d0, -2.5d0, 3.5d0, 0.125d0, -1.05d0]
    character(17) :: rounds(6) = [character(17) :: 'up', 'down', 'zero', 'nearest', 'compatible', &
                                 'processor_defined']
    character(40) :: text
    open (10, file='comma.txt', decimal='comma', sign='plus', delim='quote', round='up')
    write (10, *) 1.5, 2.5d0, (3.5, -4.5), 'text "with" quotes', .true.
    write (10, '(F8.3,E12.4,G14.5,I5)') 1.5, 2.5d0, 3.5, 7
    write (10, '(DP,F8.3,DC,F8.3)') 1.5, 1.5
    write (10, '(F8.3)', decimal='point') 1.5
    write (10, '(SS,F8.3,SP,F8.3,S,F8.3)') 1.5, 1.5, 1.5
    write (10, *, sign='suppress', delim='apostrophe') 1, 'it''s'
    write (10, *, delim='none') 'bare "text"'
    write (10, '(6F6.1)') 0.25d0, -0.25d0, 0.35d0, -0.35d0, 0.05d0, -0.05d0
    rewind (10)
    read (10, *) x, y
    print *, x, y
    read (10, '(F8.3,E12.4)') x, y
    print *, x, y
    read (10, '(DP,F8.3,DC,F8.3)') x, y
    print *, x, y
    read (10, *, decimal='point') x
    print *, x
    close (10)

    do i = 1, 6
        write (text, '(A)') rounds(i)
        write (*, '(A,5F6.1,5F6.0)', round=trim(rounds(i))) rounds(i), values, values
        write (*, '(A,5ES9.1)', round=trim(rounds(i))) rounds(i), values
    end do
    write (*, '(RU,F5.1,RD,F5.1,RZ,F5.1,RN,F5.1,RC,F5.1,RP,F5.1)') (0.25d0, i=1, 6)
    write (*, '(RU,F5.1,RD,F5.1,RZ,F5.1,RN,F5.1,RC,F5.1,RP,F5.1)') (-0.25d0, i=1, 6)
    do i = 1, 6
        text = '0.1 1.00000000000000011102230246251565'
        read (text, *, round=trim(rounds(i))) x, y
        print '(A,2Z17)', rounds(i), x, y
        text = '-.1 9007199254740993 '
        read (text, '(F3.1,F17.0)', round=trim(rounds(i))) x, y
        print '(A,2Z17)', rounds(i), x, y
    end do

    open (11, file='blanks.txt', blank='zero')
    write (11, '(A)') '1 2 3', '1 2 3', '1 2 3', '1 2 3', '1.5 e2 '
    rewind (11)
    read (11, '(I5)') i
    print *, i
    read (11, '(BN,I5)') i
    print *, i
    read (11, '(I5)', blank='null') i
    print *, i
    read (11, '(BN,I2,BZ,I3)') i, j
    print *, i, j
    read (11, '(F7.2)', iostat=ios) x
    print *, x, ios
    close (11)

    open (12, file='delim.txt', delim='apostrophe')
    write (12, *) 'plain', 'it''s', "say ""x"""
    write (12, *) 'a', 1, 'b', 'c'
    close (12)
    open (12, file='delim.txt', delim='quote')
    read (12, *) text
    print *, text
    close (12)
    write (*, *, delim='quote') 'in quotes', 1, 'x'
    write (*, '(A)') 'formatted keeps none'
    write (*, *) 'none', 'at all', 1, 'x'
    open (6, sign='plus')
    write (*, '(I4)') 5
    write (*, *) 5, 1.5
    open (6, sign='suppress')
    write (*, '(I4)') 5
end program
