! build: $FC $FLAGS $SRC/system_processes.f90 $LINK -o $PROGRAM
! build: $FC -fdefault-integer-8 $FLAGS $SRC/system_processes.f90 $LINK -o $PROGRAM.8
! run: TARN_A='some value' TARN_EMPTY= $PROGRAM
! run: TARN_A='some value' TARN_EMPTY= $PROGRAM.8 > out.txt
! entries: (?:get|system|execute|kill|signal|alarm|sleep|perror|hostnm)\w*
! stderr
! The environment, other programs, signals; units are written out before another program starts.
program system_processes
    implicit none
    integer :: n, status, code
    character(40) :: text
    character(5) :: short
    character(0) :: none
    external caught
    integer :: seen
    common /signals/ seen
    call environment()
    call commands()
    call identity()
    call signals()
contains
    subroutine environment()
        call get_environment_variable('TARN_A', text, n, status)
        print *, '[', text, ']', n, status
        call get_environment_variable('TARN_A', short, n, status)
        print *, '[', short, ']', n, status
        call get_environment_variable('TARN_A', none, n, status)
        print *, '[', none, ']', n, status
        call get_environment_variable('TARN_A', length=n, status=status)
        print *, n, status
        call get_environment_variable('TARN_NONE', text, n, status)
        print *, '[', text, ']', n, status
        call get_environment_variable('TARN_EMPTY', text, n, status)
        print *, '[', text, ']', n, status
        call get_environment_variable('TARN_A  ', text, n, status)
        print *, '[', text, ']', n, status
        call get_environment_variable('TARN_A  ', text, n, status, .false.)
        print *, '[', text, ']', n, status
        call get_environment_variable('  ', status=status)
        print *, status
        call getenv('TARN_A ', text)
        call getenv('TARN_NONE', short)
        print *, '[', text, '][', short, ']'
    end subroutine
    subroutine run(command, wait)
        character(*), intent(in) :: command
        logical, intent(in) :: wait
        code = -7
        status = -7
        text = 'as it was'
        call execute_command_line(command, wait, code, status, text)
        print *, command, code, status, ' ', text
    end subroutine
    subroutine commands()
        integer(4) :: narrow
        print *, 'before the shell'
        open (10, file='written.txt')
        write (10, *) 'to be seen'
        narrow = system('echo from the shell; cat written.txt; exit 3')
        print *, 'behind the shell', narrow
        write (10, *) 'more'
        close (10)
        call system('kill -9 $$', n)
        print *, iand(n, 127)
        call run('exit 5', .true.)
        call run('kill -9 $$', .true.)
        call run('no_such_command_of_all 2>/dev/null', .true.)
        call run('exit 126', .true.)
        call run('', .true.)
        call run('exit 3', .false.)
        call execute_command_line('cat written.txt')
        call execute_command_line('sleep 0.3; cat written.txt > copy.txt', wait=.false.)
        call execute_command_line('while test ! -s copy.txt; do sleep 0.1; done; sleep 0.1')
    end subroutine
    subroutine identity()
        integer(4) :: narrow
        print *, getpid() > 0, getuid() >= 0, getgid() >= 0
        narrow = hostnm(text)
        print *, narrow, text
        call hostnm(none, n)
        print *, n
        call getlog(text)
        print *, text
        open (10, file='no folder/file', status='old', iostat=n)
        call chdir('no folder', n)
        flush (6)
        call perror('it says  ')
        call chdir('no folder', n)
        call perror('')
    end subroutine
    subroutine signals()
        integer(4), parameter :: user_signal = 10, alarm_signal = 14
        integer(4) :: before
        n = kill(getpid(), 0)
        print *, n
        call kill(int(getpid()), 999, n)
        print *, n
        before = signal(user_signal, 1)
        before = signal(user_signal, 0) + 10*before
        print *, before, signal(999, 1)
        seen = 0
        call signal(user_signal, caught, before)
        print *, before
        call kill(int(getpid()), 10)
        print *, seen
        call alarm(100, caught, n)
        call alarm(1, caught, n)
        print *, n
        do while (seen < 2)
            call sleep(5)
        end do
        call alarm(0, 1, n)
        print *, n, seen
        call sleep(0)
    end subroutine
end program
subroutine caught()
    integer :: seen
    common /signals/ seen
    seen = seen + 1
end subroutine
