! A loan calculator: four boxes bound to variables, and results that follow every keystroke.
module loan_terms
  implicit none
  real(8) :: amount = 180000d0, rate = 3.9d0
  integer :: years = 25
  real(8) :: payment = 0d0, interest = 0d0, total = 0d0
contains
  ! Runs at every change; 1 brings the boxes up to date.
  integer function compute()
    real(8) :: monthly
    integer :: months
    months = 12 * years
    monthly = rate / 1200d0
    if (monthly > 0d0) then
      payment = amount * monthly / (1d0 - (1d0 + monthly)**(-months))
    else
      payment = amount / months
    end if
    payment = nint(100d0 * payment) / 100d0
    total = payment * months
    interest = total - amount
    compute = 1
  end function
end module

program loan
  use tarn
  use loan_terms
  implicit none
  integer :: i
  i = compute()
  i = winio@('%ca[Loan calculator]%co[right_justify]&')
  i = winio@('%2tl&', 22, 40)
  i = winio@('%ob[named_l,bottom_exit][Loan]&')
  i = winio@('%fl&', 0d0, 1d8)
  i = winio@('Amount%ta%df%^14rf%ta%ws%nl&', 1000d0, amount, compute, 'in your currency')
  i = winio@('%fl&', 0d0, 100d0)
  i = winio@('Interest rate%ta%df%^14rf%ta%ws%nl&', 0.1d0, rate, compute, 'per cent a year')
  i = winio@('%il&', 1, 50)
  i = winio@('Duration%ta%dd%^14rd%ta%ws%cb&', 1, years, compute, 'years')
  i = winio@('%`il%`fl&')
  i = winio@('%ob[named_l,bottom_exit][Result]&')
  i = winio@('Monthly payment%ta%`14rf%nl&', payment)
  i = winio@('Interest paid%ta%`14rf%nl&', interest)
  i = winio@('Paid back in all%ta%`14rf%cb%nl&', total)
  i = winio@('%cn%`8bt[&Close]%es')
end program
