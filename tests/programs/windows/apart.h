/* Runs what may end the process in a process of its own, and shows what it said and how it ended.
 */
#ifndef APART_H
#define APART_H

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/* Standard error, without the traceback: its lines up to an empty one. */
static void show(char* text, int status) {
    char* traceback = strstr(text, "\n\n");
    if (traceback) *traceback = 0;
    size_t length = strlen(text);
    while (length > 0 && text[length - 1] == '\n') text[--length] = 0;
    for (char* at = text; *at; ++at) {
        if (*at == '\n')
            fputs(" / ", stdout);
        else
            putchar(*at);
    }
    if (WIFSIGNALED(status))
        printf(" (signal %d)", WTERMSIG(status));
    else if (WEXITSTATUS(status) != 0)
        printf(" (ends with %d)", WEXITSTATUS(status));
    putchar('\n');
}

static void run_apart(const char* title, void (*function)(const void*), const void* given) {
    static char text[65536];
    size_t length = 0;
    int ends[2];
    fflush(stdout);
    if (pipe(ends) != 0) abort();
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], 2);
        close(ends[0]);
        const struct rlimit seconds = {5, 5};
        setrlimit(RLIMIT_CPU, &seconds);
        function(given);
        fflush(NULL);
        _exit(0);
    }
    close(ends[1]);
    for (ssize_t got; (got = read(ends[0], text + length, sizeof text - 1 - length)) > 0;)
        length += (size_t)got;
    text[length] = 0;
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    char line[33] = "";
    printf("  %-32s ", title);
    show(text, status);
}

#endif
