//> start: preload
//> status: 6
//> out: opened
//> err: STOP 6
/* A program that knows nothing of the library opens it, uses it, and closes it again. */
#include <dlfcn.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>

int main(void) {
    void* library = dlopen(getenv("LD_PRELOAD"), RTLD_LAZY);
    if (!library) return 1;
    void (*stop)(int, bool) = (void (*)(int, bool))dlsym(library, "_gfortran_stop_numeric");
    void (*options)(int, const int*) =
        (void (*)(int, const int*))dlsym(library, "_gfortran_set_options");
    if (!stop || !options) return 2;
    options(0, NULL);
    dlclose(library);
    puts("opened");
    stop(6, false);
}
