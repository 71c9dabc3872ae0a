/* Help of controls: tips at the pointer, a line of the window, F1, and texts that change. */
#include <stdio.h>
#include <tarn/winio.h>
#include <tarn/winio_run.h>

static int number = 5, tips = 1, delay = 20, never = 0, changes;
static char help[40] = "Changes this text";

static int change(void) {
    snprintf(help, sizeof help, "Changed %d times", ++changes);
    __window_update(help);
    printf("tip %s\n", __quillpan_info("TOOLTIP_HWND") != 0 ? "shown" : "hidden");
    return 2;
}

int main(void) {
    int button = __winio("%ca[Tips]%th[delay,ms_style]Number %?rd[How many\nthere are]\n"
                         "%?~bt[&Grey][Fill in the number first]%?^bt[&Change]@%?`bt[OK]"
                         "[Closes the window]",
                         &tips, &delay, &number, &never, change, help);
    printf("button %d\n", button);
    button = __winio("%ca[Line]Number %?rd[How many there are]\n%?^bt[&Change]@%?`bt[OK][Closes]",
                     &number, change, help);
    printf("button %d\n", button);
    return 0;
}
