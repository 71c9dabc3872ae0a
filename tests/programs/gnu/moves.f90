! What a format leaves at the end of a record: moves to the right, what stands behind the last item.
program moves
  implicit none
  character(40), parameter :: repeats(*) = [character(40) :: &
    '(*(1x,"<",a,">"))', '(*("[",:,a,"]"))', '(*(a,/))', '(*(2("<",a,">"),"."))', &
    '("x",*("u",(a,"v"),t9))', '(*(ss,"<",a,tl3,">"))', '(*("<",/,a,","))', '(*(a,:,", "))']
  character(1), parameter :: letters(5) = ['a', 'b', 'c', 'd', 'e']
  character(0) :: nothing
  character(4) :: narrow
  character(8) :: blanks = '+.25'
  character(12) :: move
  integer :: i, n, numbers(4), ios

  do i = 1, size(repeats)
    do n = 0, 5
      print repeats(i), letters(:n)
    end do
  end do
  ! Nothing at all is written where a move has led.
  print '(a,3x,a)', 'a', nothing
  print '(3x,"")'
  print '(t4,a,tl2,a)', nothing, nothing
  print '(3x,g0,2x,g0)', nothing, nothing
  write (narrow, '(9x,a)', iostat=ios) nothing
  print *, ios
  ! Moves at the end: not in a statement that advances.
  print '(a,tr3)', 'a', 'b'
  write (*, '(a,tr3)', advance='no') 'a', 'b'
  write (*, '(a,5x,/,a,t9,a)', advance='no') 'c', 'd', 'e'
  print '(a)', '|'

  ! The blanks behind a text in memory are passed by no move.
  do i = 4, 9
    write (move, '(a,i0,a)') '(', i, 'x,tl3,a)'
    read (blanks, move) narrow
    print '(3a)', '[', narrow, ']'
  end do

  ! Integers in a record that nobody wrote.
  open (10, file='holes.dat', access='direct', form='formatted', recl=12)
  write (10, '(a)', rec=3) 'three'
  numbers = -1
  read (10, '(i3,b3,o3,z3)', rec=2, iostat=ios) numbers
  print *, ios, numbers
  close (10)

  ! A field that is cut short by its record's end ends a READ that doesn't advance, slash or not.
  open (10, file='moves.txt')
  write (10, '(a)') '12', '3', '45', '6'
  rewind 10
  numbers = -1
  read (10, '(*(i2,/))', iostat=ios) numbers(:2)
  print *, ios, numbers
  rewind 10
  read (10, '(i2,/,1x,i2,/)', advance='no', iostat=ios) numbers(:2)
  print *, ios, numbers
  close (10)

  ! A stream that goes back over a record that isn't complete keeps what is behind it.
  open (10, file='moves.txt', access='stream', form='formatted')
  read (10, '(a)', pos=1) narrow
  write (10, '(a)', advance='no') 'X'
  rewind 10
  do i = 1, 5
    read (10, '(a)', iostat=ios) narrow
    print *, ios, narrow
  end do
  close (10)
end program
