//> run:
//> args: return
//> status: 4
//> out: c
//> out: b
//> out: later
//> out: a
//> out: destructor
//> run:
//> args: exit
//> status: 4
//> out: c
//> out: b
//> out: later
//> out: a
//> out: destructor
//> run:
//> args: tarn_exit
//> status: 4
//> out: c
//> out: b
//> out: later
//> out: a
//> out: destructor
//> run:
//> args: again
//> status: 5
//> out: c
//> out: b
//> out: later
//> out: a
//> out: destructor
//> run:
//> args: abort
//> status: 1
//> run:
//> args: abort
//> env: TARNENVAR=no_traceback
//> run:
//> args: failure
//> status: 1
//> err: *** Error   30, Storage heap is corrupt
// Exit routines run newest first and before the destructors of static objects, however the
// program leaves; a failure and an abort run none of them.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tarn/exit.h"
#include "tarn/failure.h"
#include "tarn/float.h"
#include "tarn/start.h"

struct Static {
    ~Static() { std::puts("destructor"); }
} object;

static bool again = false;

int main(int, char** argv) {
    tarn_atexit([] {
        std::puts("a");
        if (again) tarn_exit(5);
    });
    tarn_atexit([] {
        std::puts("b");
        tarn_atexit([] { std::puts("later"); });
    });
    tarn_atexit([] { std::puts("c"); });
    const char* how = argv[1];
    if (!std::strcmp(how, "exit")) std::exit(4);
    if (!std::strcmp(how, "tarn_exit")) tarn_exit(4);
    if (!std::strcmp(how, "abort")) tarn_abort();
    int number = 30;
    if (!std::strcmp(how, "failure")) NT_FAIL_AT(nullptr, nullptr, &number);
    again = !std::strcmp(how, "again");
    return 4;
}
