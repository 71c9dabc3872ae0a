/* What bench/run windows times, a mode each: windows of this library as a program makes them.
 * Events come from the script that the runner wrote; a script's line runs when everything is on the
 * screen, so what it causes begins and ends at a finished picture. Figures go to standard output:
 * processor time on the memory display, which other work on the machine doesn't lengthen; on a
 * desktop, whose server works too, time on the clock. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tarn/text_window.h>
#include <tarn/winio.h>
#include <tarn/winio_run.h>
#include <tarn/winio_windows.h>
#include <time.h>

enum { boxes = 100, buttons = 50, switches = 50, most_times = 4000 };

static double times[most_times];
static int taken;
static double closing;
static double opening, settled;

static int on_desktop(void) {
    const char* display = getenv("TARN_DISPLAY");
    return display && strcmp(display, "x11") == 0;
}

/* Milliseconds. */
static double now(void) {
    struct timespec t;
    clock_gettime(on_desktop() ? CLOCK_MONOTONIC : CLOCK_PROCESS_CPUTIME_ID, &t);
    return (double)t.tv_sec * 1e3 + (double)t.tv_nsec * 1e-6;
}

static int by_size(const void* a, const void* b) {
    double x = *(const double*)a, y = *(const double*)b;
    return x < y ? -1 : x > y;
}

static double quantile(double* values, int count, double part) {
    qsort(values, (size_t)count, sizeof *values, by_size);
    int at = (int)(part * (count - 1) + 0.5);
    return count > 0 ? values[at] : -1;
}

static int note_time(void) {
    if (taken < most_times) times[taken++] = now();
    return 2;
}

static int note_close(void) {
    closing = now();
    return 0;
}

/* The last message of those that come with a new window; the script waits longer than that. */
static void after_message(void) {
    const double pause = 100, at = now();
    if (settled < opening || at - settled < pause) settled = at;
}

static int count_message(void) {
    return 2;
}

/* 200 controls: numbers and texts with labels, buttons, switches. `kind` tells which events are
 * noted: 'k' the changes of the first box, 'r' the sizes of the window. */
static int numbers[boxes], states[switches];
static double reals[boxes];
static char texts[boxes][32], notes[200];

static void two_hundred(int kind) {
    __winio("%ca[Two hundred]%cc%ww[not_fixed_size]&", note_close);
    if (kind == 'r') __winio("%`mv&", note_time);
    __winio("%pv%60.2re%ff&", notes, (int)sizeof notes);
    for (int i = 0; i < boxes; i++) {
        char format[64];
        if (i == 0 && kind == 'k')
            __winio("Field 0%ta%^8rd&", &numbers[0], note_time);
        else if (i % 3 == 0) {
            snprintf(format, sizeof format, "Field %d%%ta%%8rd&", i);
            __winio(format, &numbers[i]);
        } else if (i % 3 == 1) {
            snprintf(format, sizeof format, "Field %d%%ta%%8rf&", i);
            __winio(format, &reals[i]);
        } else {
            snprintf(format, sizeof format, "Field %d%%ta%%8rs&", i);
            __winio(format, texts[i], 32);
        }
        __winio(i % 5 == 4 ? "%nl&" : "%ta&");
    }
    for (int i = 0; i < buttons; i++) {
        char format[64];
        snprintf(format, sizeof format, "%%^bt[Do %d]%s&", i, i % 10 == 9 ? "%nl" : " ");
        __winio(format, count_message);
    }
    for (int i = 0; i < switches; i++) {
        char format[64];
        snprintf(format, sizeof format, "%%rb[Mark %d]%s&", i, i % 10 == 9 ? "%nl" : " ");
        __winio(format, &states[i]);
    }
    __winio("");
}

/* Windows one behind the other, a `close` each in the script: the first, the others' median. On a
 * desktop the picture is there when the last message is done. */
static void open_windows(int windows) {
    int desktop = on_desktop();
    double first = 0;
    for (int i = 0; i < windows; i++) {
        double begin = opening = now();
        if (desktop && i == 0) __register_message_loop_hook(after_message);
        two_hundred(0);
        double end = desktop ? settled : closing;
        if (i == 0)
            first = end - begin;
        else
            times[taken++] = end - begin;
    }
    printf("first %.4f\nlater %.4f\n", first, quantile(times, taken, 0.5));
}

