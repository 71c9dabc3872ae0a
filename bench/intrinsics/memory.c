/* How fast this machine reads and copies storage, beside which the GB/s of the table are to be seen:
 * memory BYTES prints GB/s read and GB/s read and written by a copy, each the best of some turns. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

static double now(void) {
    struct timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return (double)t.tv_sec * 1e9 + (double)t.tv_nsec;
}

static uint64_t any_bits(const uint64_t* words, size_t count) {
    uint64_t any[16] = {0};
    for (size_t i = 0; i + 16 <= count; i += 16)
        for (size_t l = 0; l < 16; ++l) any[l] |= words[i + l];
    uint64_t all = 0;
    for (size_t l = 0; l < 16; ++l) all |= any[l];
    return all;
}

int main(int argc, char** argv) {
    const size_t bytes = argc > 1 ? strtoul(argv[1], NULL, 10) : 1000000;
    uint64_t* const from = calloc(1, bytes + 64);
    uint64_t* const to = calloc(1, bytes + 64);
    if (from == NULL || to == NULL) return 1;
    memset(from, 2, bytes);  /* pages of its own, not the one page of zeros */
    double reading = 1e18;
    double copying = 1e18;
    uint64_t seen = 0;
    for (int turn = 0; turn < 20; ++turn) {
        const int times = (int)(20000000 / bytes) + 1;
        double start = now();
        for (int i = 0; i < times; ++i) {
            from[0] = (uint64_t)i;
            seen += any_bits(from, bytes / 8);
        }
        double took = (now() - start) / times;
        if (took < reading) reading = took;
        start = now();
        for (int i = 0; i < times; ++i) {
            from[0] = (uint64_t)i;
            memcpy(to, from, bytes);
            seen += to[0];
        }
        took = (now() - start) / times;
        if (took < copying) copying = took;
    }
    printf("%.1f %.1f\n", (double)bytes / reading, 2.0 * (double)bytes / copying);
    return seen == 1;
}
