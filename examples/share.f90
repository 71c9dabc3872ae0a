! Shares a sum among people; with nobody there it fails, and its window says where.
module sharing
    use tarn
    implicit none
    integer :: total = 1250, people = 0, each = 0
contains
    integer function share()
        each = part_of(total, people)
        call window_update@(each)
        share = 1
    end function
    integer function part_of(amount, heads)
        integer, intent(in) :: amount, heads
        part_of = amount / heads
    end function
end module

program fair_share
    use sharing
    implicit none
    integer :: i
    i = winio@('%ca[Fair share]%sp&', 200, 150)
    i = winio@('Amount%ta%8rd%nlPeople%ta%8rd%nl&', total, people)
    i = winio@('Each gets%ta%8rd%2nl&', each)
    i = winio@('%`^8bt[&Share]  %8bt[Close]', share)
end program
