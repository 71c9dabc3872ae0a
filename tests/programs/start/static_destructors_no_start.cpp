//> with: parts/say.f90
//> start: none
//> run:
//> args: return
//> status: 5
//> out: say 1
//> out: say 2
//> out: say 3
//> out: say 3
//> out: say 1
//> run:
//> args: return
//> status: 5
//> file: fort.10
//> out: kept 1
//> out: kept 2
//> out: kept 3
//> out: kept 3
//> out: kept 1
//> run:
//> args: stop
//> status: 7
//> err: STOP 7
//> out: say 1
//> out: say 2
//> out: say 3
//> out: say 3
//> out: say 1
//> run:
//> args: tarn_exit
//> status: 9
//> file: fort.10
//> out: kept 1
//> out: kept 2
//> out: kept 3
//> out: kept 3
//> out: kept 1
// Static objects print through Fortran units before main and after it; nothing is lost, and no
// unit is opened anew.
#include <cstring>

extern "C" {
void say_(const int*);
void stop_program_();
[[noreturn]] void tarn_exit(int);
}

struct Static {
    int number;
    explicit Static(int n) : number(n) { say_(&number); }
    ~Static() { say_(&number); }
};
static Static before_main(1);

int main(int, char** argv) {
    int two = 2;
    say_(&two);
    static Static inside(3);
    if (!std::strcmp(argv[1], "stop")) stop_program_();
    if (!std::strcmp(argv[1], "tarn_exit")) tarn_exit(9);
    return 5;
}
