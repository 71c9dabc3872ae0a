/* A window whose button fails in the way that the program's argument names. */
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tarn/failure.h>
#include <tarn/winio.h>
#include <unistd.h>

#define NEVER_INLINED __attribute__((noinline, noclone))

static const char* way;
static volatile int zero;

NEVER_INLINED static int touch(int* volatile where) {
    *where = 1;
    return *where;
}

NEVER_INLINED static int sink(int levels) {
    volatile char room[4000];
    room[levels % 4000] = 1;
    return levels == -1 ? 0 : sink(levels + 1) + room[0];
}

static void* idle(void* nothing) {
    for (;;) pause();
    return nothing;
}

static void* late(void* nothing) {
    usleep(200000);
    touch(NULL);
    return nothing;
}

static void* faulty(void* nothing) {
    touch(NULL);
    return nothing;
}

// What is free behind the last block has a length that makes no sense then: the system ends the
// program in the middle of its heap, with the lock held, as another thread makes it take one.
NEVER_INLINED static void smash(void) {
    pthread_t other;
    pthread_create(&other, NULL, idle, NULL);
    const size_t size = 100000;
    char* block = malloc(size);
    memset(block + size, 0x5A, 64);
    __asm__ volatile("" : : : "memory");
    if (malloc(size) == NULL) puts("full");
    __asm__ volatile("");
}

NEVER_INLINED static void fail_on_other_thread(void) {
    pthread_t other;
    pthread_create(&other, NULL, faulty, NULL);
    pthread_join(other, NULL);
}

// Another thread fails while this one is at rest in the pump.
NEVER_INLINED static void leave_other_thread(void) {
    pthread_t other;
    pthread_create(&other, NULL, late, NULL);
    pthread_detach(other);
}

static int go(void) {
    const int32_t number = 117;
    if (strcmp(way, "null") == 0) touch(NULL);
    if (strcmp(way, "divide") == 0) zero = 7 / zero;
    if (strcmp(way, "stack") == 0) zero = sink(0);
    if (strcmp(way, "abort") == 0) abort();
    if (strcmp(way, "system") == 0) zero = (int)strlen((const char*)8 + zero);
    if (strcmp(way, "smash") == 0) smash();
    if (strcmp(way, "thread") == 0) fail_on_other_thread();
    if (strcmp(way, "later") == 0) leave_other_thread();
    if (strcmp(way, "failure") == 0) C_FAIL_h(&number);
    return 1;
}

// Comes every 50 ms. The first one fails, and the next would while the report is read.
static int tick(void) {
    if (strcmp(way, "timer") == 0) touch(NULL);
    return 1;
}

int main(int count, char** words) {
    way = count > 1 ? words[1] : "";
    if (strcmp(way, "before") == 0) touch(NULL);
    __winio("%ca[Faulty]%^bt[Go]%dl&", go, 0.05, tick);
    return __winio("%nl%rd%`bt[Close]", &count);
}
