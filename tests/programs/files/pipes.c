/* Handles and other programs from C: a pipe through a handle, sharing, and buffers. */
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tarn/files.h"
#include "tarn/handles.h"

static long on_disk(const char* name) {
    struct stat about;
    return stat(name, &about) == 0 ? (long)about.st_size : -1;
}

static void through_a_pipe(void) {
    int ends[2];
    int32_t length;
    int16_t error;
    char line[80];
    if (pipe(ends) != 0) return;
    int16_t out = __allocate_fortran_handle(ends[1], TARN_HANDLE_WRITE);
    int16_t in = __allocate_fortran_handle(ends[0], TARN_HANDLE_READ);
    WRITEFA_h("one line", &out, &error, 8);
    READFA_h(line, &in, &length, &error, sizeof line);
    printf("through a pipe: [%.*s] %d\n", (int)length, line, __is_repositionable(in));
    printf("closed: %d %d\n", __fortran_closef(out, 0), __fortran_closef(in, 0));
}

static void buffers(void) {
    const int32_t count = 6;
    int16_t error;
    int16_t direct = __fortran_open("direct", TARN_HANDLE_WRITE, &error);
    WRITEF_h("direct", &direct, &count, &error);
    printf("without a buffer: %ld\n", on_disk("direct"));
    __init_f95_io();
    int16_t held = __fortran_open("held", TARN_HANDLE_WRITE, &error);
    WRITEF_h("waits.", &held, &count, &error);
    printf("with one: %ld", on_disk("held"));
    printf(" %d", __flush_fortran_handle(held));
    printf(" %ld\n", on_disk("held"));
    WRITEF_h("at end", &held, &count, &error);
    /* Before another program starts, all is written out. */
    fflush(stdout);
    CISSUE("cat held; echo", &error, 14);
}

static void sharing(void) {
    int16_t error;
    int16_t mine = __fortran_share_open("held", TARN_SHARED_UPDATE | TARN_SHARE_NONE, &error);
    printf("shared with nobody: %d %d\n", mine > 0, error);
    int16_t again = __fortran_share_open("held", TARN_SHARED_READ | TARN_SHARE_ALL, &error);
    printf("again: %d %d\n", again, error);
    int32_t length;
    printf("found: %d, ", __find_handle_from_path("direct") >= 5);
    printf("%s\n", __find_path_from_handle(again, &length) == NULL ? "unknown" : "known");
}

int main(void) {
    through_a_pipe();
    buffers();
    sharing();
    printf("exit code %d\n", __spawns(0, "sh", "-c 'exit 4'"));
    return 0;
}
