! A menu with grey and checked items, its keys, and what call-backs learn about it.
module menu_state
  use tarn
  implicit none
  integer :: can_save = 0, big = 0, saves = 0
contains
  subroutine note(who)
    character(*), intent(in) :: who
    print '(4a)', who, ' ', trim(quillpan_string@('CALL_BACK_REASON')), &
      ' [' // trim(quillpan_string@('CURRENT_MENU_ITEM')) // ']'
  end subroutine
  integer function edit()
    call note('edit')
    can_save = 1
    edit = 1
  end function
  integer function save_it()
    call note('save')
    saves = saves + 1
    can_save = 0
    save_it = 1
  end function
  integer function toggle()
    call note('big')
    big = 1 - big
    toggle = 1
  end function
  integer function key()
    call note('key')
    key = 1
  end function
end module

program menus
  use tarn
  use menu_state
  implicit none
  integer :: i
  i = winio@('%ca[Menus]%mn[&File[&Edit,~&Save^Ctrl+S,|,E&xit],&View[#&Big]]&', &
             edit, can_save, save_it, 'EXIT', big, toggle)
  i = winio@('%ac[F5]%ac[Ctrl+Shift+K]&', key, key)
  i = winio@('Some text')
  print '(a, 3i2)', 'end', saves, big, can_save
end program
