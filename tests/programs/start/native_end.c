//> run:
//> args: stop text
//> out: before
//> out: **** STOP: text
//> run:
//> args: stop
//> out: before
//> run:
//> args: exit
//> status: 3
//> out: before
//> run:
//> args: pause
//> stdin: echo command
//> stdin:
//> out: before
//> out: ***Pause: why
//> out: Enter system command or press ENTER key to restart: command
//> out:
//> out: Enter system command or press ENTER key to restart: after
//> run:
//> args: quit
//> out: before
//> out:
//> out: goodbye
/* The system's own STOP, PAUSE and EXIT. */
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "tarn/exit.h"
#include "tarn/failure.h"
#include "tarn/float.h"
#include "tarn/start.h"

int main(int argc, char** argv) {
    const char* how = argv[1];
    printf("before\n");
    fflush(stdout);
    if (!strcmp(how, "stop")) {
        char text[20];
        memset(text, ' ', sizeof text);
        if (argc > 2) memcpy(text, argv[2], strlen(argv[2]));
        STOP_h(text, sizeof text);
    }
    if (!strcmp(how, "exit")) {
        int16_t status = 3;
        EXIT_h(&status);
    }
    if (!strcmp(how, "pause")) {
        PAUSE_h("why  ", 5);
        printf("after\n");
    }
    if (!strcmp(how, "quit")) {
        QUIT_CLEANUP_h("goodbye   ", 10);
        LIB_QUIT_HANDLER_h(NULL);
    }
    return 0;
}
