! Files that the user chooses: the actions, and the dialog of %cd.
module file_state
  use tarn
  implicit none
  character(200) :: name = ' '
contains
  subroutine show(who)
    character(*), intent(in) :: who
    integer :: slash
    slash = index(name, '/', back=.true.)
    print '(5a, i0)', who, ' ', trim(name(slash + 1:)), ' ', &
      trim(quillpan_string@('CALL_BACK_REASON')) // ' ', &
      quillpan_info@('FILTER_ITEM_SELECTED')
  end subroutine
  integer function loaded()
    call show('loaded')
    loaded = 2
  end function
  integer function saved()
    call show('saved')
    saved = 2
  end function
  integer function forget()
    name = ' '
    forget = 2
  end function
end module

program files
  use tarn
  use file_state
  implicit none
  integer :: i
  character(300) :: chosen = ' '
  character(12) :: short = ' '
  character(4) :: tiny = ' '
  call execute_command_line('mkdir -p data/inner && touch data/one.dat data/two.dat data/t.txt')
  i = winio@('%ca[Files]%ft[Data][*.dat]%ft[All][*]%fs[data/*.dat]&')
  i = winio@('%^bt[Load]%^bt[Save]%^bt[Forget]&', 'FILE_OPENR[Which data?]', name, loaded, &
             'FILE_OPENW', name, saved, forget)
  i = winio@('%bt[Done]')
  print '(a, i0)', 'closed ', i
  i = winio@('%cd[saving,title=Report,filter=''Reports (*.rep)'',initialdir,file,shortfile]', &
             'data', chosen, short)
  print '(a, i0, 4a)', 'report ', i, ' ', trim(short), ' ', chosen(len_trim(chosen) - 9:len_trim(chosen))
  i = winio@('%cd[file]', tiny)
  print '(a, i0, 3a, z0)', 'tiny ', i, ' [', tiny, '] ', quillpan_info@('EXTENDED_ERROR')
  i = winio@('%cd[file]', chosen)
  print '(a, i0, a, i0)', 'cancelled ', i, ' ', quillpan_info@('EXTENDED_ERROR')
end program
