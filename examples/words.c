/* Counts the words of standard input on the library's storage.
 *
 *     tarncc words.c -o words && ./words < text
 *     ORVEX_NEW_MEMORY=FALSE ./words < text        on the own heap, which can tell what it holds
 *     ORVEX_NEW_MEMORY=FALSE ./words twice < text  and which notices a block freed twice
 */
#include <ctype.h>
#include <stdio.h>
#include <string.h>
#include <tarn/storage.h>

struct word {
    struct word* next;
    int count;
    char text[];
};

static struct word* words;

static void count(const char* text, size_t length) {
    for (struct word* w = words; w; w = w->next) {
        if (strlen(w->text) == length && memcmp(w->text, text, length) == 0) {
            w->count++;
            return;
        }
    }
    struct word* w = tarn_malloc(sizeof *w + length + 1);
    w->next = words;
    w->count = 1;
    memcpy(w->text, text, length);
    w->text[length] = 0;
    words = w;
}

static void read_words(void) {
    char text[100];
    size_t length = 0;
    for (int c; (c = getchar()) != EOF;) {
        if (isalpha(c)) {
            if (length < sizeof text) text[length++] = (char)tolower(c);
        } else if (length) {
            count(text, length);
            length = 0;
        }
    }
    if (length) count(text, length);
}

int main(int argc, char** argv) {
    fault_malloc_failure(1); /* running out of storage ends the program with a report */
    read_words();
    for (struct word* w = words; w; w = w->next) {
        if (w->count > 1) printf("%3d %s\n", w->count, w->text);
    }
    printf("bytes in use: %ld\n", (long)__total_allocated_memory());

    struct word* last = words;
    while (words) {
        struct word* next = words->next;
        tarn_free(words);
        words = next;
    }
    printf("bytes in use: %ld\n", (long)__total_allocated_memory());
    fflush(stdout);
    if (argc > 1 && strcmp(argv[1], "twice") == 0) tarn_free(last);
    return 0;
}
