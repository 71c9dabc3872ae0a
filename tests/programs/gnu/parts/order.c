#include <stdio.h>
#include <unistd.h>
void c_line_(const int* n) {
    printf("C %d\n", *n);
    fflush(stdout);
}
void c_raw_(const int* n) {
    char text[20];
    if (write(1, text, (size_t)snprintf(text, sizeof text, "raw %d\n", *n)) < 0) perror("raw");
}
