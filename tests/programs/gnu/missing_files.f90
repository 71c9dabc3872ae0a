! Files that are missing, are folders, may not be written, have a name that can't be.
program missing_files
    implicit none
    integer :: ios
    character(300) :: message
    character(5000) :: long
    character(10) :: text
    logical :: opened
    message = 'untouched'
    open (10, file='not there', status='old', iostat=ios, iomsg=message)
    print *, ios, message /= 'untouched'
    open (10, file='not/there', iostat=ios)
    print *, ios
    open (10, file='not there', action='read', iostat=ios)
    print *, ios
    open (10, file='/sys/not there', iostat=ios) ! nobody may make a file there
    print *, ios
    open (10, file='.', iostat=ios)
    print *, ios
    open (10, file='..', action='write', iostat=ios)
    print *, ios
    open (10, file='/proc/version', action='write', iostat=ios)
    print *, 'proc write', ios /= 0
    long = repeat('n', 5000)
    open (10, file=long, iostat=ios)
    print *, ios
    open (10, file='a'//char(0)//'b', iostat=ios)
    print *, ios
    close (10, iostat=ios, status='delete')
    call execute_command_line('ln -s nowhere/at/all dangling; ln -s loop loop; : > plain')
    open (10, file='dangling', status='old', iostat=ios)
    print *, ios
    open (10, file='dangling', iostat=ios)
    print *, ios
    open (10, file='loop', iostat=ios)
    print *, ios
    open (10, file='plain/below', iostat=ios)
    print *, ios
    inquire (10, opened=opened)
    print *, opened
    call execute_command_line('rm dangling loop')
    open (10, file='plain', action='read')
    write (10, *, iostat=ios) 1
    print *, 'write to a file for reading', ios
    read (10, *, iostat=ios) text
    print *, 'empty', ios
    endfile (10, iostat=ios)
    print *, 'endfile of a file for reading', ios
    close (10)
    open (10, file='plain', action='write')
    read (10, *, iostat=ios) text
    print *, 'read from a file for writing', ios
    close (10)
    open (10, file='plain', access='direct', iostat=ios)
    print *, 'direct without a length', ios
    open (10, file='plain', access='direct', recl=len(trim(' ')), iostat=ios)
    print *, 'length 0', ios
    open (10, file='plain', access='direct', recl=-abs(ios), iostat=ios)
    print *, 'length -5', ios
    open (10, file='plain', access=trim('circular'), iostat=ios)
    print *, 'no such access', ios
    open (10, file='plain', form=trim('round'), iostat=ios)
    print *, 'no such form', ios
    open (10, file='plain', status=trim('odd'), iostat=ios)
    print *, 'no such status', ios
    open (10, file='plain', action=trim('play'), iostat=ios)
    print *, 'no such action', ios
    open (10, file='plain', position=trim('here'), iostat=ios)
    print *, 'no such position', ios
    open (10, file='plain', encoding=trim('morse'), iostat=ios)
    print *, 'no such encoding', ios
    open (10, file='plain', access='direct', recl=5, position='append', iostat=ios)
    print *, 'direct and append', ios
    open (10, file='plain', form='unformatted', blank='zero', iostat=ios)
    print *, 'unformatted and blank', ios
    open (10, file='plain')
    close (10, status=trim('maybe'), iostat=ios)
    print *, 'no such status', ios
    close (10)
    ios = 0
    open (10, file='really not there', status='old', err=20)
    print *, 'not reached'
20  print *, 'by the label'
    read (88, *, iostat=ios) text
    print *, 'read of an empty default file', ios
end program
