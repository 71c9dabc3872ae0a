//> status: 130
/* A break key ends the program by its signal as it does any other. */
#include <signal.h>

int main(void) {
    raise(SIGINT);
    return 7;
}
