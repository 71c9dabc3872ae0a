/* Fails where a report has it hard: the argument tells how. */
#define _GNU_SOURCE
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <tarn/exceptions.h>
#include <tarn/failure.h>
#include <unistd.h>

#define NEVER_INLINED __attribute__((noinline, noclone))

static volatile int kept;

NEVER_INLINED static void touch(volatile int* where) {
    *where = 1;
    kept = 2;
}

NEVER_INLINED static int deep(int levels) {
    if (levels == 0) touch(NULL);
    return levels == 0 ? 0 : deep(levels - 1) + kept;
}

static pthread_barrier_t together;

static void* on_thread(void* nothing) {
    pthread_barrier_wait(&together);
    touch(NULL);
    return nothing;
}

/* A stack of a million frames takes what the main one doesn't have. */
static void* with_depth(void* levels) {
    kept = deep(*(int*)levels);
    return NULL;
}

static void run_with_stack(size_t size, void* (*routine)(void*), void* argument) {
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, size);
    pthread_create(&thread, &attributes, routine, argument);
    pthread_join(thread, NULL);
}

static void* sink(void* levels) {
    volatile char room[2000];
    int next = *(int*)levels + 1;
    room[next % 2000] = 1;
    sink(&next);
    return (void*)(size_t)room[0];
}

static void fill_heap(void) {
    struct rlimit limit = {64 << 20, 64 << 20};
    setrlimit(RLIMIT_AS, &limit);
    for (size_t size = 1 << 20; size > 16; size /= 2) {
        while (malloc(size) != NULL) kept = 1;
    }
}

/* Only for a process that may. */
static int hide_proc(void) {
    return unshare(CLONE_NEWNS | CLONE_NEWUSER) == 0 &&
           mount("none", "/", NULL, MS_REC | MS_PRIVATE, NULL) == 0 &&
           mount("none", "/proc", "tmpfs", 0, NULL) == 0;
}

/* The frames above the fault are garbage. */
NEVER_INLINED static void ruin_stack(void) {
    volatile long* frame = __builtin_frame_address(0);
    for (int i = 0; i < 20; ++i) frame[i] = 0x5A5A5A5A5A5A5A5A;
    touch(NULL);
}

static int bad_trap(void) {
    touch((volatile int*)16);
    return 1;
}

int main(int count, char** words) {
    const char* way = count > 1 ? words[1] : "";
    int levels = count > 2 ? atoi(words[2]) : 10;
    pthread_barrier_init(&together, NULL, 4);
    if (strcmp(way, "deep") == 0) run_with_stack((size_t)400 << 20, with_depth, &levels);
    if (strcmp(way, "worker") == 0) run_with_stack(1 << 20, sink, &levels);
    if (strcmp(way, "full") == 0) fill_heap();
    if (strcmp(way, "proc") == 0 && !hide_proc()) return 77;
    if (strcmp(way, "closed") == 0) close(2);
    if (strcmp(way, "ruined") == 0) ruin_stack();
    if (strcmp(way, "trap") == 0) __set_exception_trap(0, bad_trap);
    if (strcmp(way, "together") == 0) {
        pthread_t threads[4];
        for (int i = 0; i < 4; ++i) pthread_create(&threads[i], NULL, on_thread, NULL);
        for (int i = 0; i < 4; ++i) pthread_join(threads[i], NULL);
    }
    touch(NULL);
}
