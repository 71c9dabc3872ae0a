! What -std=f2003 refuses as the program runs: G0, bits of REAL items, exponential fields of width 0.
! flags: -std=f2003 -w
program older_standard
    implicit none
    call try('(g0)')
    call try('(z8)')
    call try('(e0.2)')
    call try('(es0.2)')
    call try('(f0.2)')
    call try('(g9.2)')
contains
    subroutine try(form)
        character(*), intent(in) :: form
        character(20) :: text
        integer :: ios
        text = ''
        write (text, form, iostat=ios) 3.0
        print *, form, ios, text
    end subroutine
end program
