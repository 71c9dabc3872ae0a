/* Windows in windows: modal ones from call-backs, one that stays up, one that closes itself. */
#include <stdio.h>
#include <tarn/winio.h>
#include <tarn/winio_run.h>

static int value = 5, control, ticks, refused;

static int ask(void) {
    int answer = __winio("%ca[Question]Really?\n%bt[&Yes]%bt[&No]");
    printf("answer %d\n", answer);
    return 2;
}

static int nested(void) {
    int inner = 1;
    int result = __winio("%ca[Inner]%rd%^bt[&Ask]%bt[OK]", &inner, ask);
    printf("inner %d, result %d\n", inner, result);
    value += inner;
    return 1;
}

static int tick(void) {
    return ++ticks == 3 ? 0 : 2; /* 0 closes the window */
}

static int seven(void) {
    return -7; /* closes, and 7 is the result */
}

static int keep_once(void) {
    return refused++ == 0; /* not 0: the window stays */
}

static int close_palette(void) {
    control = 0;
    __window_update(&control);
    printf("palette %d\n", control);
    return 1;
}

int main(void) {
    printf("outer %d\n", __winio("%ca[Outer]%rd%^bt[&Nested]%bt[&Done]", &value, nested));
    printf("value %d\n", value);

    printf("modeless %d\n", __winio("%ca[Palette]Hello%lw", &control));
    printf("control %d\n", control);
    printf("host %d\n", __winio("%ca[Host]%^bt[&Close palette]%bt[&Done]", close_palette));

    printf("timed %d\n", __winio("%ca[Timed]Wait%dl", 0.02, tick));
    printf("ticks %d\n", ticks);
    printf("seven %d\n", __winio("%ca[Seven]%^bt[&Seven]", seven));
    printf("kept %d\n", __winio("%ca[Kept]%cc%bt[&Close]", keep_once));
    printf("refused %d\n", refused);

    int a = 0;
    printf("chain %d\n", __winio("%ca[Chain]%rd%^bt[&Go]", &a, "+", "SET", &a, 41, "+", "INC", &a,
                                 "EXIT"));
    printf("a %d\n", a);
    return 0;
}
