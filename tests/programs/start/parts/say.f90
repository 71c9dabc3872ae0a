subroutine say(n)
  integer, intent(in) :: n
  write (*, '(a,i0)') 'say ', n
  write (10, '(a,i0)') 'kept ', n
end subroutine
subroutine stop_program()
  stop 7
end subroutine
