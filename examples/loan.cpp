// The loan calculator in C++: `tarn::winio` checks the types of its arguments as it is compiled.
#include <cmath>

#include "tarn/winio.hpp"

namespace {

struct Loan {
    double amount = 180000, rate = 3.9;
    int years = 25;
    double payment = 0, interest = 0, total = 0;
};
Loan loan;

int compute() {
    const int months = 12 * loan.years;
    const double monthly = loan.rate / 1200;
    const double exact = monthly > 0 ? loan.amount * monthly / (1 - std::pow(1 + monthly, -months))
                                     : loan.amount / months;
    loan.payment = std::round(100 * exact) / 100;
    loan.total = loan.payment * months;
    loan.interest = loan.total - loan.amount;
    return 1;
}

}  // namespace

int main() {
    using tarn::winio;
    compute();
    winio("%ca[Loan calculator]%co[right_justify]%2tl&", 22, 40);
    winio("%ob[named_l,bottom_exit][Loan]&");
    winio("%flAmount%ta%df%^14rf%tain your currency\n&", 0.0, 1e8, 1000.0, &loan.amount, compute);
    winio("%flInterest rate%ta%df%^14rf%taper cent a year\n&", 0.0, 100.0, 0.1, &loan.rate, compute);
    winio("%ilDuration%ta%dd%^14rd%tayears%cb%`il%`fl&", 1, 50, 1, &loan.years, compute);
    winio("%ob[named_l,bottom_exit][Result]&");
    winio("Monthly payment%ta%`14rf\nInterest paid%ta%`14rf\n&", &loan.payment, &loan.interest);
    winio("Paid back in all%ta%`14rf%cb\n%cn%`8bt[&Close]%es", &loan.total);
}
