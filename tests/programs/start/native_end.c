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
#include <stdint.h>
#include <stdio.h>
#include <string.h>

void stop(const char*, ptrdiff_t) __asm__("\"STOP#\"");
void pause_program(const char*, ptrdiff_t) __asm__("\"PAUSE#\"");
void leave(const int16_t*) __asm__("\"EXIT#\"");
void quit_cleanup(const char*, ptrdiff_t) __asm__("\"QUIT_CLEANUP#\"");
void quit_handler(void*) __asm__("\"LIB_QUIT_HANDLER#\"");

int main(int argc, char** argv) {
    const char* how = argv[1];
    printf("before\n");
    fflush(stdout);
    if (!strcmp(how, "stop")) {
        char text[20];
        memset(text, ' ', sizeof text);
        if (argc > 2) memcpy(text, argv[2], strlen(argv[2]));
        stop(text, sizeof text);
    }
    if (!strcmp(how, "exit")) {
        int16_t status = 3;
        leave(&status);
    }
    if (!strcmp(how, "pause")) {
        pause_program("why  ", 5);
        printf("after\n");
    }
    if (!strcmp(how, "quit")) {
        quit_cleanup("goodbye   ", 10);
        quit_handler(NULL);
    }
    return 0;
}
