/* An error that the program may survive asks; "Ignore" goes on with the window. */
#include <stdio.h>
#include <tarn/winio.h>

int main(void) {
    int n = 4;
    printf("result %d\n", __winio("%ca[B]%rd%~bn[OK]", &n, (int*)0));
    return 0;
}
