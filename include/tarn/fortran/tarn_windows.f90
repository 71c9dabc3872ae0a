! Windows, for Fortran programs: format windows, text windows, what call-backs ask.
!
! Arguments are default INTEGERs, handles included, and REAL(8), unless a line says otherwise. A
! procedure that is handed in is an INTEGER FUNCTION without arguments; its result tells what happens
! next: 0 closes the window, 1 brings its controls up to date with the variables, 2 does nothing, a
! negative number closes the window and becomes (without its sign) the result of winio@.
!
! A variable that a control shows must live as long as the window: give it SAVE, put it into a
! module, or keep the window within the routine that owns it; and give it TARGET or VOLATILE where
! a call-back changes it behind the optimiser's back.
module tarn_windows
  implicit none
  public

  ! integer function winio@(format, ...): adds to a window, or begins one; without a trailing & the
  ! window opens, and the result is the value with which it was closed. The format codes and what
  ! they take are listed in tarn/winio.h. tarnfc notes what every call passes: a wrong type, or a
  ! constant or an expression where a variable is bound, is reported by argument number.
  integer, external :: winio@
  ! integer function window_printf@(...) takes the same and appends to the last text window.

  interface

    ! The program has changed a variable: what shows it follows. (Any variable.)
    subroutine window_update@(variable)
      !GCC$ attributes no_arg_check :: variable
      type(*) :: variable
    end subroutine
    ! The same, with values outside their limits shown as they are.
    subroutine control_update@(variable)
      !GCC$ attributes no_arg_check :: variable
      type(*) :: variable
    end subroutine

    ! ---- What a call-back can ask -----------------------------------------------------------
    ! By name, in upper or lower case: 'CALL_BACK_REASON', 'KEYBOARD_KEY', 'SCREEN_WIDTH' ...
    integer(8) function quillpan_info@(name)
      character(*), intent(in) :: name
    end function
    character(256) function quillpan_string@(name)
      character(*), intent(in) :: name
    end function
    real(8) function quillpan_float@(name)
      character(*), intent(in) :: name
    end function
    subroutine set_quillpan_info@(name, value)
      character(*), intent(in) :: name
      integer, intent(in) :: value
    end subroutine
    subroutine set_quillpan_string@(name, text)
      character(*), intent(in) :: name, text
    end subroutine
    subroutine set_quillpan_float@(name, value)
      character(*), intent(in) :: name
      real(8), intent(in) :: value
    end subroutine
    ! One option word: 'utf8', 'undef', 'old_resize' ...; a leading _ turns it off.
    subroutine quillpan_option@(word)
      character(*), intent(in) :: word
    end subroutine
    subroutine get_mouse_info@(x, y, flags)
      integer, intent(out) :: x, y, flags
    end subroutine

    ! ---- Windows, waiting, timers -----------------------------------------------------------
    ! Lets the windows live: in long computations.
    subroutine temporary_yield@()
    end subroutine
    ! 0 until the program is told to end, 1 what is waiting, 3 waits for something and does it.
    subroutine yield_program_control@(mode)
      integer, intent(in) :: mode
    end subroutine
    ! Until the control variable of a %lw window is no longer negative.
    subroutine wait_for_window_to_close@(variable)
      integer :: variable
    end subroutine
    subroutine close_all_windows@()
    end subroutine
    ! Sleeps while windows live.
    subroutine sleep@(seconds)
      real, intent(in) :: seconds
    end subroutine
    subroutine set_timer@(window, seconds, function)
      integer, intent(in) :: window
      real(8), intent(in) :: seconds
      integer, external :: function
    end subroutine
    subroutine kill_timer@(window, function)
      integer, intent(in) :: window
      integer, external :: function
    end subroutine
    subroutine change_timer_interval@(window, seconds)
      integer, intent(in) :: window
      real(8), intent(in) :: seconds
    end subroutine
    ! Lets buttons work while a call-back runs.
    subroutine permit_another_callback@()
    end subroutine
    subroutine permit_callback_in_window@(window)
      integer, intent(in) :: window
    end subroutine

    ! ---- Settings before the windows --------------------------------------------------------
    subroutine winstyle@(format)
      character(*), intent(in) :: format
    end subroutine
    subroutine winclass@(format)
      character(*), intent(in) :: format
    end subroutine
    subroutine winop@(options)
      character(*), intent(in) :: options
    end subroutine
    ! Texts of windows and controls are UTF-8 (1) or in the code page 1252 (0). In a UTF-8 locale
    ! they are UTF-8 from the start.
    subroutine enable_utf8@(on)
      integer, intent(in) :: on
    end subroutine
    subroutine set_max_dialog_size@(width, height)
      integer, intent(in) :: width, height
    end subroutine
    subroutine set_old_resize_mechanism@()
    end subroutine

    ! ---- Controls, keys, menus --------------------------------------------------------------
    subroutine set_integer_limits@(control, low, high)
      integer, intent(in) :: control, low, high
    end subroutine
    subroutine set_float_limits@(control, low, high)
      integer, intent(in) :: control
      real(8), intent(in) :: low, high
    end subroutine
    ! The new step of a box's arrows; the result is the old one.
    real(8) function set_increment@(control, step)
      integer, intent(in) :: control
      real(8), intent(in) :: step
    end function
    subroutine add_accelerator@(window, key, function)
      integer, intent(in) :: window
      character(*), intent(in) :: key
      integer, external :: function
    end subroutine
    subroutine remove_accelerator@(window, key)
      integer, intent(in) :: window
      character(*), intent(in) :: key
    end subroutine
    subroutine send_accelerator@(key)
      character(*), intent(in) :: key
    end subroutine
    ! The item, for remove_menu_item@. grey is 0 while the item is grey, check while it isn't checked.
    integer function add_menu_item@(menu, text, grey, check, function)
      integer, intent(in) :: menu
      character(*), intent(in) :: text
      integer :: grey, check
      integer, external :: function
    end function
    subroutine remove_menu_item@(item)
      integer, intent(in) :: item
    end subroutine
    ! The next key of the keyboard queue: the first one waits, the second gives 0 for none.
    integer function get_wkey@()
    end function
    integer function get_wkey1@()
    end function

    ! ---- Text windows -----------------------------------------------------------------------
    ! From here on PRINT, WRITE (*, ...) and READ (*, ...) use a text window, "Output". It stays at
    ! the program's end until it is closed.
    subroutine set_windows_mode@()
    end subroutine
    ! A window at a place on the screen, with its outer size; 0 when it can't be made.
    integer function create_window@(title, x, y, width, height)
      character(*), intent(in) :: title
      integer, intent(in) :: x, y, width, height
    end function
    ! WRITE and READ of the unit go to the text window from here on.
    subroutine open_to_window@(unit, window)
      integer, intent(in) :: unit, window
    end subroutine
    subroutine clear_window@(window)
      integer, intent(in) :: window
    end subroutine
    subroutine destroy_window@(window)
      integer, intent(in) :: window
    end subroutine
    ! How many lines a text window keeps, at least 50.
    subroutine set_max_lines@(window, lines)
      integer, intent(in) :: window, lines
    end subroutine

  end interface
end module tarn_windows
