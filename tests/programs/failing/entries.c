//> report: pong -  in file entries.c at line 42 [recur=  2]
//> report: ping -  in file entries.c at line 38 [recur=  2]
//> report: main -  in file entries.c at line 57
//> report: location -1 entries.c 25
//> report: trace 0 3
//> report: again, line 8, file f.c
//> report: Call stack 2
//> not: Call stack 3
//> not: first, line
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <tarn/traceback.h>

static char room[20000];
static volatile int kept;

// Offsets differ from build to build.
static void show(char* text) {
    for (char* at = text; (at = strstr(at, " [+")) != NULL;)
        memmove(at, strchr(at, ']') + 1, strlen(strchr(at, ']')));
    fputs(text, stderr);
}

__attribute__((noinline)) static int marked(int value) { return value + kept; }

__attribute__((noinline, noclone)) static void native(void) {
    tarn_text text = {room, sizeof room, 0};
    kept = 1;
    // The place of this routine and its frame.
here:
    Add_Traceback_routine(&text, &&here, __builtin_frame_address(0));
    show(room);
}

__attribute__((noinline, noclone)) static void pong(int depth);
__attribute__((noinline, noclone)) static void ping(int depth) {
    pong(depth);
    kept = depth;
}
__attribute__((noinline, noclone)) static void pong(int depth) {
    depth > 0 ? ping(depth - 1) : native();
    kept = depth;
}

static void show_file(const char* name) {
    FILE* file = fopen(name, "r");
    for (int c; file != NULL && (c = getc(file)) != EOF;) fputc(c, stderr);
    if (file != NULL) fclose(file);
}

int main(void) {
    char file[512];
    int32_t line = 0;
    int32_t three = 3;
    // Three rounds of two routines.
    ping(2);
    const int32_t status = where_is_location((const void*)marked, file, &line);
    fprintf(stderr, "location %d %s %d\n", status, file, line);

    const int begun = __runtrace(1, "none", "f.c");
    CREATECALLSTACK_h(&three);
    const char* routines[] = {"first", "second", "third", "again", "second"};
    int size = 0;
    for (int i = 0; i < 4; ++i) size = __runtrace(i + 4, routines[i], "f.c");
    fprintf(stderr, "trace %d %d\n", begun, size);
    EXPORTCALLSTACK_h("stack.txt  ", 11);
    EXPORTCALLSTACK_h("elsewhere.txt", 13);
    show_file("stack.txt");
    return 1 + marked(0);
}
