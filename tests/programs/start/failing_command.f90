!> args: command
!> status: 1
!> out:  printed before
!> err~: \*\*\* Error  381, EXECUTE_COMMAND_LINE: Invalid command line
!> run:
!> args: variable
!> status: 1
!> out:  printed before
!> err~: \*\*\* Error  381, GET_ENVIRONMENT_VARIABLE was given a name of no characters
! What system intrinsics do when they fail and the program doesn't ask.
program failing_command
  character(10) :: how
  integer :: n
  call get_command_argument(1, how)
  print *, 'printed before'
  if (how == 'command') then
    call execute_command_line('no_such_command_of_all 2>/dev/null', exitstat=n)
  else
    call get_environment_variable(how(1:0), how)
  end if
  print *, 'not reached'
end program
