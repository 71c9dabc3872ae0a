/* Regions in a program, also where the system promises no writable memory and its pages come as
 * they are written to. */
#include <errno.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tarn/handles.h"
#include "tarn/virtual_storage.h"

enum { threads = 4, pages = 500 };
static const int64_t gib = (int64_t)1 << 30;
static unsigned char* const table = (unsigned char*)0x300000000000;
TARN_VIRTUAL_COMMON_UNDEFINED(table_common, 0x300000000000, 16LL << 30, 0x300000000800, 1LL << 30);
static unsigned char* region;

static void* fill(void* number) {
    const int t = (int)(intptr_t)number;
    for (int i = 0; i < pages; ++i) {
        region[4096 * i + t] = (unsigned char)(t + 1);
        table[4096 * i + t] = (unsigned char)(t + 1);
    }
    return NULL;
}

static int count_right(const unsigned char* bytes) {
    int right = 0;
    for (int i = 0; i < pages; ++i) {
        for (int t = 0; t < threads; ++t) right += bytes[4096 * i + t] == t + 1;
    }
    return right;
}

static void use(const char* name) {
    region = setup_virtual_region(name, 64 * gib, NULL);
    if (region == NULL) {
        printf("%s: %s\n", name, strerror(errno));
        return;
    }
    pthread_t all[threads];
    for (intptr_t t = 0; t < threads; ++t) pthread_create(&all[t], NULL, fill, (void*)t);
    for (int t = 0; t < threads; ++t) pthread_join(all[t], NULL);
    printf("%s: %d and %d of %d\n", name, count_right(region), count_right(table), threads * pages);
    printf("  %02x %02x %02x\n", table[2048], table[5000], table[10 * gib]);
    fflush(stdout);

    const pid_t child = fork();
    if (child == 0) {
        region[gib] = 1;
        _exit(region[0] == 1 && region[gib + 1] == 0 ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    printf("  child %d, here %d\n", status, region[gib]);

    /* What the library reads comes into either. */
    const int32_t wanted = 15000;
    int32_t done = 0;
    int16_t error = -1;
    int16_t handle = __fortran_open("/proc/self/exe", TARN_HANDLE_READ, &error);
    READF_h(region + 40 * gib - 1, &handle, &wanted, &done, &error);
    printf("  read %d, error %d, %.3s\n", done, error, (char*)region + 40 * gib);
    CLOSEF_h(&handle, &error);
}

int main(int argc, char** argv) {
    if (argc > 1) {
        use(argv[1]);
        return 0;
    }
    use("as the system does it");
    /* A limit counts what is writable, touched or not. */
    const struct rlimit limit = {300 << 20, 300 << 20};
    setrlimit(RLIMIT_DATA, &limit);
    fflush(stdout);
    execl(argv[0], argv[0], "page by page", NULL);
    return 1;
}