static void intervals(const char* name, double part) {
    for (int i = 0; i + 1 < taken; i++) times[i] = times[i + 1] - times[i];
    printf("%s-median %.4f\n", name, quantile(times, taken - 1, 0.5));
    printf("%s %.4f\n", name, quantile(times, taken - 1, part));
    printf("%s-count %d\n", name, taken);
}

static int values[20];

static void updates(int count) {
    int control = 0;
    for (int i = 0; i < 20; i++) __winio(i % 5 == 4 ? "%8rd%nl&" : "%8rd &", &values[i]);
    __winio("%lw", &control);
    __yield_program_control(1);
    double begin = now();
    for (int i = 0; i < count; i++) __window_update(&values[i % 20]);
    printf("same %.0f\n", count / (now() - begin) * 1e3);
    begin = now();
    for (int i = 0; i < count; i++) {
        ++values[i % 20];
        __window_update(&values[i % 20]);
    }
    printf("changed %.0f\n", count / (now() - begin) * 1e3);
    control = 0;
    __window_update(&control);
}

/* A small window, opened, shown and closed by the script. */
static void open_close(int count) {
    for (int i = 0; i < count; i++) {
        int area = i;
        double begin = now();
        __winio("%ca[Area]Area%ta%rd%nl%bt[OK]", &area);
        times[taken++] = now() - begin;
    }
    printf("open-close %.4f\n", quantile(times, taken, 0.5));
}

static long resident(void) {
    char line[256];
    long kilobytes = 0;
    FILE* file = fopen("/proc/self/status", "r");
    while (file && fgets(line, sizeof line, file))
        if (sscanf(line, "VmRSS: %ld", &kilobytes) == 1) break;
    if (file) fclose(file);
    return kilobytes * 1024;
}

static void lines(int count) {
    static char all[100][80];
    int window = __create_window("Lines", 0, 0, 800, 600), length = 0;
    double text = 0;
    for (int i = 0; i < 100; i++)
        length = snprintf(all[i], sizeof all[i], "%8d a line of a run's output, %8.3f of it\n", i,
                          i * 0.01);
    __win_coua(window, all[0], length);
    __yield_program_control(1);
    long before = resident();
    double begin = now();
    for (int i = 0; i < count; i++) {
        int n = (int)strlen(all[i % 100]);
        __win_coua(window, all[i % 100], n);
        text += n;
    }
    __update_window(window);
    printf("lines %.0f\n", count / (now() - begin) * 1e3);
    printf("line-bytes %.1f\n", ((double)(resident() - before) - text) / count);
    __destroy_window(window);
}

/* Paints of a program that polls take a tenth of its time at most: this one waits its turn. */
static void show_at_once(void) {
    struct timespec pause = {0, 20000000};
    nanosleep(&pause, NULL);
}

/* 1920 x 1080 of fresh lines at a time. */
static void frames(int count) {
    static char page[100 * 300];
    int window = __create_window("Frames", 0, 0, 1920, 1080);
    __set_window_update_flag(window, 0); /* else writing paints now and then */
    for (int i = 0; i < count; i++) {
        int length = 0;
        for (int row = 0; row < 80; row++) {
            for (int column = 0; column < 230; column++)
                page[length++] = (char)('!' + (row * 7 + column * 3 + i) % 90);
            page[length++] = '\n';
        }
        __win_coua(window, page, length);
        show_at_once();
        double begin = now();
        __update_window(window);
        times[taken++] = now() - begin;
    }
    printf("frame %.4f\n", quantile(times, taken, 0.5));
    __destroy_window(window);
}

int main(int argc, char** argv) {
    const char* mode = argc > 1 ? argv[1] : "start";
    int count = argc > 2 ? atoi(argv[2]) : 0;
    if (strcmp(mode, "open") == 0) open_windows(count);
    if (strcmp(mode, "key") == 0) {
        two_hundred('k');
        intervals("key", 0.99);
    }
    if (strcmp(mode, "resize") == 0) {
        two_hundred('r');
        intervals("resize", 0.5);
    }
    if (strcmp(mode, "updates") == 0) updates(count);
    if (strcmp(mode, "open-close") == 0) open_close(count);
    if (strcmp(mode, "lines") == 0) lines(count);
    if (strcmp(mode, "frames") == 0) frames(count);
    fflush(stdout);
    return 0;
}
