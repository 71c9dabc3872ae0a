program unformatted
  ! Unformatted files of every kind by the native rules: what the statements say and leave.
  implicit none
  integer :: i, k, ios, n
  integer(1) :: b
  integer(8) :: place
  integer, allocatable :: big(:), back(:)
  real(8) :: x(3), y(3)
  complex :: z
  character(300) :: text, line
  character(9) :: word
  type pair
    integer :: i
    real :: r
  end type
  type(pair) :: p

  ! Each form of record, with BACKSPACE to the start of each.
  open (10, file='u.bin', form='unformatted', status='replace')
  text = repeat('t', 300)
  do i = 238, 241
    write (10) text(1:i)
  end do
  write (10)
  write (10) 1, 2_8, .true., (3.0, 4.0), 'abc'
  big = [(i, i=1, 50000)]
  write (10) big(1:100), (big(i), i=101, 30000), big(30001:)
  write (10) big(50000:1:-7), 'tail'
  close (10)
  call frames('u.bin')
  open (10, file='u.bin', form='unformatted')
  do i = 238, 241
    line = '-'
    read (10) line(1:i)
    print *, i, line(i:i), verify(line(1:i), 't')
  end do
  read (10)
  read (10) i, place, b
  print *, i, place, b
  allocate (back(50000))
  back = 0
  read (10) back(1), back(2:40000), (back(i), i=40001, 50000)
  print *, all(back == big)
  read (10) back(1:7143), word(1:4)
  print *, back(1), back(7143), word(1:4)
  read (10, iostat=ios) i
  print *, 'end', ios
  read (10, iostat=ios) i
  print *, 'behind the end', ios
  backspace (10)
  do k = 1, 8
    backspace (10)
    read (10, iostat=ios) b
    backspace (10)
    print *, k, ios, b
  end do
  close (10)

  ! What a list may take of a record, and what a WRITE leaves behind itself.
  open (10, file='v.bin', form='unformatted', status='replace')
  write (10) 1, 2, 3
  write (10) 4, 5, 6
  write (10) 7, 8, 9
  rewind (10)
  read (10, iostat=ios) (i, k=1, 4)
  print *, 'too long', ios, i
  read (10) i
  print *, 'short list', i
  write (10) 10, 11
  rewind (10)
  do k = 1, 4
    read (10, iostat=ios) i
    print *, k, ios, i
  end do
  backspace (10)
  backspace (10)
  write (10) 12
  rewind (10)
  read (10) i, k
  read (10, iostat=ios) i, k
  print *, ios, i
  close (10)
  open (10, file='v.bin', form='unformatted', position='append')
  write (10) 'appended'
  rewind (10)
  do k = 1, 3
    read (10)
  end do
  read (10) word(1:8)
  print *, word(1:8)
  close (10)
  call frames('v.bin')

  ! Direct records: the gap, the rest of a record, its limits.
  open (11, file='d.bin', access='direct', recl=8, status='replace')
  write (11, rec=5) 5, 55
  write (11, rec=2) 2
  read (11, rec=1) i, k
  print '(2z10)', i, k
  read (11, rec=2) i, k
  print *, i, k
  read (11, rec=5) i, k
  print *, i, k
  read (11, rec=9, iostat=ios) i
  print *, 'behind', ios
  write (11, rec=6, iostat=ios) x
  print *, 'too long', ios
  write (11, rec=0, iostat=ios) i
  print *, 'no such number', ios
  read (11, iostat=ios) i
  print *, 'sequential', ios
  inquire (11, nextrec=n)
  print *, n
  close (11)
  call bytes('d.bin')
  open (11, file='d.bin', access='direct', recl=100000, status='replace')
  write (11, rec=2) big(1:25000)
  read (11, rec=2) back(1:10), back(11:20000), back(20001:25000)
  print *, all(back(1:25000) == big(1:25000))
  read (11, rec=1) i
  print '(z8)', i
  close (11, status='delete')

  ! Streams.
  open (12, file='s.bin', access='stream', status='replace')
  x = [1d0, 2d0, 3d0]
  p = pair(7, 8.0)
  write (12) x, p, 'end'
  inquire (12, pos=place)
  print *, place
  read (12, pos=9) y(1:2)
  print *, y(1:2)
  inquire (12, pos=place)
  print *, place
  write (12, pos=5) 99
  read (12, pos=1) i, k
  print *, k
  read (12, pos=33) word(1:3)
  print *, word(1:3)
  read (12, iostat=ios) i
  print *, ios
  write (12, pos=3)
  write (12) 'x'
  read (12, pos=3) word(1:1)
  print *, word(1:1)
  close (12)
  call bytes('s.bin')

  ! Nonsense.
  call broken([255, 200, 0, 0, 0, 1, 2, 3])
  call broken([3, 1, 2, 3, 4])
  call broken([3, 1, 2])
  call broken([240, 1, 2, 240])
  call broken([255, 255, 255, 255, 255, 1, 2, 3, 4, 5, 6, 7, 8, 9])
  call broken([254, 255, 255, 255, 255, 255, 255, 255, 255, 1, 2, 3, 4, 5, 6, 7, 8, 9])
  call broken([254, 4, 0, 0, 0, 0, 0, 0, 0, 65, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 254])
  call broken([255, 4, 0, 0, 0, 66, 0, 0, 0, 4, 0, 0, 0, 255])
  call broken([255, 4, 0])
contains
  ! The records of a file by their frames alone.
  subroutine frames(name)
    character(*) :: name
    integer(1) :: first
    integer :: length, at
    open (99, file=name, access='stream', action='read')
    at = 1
    do
      read (99, pos=at, iostat=ios) first
      if (ios /= 0) exit
      if (first == -1) then
        read (99) length
        print *, name, ' long', length
        at = at + length + 10
      else
        length = iand(int(first), 255)
        print *, name, ' short', length
        at = at + length + 2
      end if
    end do
    close (99)
  end subroutine
  subroutine bytes(name)
    character(*) :: name
    integer :: count
    inquire (file=name, size=count)
    open (99, file=name, access='stream', action='read')
    read (99) text(1:count)
    print '(20z3.2)', (ichar(text(i:i)), i=1, count)
    close (99)
  end subroutine
  subroutine broken(values)
    integer :: values(:), got
    open (99, file='b.bin', access='stream', status='replace')
    write (99) char(values)
    close (99)
    open (99, file='b.bin', form='unformatted')
    got = -1
    read (99, iostat=ios) got
    print *, 'broken', ios, got
    close (99, status='delete')
  end subroutine
end program
