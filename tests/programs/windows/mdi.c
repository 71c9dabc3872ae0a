/* Windows within a window: which child is on top, children that fill the frame, arrangements. */
#include <stdio.h>
#include <tarn/winio.h>
#include <tarn/winio_run.h>
#include <tarn/winio_windows.h>

static int host, top, children, handles[3], states[3];

static int number_of(int handle) {
    for (int i = 0; i < children; ++i)
        if (handles[i] == handle) return i;
    return -1;
}

static int turned(void) {
    printf("%s: %d\n", __quillpan_string("CALL_BACK_REASON"), number_of(top));
    return 2;
}

static int open_child(void) {
    static char names[3][12];
    int i = children++;
    snprintf(names[i], sizeof names[i], "Child %d", i);
    __winio("%ca@%ww%hw&", names[i], &handles[i]);
    return __winio("Some text\n%16rs%aw%lw", names[i], 12, &host, &states[i]) + 2;
}

int main(void) {
    int button = __winio("%ca[Host]%mn[&File[&New],&Window[&Cascade,&Across,&Down]]&", open_child,
                         "CASCADE", "TILE_HORIZONTALLY", "TILE_VERTICALLY");
    button = __winio("%ww[not_fixed_size]%pv%^`fr%cv\n%bt[&Done]", 500, 300, &top, turned, &host);
    printf("button %d, children %d %d %d\n", button, states[0], states[1], states[2]);
    return 0;
}
