/* The start-up object runs the image's preamble before its constructors, and with the library up.
 */
#include <stddef.h>
#include <unistd.h>

int xcb_lib_version(void);
void** __stdin_address(void);
static int steps = 0;

static void first(void) {
    if (steps++ != 0 || *__stdin_address() == NULL) _exit(1);
}
static void second(void) {
    if (steps++ != 1) _exit(2);
}
static void (*entries[])(void) __attribute__((section("tarn_crt"), used)) = {first, NULL, second};

static void __attribute__((constructor)) constructor(void) {
    if (steps++ != 2) _exit(3);
}

int main(void) {
    if (steps != 3) _exit(4);
    if (xcb_lib_version() != 20390) _exit(5);
    _exit(0);
}
