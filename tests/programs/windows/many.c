/* Windows by the hundred: each kind of control, menus, timers, windows in windows, and windows that
 * go while a call-back of theirs runs. The memory of the process must not grow with their number.
 *
 * The program writes the script of its events by itself, as long as its rounds need it, and begins
 * again with that script. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tarn/text_window.h>
#include <tarn/winio.h>
#include <tarn/winio_menus.h>
#include <tarn/winio_run.h>
#include <tarn/winio_windows.h>
#include <unistd.h>

enum { windows_of_a_round = 7, default_rounds = 30 };

static const char script_of_a_round[] =
    "focus \"Count\"\nkey Ctrl+A\ntype \"17\"\n"
    "focus \"Name\"\ntype \"a long name that goes past the end of its buffer\"\nkey Ctrl+Z\n"
    "click \"Choice B\"\n"
    "menu \"File\" \"Nested\"\n"
    "expect window \"Nested\"\nwait 12ms\n"
    "click \"Ask\"\nexpect window \"Question\"\nkey Escape\n"
    "click \"Store\"\n"
    "click \"OK\"\n"
    "expect window \"Form\"\n"
    "key F5\n"
    "click \"Leave\"\n"
    "expect window \"Over\"\n"
    "click \"Close both\"\n"
    "expect window \"Self\"\n"
    "click \"Away\"\n";

static int count, choice_a, choice_b, enabled = 1, palette, form, self, ticks, keys, asked, stored;
static double amount;
static char name[12], notes[40];
static int32_t text_pane;

static int tick(void) {
    __win_printf(text_pane, "tick %d\n", ++ticks);

    return 2;
}

static int ask(void) {
    asked += __winio("%ca[Question]%si?Really?\n\n%es%`bt[&Yes]%bt[&No]") == 0;
    return 2;
}

/* The variable belongs to the window outside, which shows it at once. */
static int store(void) {
    count = 41;
    amount = 1.25;
    strcpy(name, "stored");
    __window_update(&count);
    __window_update(&amount);
    __window_update(name);
    stored += count == 41;
    return 1;
}

static int nested(void) {
    double limited = 5;
    __winio("%ca[Nested]%dl%fl%df%10rf\n&", 0.001, tick, 0.0, 10.0, 0.5, &limited);
    __winio("%ob[scored]%^bt[&Ask]%cb%^bt[&Store]%bt[OK]", ask, store);
    return 2;
}

static int key(void) {
    ++keys;
    __win_printf(text_pane, "key %d, ticks %d\n", keys, ticks);
    enabled = !enabled;
    return 1;
}

/* The window under this one goes first, while the call-back that opened this one runs. */
static int close_both(void) {
    form = 0;
    __window_update(&form);
    return 0;
}

static int leave(void) {
    __winio("%ca[Over]%^bt[Close both]", close_both);
    return 1;
}

static int away(void) {
    self = 0;
    __window_update(&self);
    palette = 0;
    __window_update(&palette);
    return 1;
}

static void text_window(void) {
    const int32_t window = __create_window("Log", 10, 10, 300, 200);
    for (int line = 0; line < 60; ++line) __win_printf(window, "line %d\n", line);
    __destroy_window(window);
}

static void one_round(void) {
    count = 3, amount = 2.5, choice_a = 1, choice_b = 0, enabled = 1;
    strcpy(name, "abc"), strcpy(notes, "one\ntwo");
    const char* items[] = {"first", "second", NULL};
    int chosen = 1;
    __winio("%ca[Palette]%ob[named][Tools]%ws%cb%20st%lw", "Hello", "follows", &palette);
    __winio("%ca[Form]%cv%mn[&File[&Nested,|,~&Grey,E&xit],&Help]%ac[F5]&", &form, nested, &enabled,
            "CONTINUE", "EXIT", "CONTINUE", key);
    __winio("Count %il%dd%rd%ta%tcAmount %rf\n&", 0, 100, 1, &count, 255, &amount);
    __winio("Name %10rs%nlNotes %20.3re\n&", name, (int)sizeof name, notes, (int)sizeof notes);
    __winio("%2ga%ob[rounded]%rb[Choice A]%nl%~`rb[Choice B]%cb&", &choice_a, &choice_b, &choice_a,
            &choice_b, &enabled);
    __winio("%10.2ls%ff%bf%ts%fn[Liberation Serif]Title%sf%nl%ln%nl%pv%`30.4cw&", items, &chosen,
            1.5, NULL, &text_pane);
    __winio("%nl%rj%?^tt[Toolbar][Helps]%^bt[&Leave]%sz", "CONTINUE", leave, &count, &chosen);
    text_window();
    __winio("%ca[Self]%dl%cv%^bt[Away]", 0.001, tick, &self, away);
}

static long resident_pages(void) {
    long total = 0, resident = 0;
    FILE* from = fopen("/proc/self/statm", "r");
    if (from == NULL || fscanf(from, "%ld %ld", &total, &resident) != 2) abort();
    fclose(from);
    return resident;
}

static void begin_again(int rounds, char** arguments) {
    FILE* to = fopen("many.script", "w");
    if (to == NULL) abort();
    for (int i = 0; i < rounds; ++i) fputs(script_of_a_round, to);
    fclose(to);
    setenv("TARN_EVENTS", "many.script", 1);
    execv("/proc/self/exe", arguments);
    abort();
}

int main(int argc, char** arguments) {
    const int rounds = argc > 1 ? atoi(arguments[1]) : default_rounds;
    if (getenv("TARN_EVENTS") == NULL) begin_again(rounds, arguments);
    long early = 0;
    for (int i = 0; i < rounds; ++i) {
        one_round();
        if (i == rounds / 10 + 5) early = resident_pages();
    }
    const long grown = (resident_pages() - early) * (sysconf(_SC_PAGESIZE) / 1024);
    printf("asked %d, stored %d, keys %d, ticked %d\n", asked == rounds, stored == rounds,
           keys == rounds, ticks > 0);
    printf("flat %d\n", grown < 400);
    fprintf(stderr, "%d windows, %ld kB more, %d ticks\n", rounds * windows_of_a_round, grown,
            ticks);
    return 0;
}
