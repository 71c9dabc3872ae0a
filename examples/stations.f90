! Unformatted files: records of any mixture of types for another machine's byte order, a record far
! behind all others, and a file that was cut short on its way.
program stations
  implicit none
  integer :: unit, i, ios, facts(13)
  integer(8) :: bytes
  character(16) :: name
  character(120) :: message
  real(8) :: day(24), total
  integer :: hours

  ! One record a station; the file is for a machine with the high byte first.
  open (newunit=unit, file='stations.dat', form='unformatted', convert='big_endian', status='replace')
  write (unit) 'Jungfraujoch    ', 24, [(-14.0d0 + 0.5d0 * i, i=1, 24)]
  write (unit) 'Lugano          ', 24, [(9.0d0 + 0.75d0 * min(i, 24 - i), i=1, 24)]
  write (unit) 'Pilatus         ', 12, [(-8.0d0 - 0.25d0 * i, i=1, 12)]
  rewind (unit)
  do
    ! The items of a record that nobody reads are passed over.
    read (unit, iostat=ios, iomsg=message) name, hours, day(1)
    if (ios /= 0) exit
    backspace (unit)
    read (unit) name, hours, day(:hours)
    total = sum(day(:hours))
    print '(a,i3,a,f7.2)', name, hours, ' hours, mean', total / hours
  end do
  close (unit)

  ! Direct access: a record a day. Record numbers have 64 bits, and what lies between takes no disk.
  open (newunit=unit, file='days.dat', form='unformatted', access='direct', recl=8 * 24, status='replace')
  write (unit, rec=3000000000_8) day
  write (unit, rec=1) day + 1
  read (unit, rec=3000000000_8) day
  inquire (unit, size=bytes)
  flush (unit)
  call stat('days.dat', facts)
  print '(a,i0,a,i0,a)', 'days.dat has ', bytes / 10**9, ' GB, and takes ', facts(13) / 2, ' KiB of the disk'
  close (unit, status='delete')

  ! The last record of a copy is cut short.
  call execute_command_line('head -c 500 stations.dat > short.dat')
  open (newunit=unit, file='short.dat', form='unformatted', convert='big_endian')
  do
    read (unit, iostat=ios, iomsg=message) name, hours, day(:12)
    if (ios /= 0) exit
    print '(2a)', 'read ', name
  end do
  print '(a)', trim(message)
end program stations
