#include <stdio.h>
#include <stdlib.h>

void begin_(void);
void record_(const int* n);
int sum_(const char* file, size_t length);

int main(void) {
    printf("C first\n");
    fflush(stdout);
    begin_();
    for (int i = 1; i <= 3; ++i) record_(&i);
    printf("C in between\n");
    fflush(stdout);
    printf("sum %d\n", sum_("c_main.txt", 10));
    return 3;
}
