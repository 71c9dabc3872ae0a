// What statements of a compiled program may cost, counted and never timed.
//
//     costs allocations   a formatted statement that has run once allocates nothing when it runs
//                         again
//     costs units         a statement on one of 1,000 units takes about as many instructions as on
//                         one of 10: there is no growing search for the unit
//
// Takes the library's name as its second argument, and fails when the statements don't run on it.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

void open_units_(int32_t* count);
void close_units_(int32_t* count);
void write_units_(int32_t* count);
void run_statement_(int32_t* which, int32_t* more);
void prepare_(void);
void finish_(void);
void _gfortran_st_write(void*);

// The C library's allocator under its own names, with a count of the requests.
extern void* __libc_malloc(size_t);
extern void* __libc_calloc(size_t, size_t);
extern void* __libc_realloc(void*, size_t);
extern void* __libc_memalign(size_t, size_t);
static volatile long requests;

void* malloc(size_t size) {
    ++requests;
    return __libc_malloc(size);
}
void* calloc(size_t count, size_t size) {
    ++requests;
    return __libc_calloc(count, size);
}
void* realloc(void* block, size_t size) {
    ++requests;
    return __libc_realloc(block, size);
}
void* aligned_alloc(size_t alignment, size_t size) {
    ++requests;
    return __libc_memalign(alignment, size);
}

static int count_allocations(void) {
    int wrong = 0;
    prepare_();
    for (int32_t which = 1;; ++which) {
        int32_t more = 0;
        run_statement_(&which, &more);
        if (!more) break;
        const long before = requests;
        for (int i = 0; i < 20; ++i) run_statement_(&which, &more);
        if (requests != before) {
            fprintf(stderr, "statement %d of statements.f90: %ld allocations when it runs again\n",
                    which, requests - before);
            wrong = 1;
        }
    }
    finish_();
    return wrong;
}

// The instructions that twenty statements take with so many units connected: a child runs them
// between two stops, and is led from one to the other a step at a time.
static long instructions(int32_t count) {
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, NULL, NULL);
        open_units_(&count);
        write_units_(&count);
        raise(SIGSTOP);
        write_units_(&count);
        raise(SIGSTOP);
        close_units_(&count);
        _exit(0);
    }
    int status = 0;
    long steps = -1;
    waitpid(child, &status, 0);
    while (WIFSTOPPED(status) && WSTOPSIG(status) != SIGSTOP) {
        ptrace(PTRACE_CONT, child, NULL, (void*)(intptr_t)WSTOPSIG(status));
        waitpid(child, &status, 0);
    }
    if (!WIFSTOPPED(status)) return -1;
    do {
        ++steps;
        if (ptrace(PTRACE_SINGLESTEP, child, NULL, NULL) != 0) return -1;
        waitpid(child, &status, 0);
    } while (WIFSTOPPED(status) && WSTOPSIG(status) == SIGTRAP);
    if (!WIFSTOPPED(status)) return -1;
    ptrace(PTRACE_CONT, child, NULL, NULL);
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? steps : -1;
}

static int count_units(void) {
    const long few = instructions(10), many = instructions(1000);
    printf("instructions of 20 statements: %ld with 10 units, %ld with 1000\n", few, many);
    if (few <= 0 || many <= 0) {
        fputs("the statements can't be counted\n", stderr);
        return 1;
    }
    return many > 2 * few;
}

int main(int argc, char** argv) {
    Dl_info info;
    if (argc != 3) return 2;
    if (!dladdr((void*)_gfortran_st_write, &info) || !strstr(info.dli_fname, argv[2])) {
        fprintf(stderr, "the statements run on %s\n", info.dli_fname);
        return 1;
    }
    char folder[] = "/tmp/costs-XXXXXX";
    if (!mkdtemp(folder) || chdir(folder) != 0) return 2;
    const int wrong = strcmp(argv[1], "units") == 0 ? count_units() : count_allocations();
    if (rmdir(folder) != 0) perror(folder);
    return wrong;
}
