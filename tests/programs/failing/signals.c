//> runs: illegal privileged jump null constant heap smashed outside limit kept broken blocked
//> illegal: Attempt to execute illegal instruction at address *
//> illegal: in illegal, @trap
//> privileged: Attempt to execute privileged instruction at address *
//> privileged: in privileged, @hlt
//> jump: The instruction at address 00000123 attempted to read from location 00000123
//> jump: (no code is there: *)
//> jump: in code at 0x123
//> jump: called by jump, @jump
//> null: The instruction at address 00000000 attempted to read from location 00000000
//> null: called by jump, @jump
//> null: called by main, signals.c:*
//> constant: The instruction at address * attempted to write to location *
//> constant: (read-only data of the program: *)
//> heap: Program aborted.
//> heap: in smash, @free
//> smashed: The instruction at address * attempted to write to location *
//> smashed: in write_there, @write
//> outside: Quit (SIGQUIT), sent by process *
//> outside: in wait_for_it, signals.c:*
//> limit: CPU time limit exceeded (SIGXCPU), sent by the system
//> limit: in spin, signals.c:*
//> kept: our own handler
//> broken: Access violation:
//> broken: in write_there, @write
//> blocked: Access violation:
//> blocked: in write_there, @write
//> illegal: called by main, signals.c:*
//> jump: called by main, signals.c:*
//> heap: called by main, signals.c:*
//> smashed: called by main, signals.c:*
//> outside: called by main, signals.c:*
//> broken: called by main, signals.c:*
//> not: tarnlibc
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#define NEVER_INLINED __attribute__((noinline, noclone))

NEVER_INLINED static void illegal(void) {
    __builtin_trap();  // @trap
}

NEVER_INLINED static void privileged(void) {
    __asm__ volatile("hlt");  // @hlt
}

NEVER_INLINED static void jump(long to) {
    void (*volatile nowhere)(void) = (void (*)(void))to;
    // The call must not be the routine's last.
    nowhere();  // @jump
    __asm__ volatile("");
}

NEVER_INLINED static void smash(void) {
    char* volatile block = malloc(40);
    block[-8] = 3;
    __asm__ volatile("" : : : "memory");
    free(block);  // @free
    __asm__ volatile("");
}

NEVER_INLINED static void write_there(char* target) {
    __asm__ volatile("" : "+r"(target));
    *target = 1;  // @write
}

NEVER_INLINED static void wait_for_it(pid_t parent) {
    if (fork() == 0) _exit(kill(parent, SIGQUIT));
    for (;;) pause();
}

NEVER_INLINED static void spin(void) {
    struct rlimit limit = {1, 5};
    setrlimit(RLIMIT_CPU, &limit);
    for (volatile unsigned count = 0;; ++count) {
    }
}

static void own_handler(int number) {
    static const char text[] = "our own handler\n";
    if (write(2, text, sizeof text - 1) < 0) _exit(2);
    _exit(number);
}

// What the report itself needs: the heap, and a part of standard output's record.
static void break_everything(void) {
    char* blocks[64];
    for (int i = 0; i < 64; ++i) blocks[i] = malloc(40);
    for (int i = 0; i < 64; ++i) memset(blocks[i] - 16, 0x5A, 48);
}

static const char fixed[] = "fixed";

int main(int count, char** words) {
    const char* word = count > 1 ? words[1] : "";
    if (strcmp(word, "illegal") == 0) illegal();
    if (strcmp(word, "privileged") == 0) privileged();
    if (strcmp(word, "jump") == 0) jump(0x123);
    if (strcmp(word, "null") == 0) jump(0);
    if (strcmp(word, "constant") == 0) write_there((char*)fixed);
    if (strcmp(word, "heap") == 0) smash();
    if (strcmp(word, "smashed") == 0) {
        break_everything();
        write_there((char*)24);
    }
    if (strcmp(word, "outside") == 0) wait_for_it(getpid());
    if (strcmp(word, "limit") == 0) spin();
    if (strcmp(word, "kept") == 0) {
        signal(SIGSEGV, own_handler);
        write_there((char*)24);
    }
    if (strcmp(word, "broken") == 0) {
        stdout->_IO_write_base = (char*)8;
        stdout->_IO_write_ptr = (char*)80;
        write_there((char*)24);
    }
    if (strcmp(word, "blocked") == 0) {
        // What is written out first goes to a pipe that nobody reads.
        static char much[1 << 17];
        int ends[2];
        memset(much, '-', sizeof much);
        if (pipe(ends) != 0 || dup2(ends[1], 1) < 0) return 0;
        setvbuf(stdout, malloc(sizeof much), _IOFBF, sizeof much);
        fwrite(much, 1, sizeof much - 1, stdout);
        write_there((char*)24);
    }
    return 0;
}
