/* What is said of calls that are wrong, and whether the program goes on. Each call runs in a
 * process of its own; its window closes as soon as it stands. */
#include <stdio.h>
#include <tarn/winio.h>

#include "apart.h"

struct call {
    const char* format;
    const char* descriptor; /* null: an ordinary call, which brings no types */
    const void* words[5];
    double doubles[3];
};

static int32_t number = 3, other = 4;
static double real = 1.5;
static double no_number = __builtin_nan("");
static char name[16] = "abc", spaces[4] = "   ", codes[4];
static const char* const items[] = {"one", "two", NULL};
static int32_t stay(void) {
    return 2;
}
#define INT(value) ((const void*)(intptr_t)(value))
#define CALL ((const void*)(intptr_t)stay)

static const struct call unknown_codes[] = {
    {"abc %qq def", NULL, {0}, {0}}, {"%nl%^`~qz[option]", NULL, {0}, {0}},
    {"ends in %", NULL, {0}, {0}},   {"%1", NULL, {0}, {0}},
    {"%r", NULL, {0}, {0}},          {"%8+wd", "*CI", {INT(1)}, {0}},
    {"%r\xC3\xA4", NULL, {0}, {0}},  {"%ZZZZ", NULL, {0}, {0}},
    {"%dt", NULL, {0}, {0}},
};
/* A text in the place of a call-back: the message says what should stand there. */
static const struct call call_backs[] = {
    {"%^rd", NULL, {&number, "NO"}, {0}},
    {"%^rf", NULL, {&real, "NO"}, {0}},
    {"%^rs", NULL, {name, INT(16), "NO"}, {0}},
    {"%^re", NULL, {name, INT(16), "NO"}, {0}},
    {"%^tt[A]", NULL, {"NO"}, {0}},
    {"%^bn[A]", NULL, {"NO"}, {0}},
    {"%^ib", NULL, {"/A", &number, "EXIT", "NO"}, {0}},
    {"%ib", NULL, {"/A", &number, "NO"}, {0}},
    {"%^2mb", NULL, {&number, &number, "NO"}, {0}},
    {"%ac[F3]", NULL, {"NO"}, {0}},
    {"%mn[A]", NULL, {"NO"}, {0}},
    {"%`mn", NULL, {"[A]", "NO"}, {0}},
    {"%`pm", NULL, {"[A]", "NO"}, {0}},
    {"%^1.1tb", "*C*C*C*C*I*C", {"a", "b", "c", &number, "NO"}, {0}},
    {"%^1.1tx", "*C*C*CII*C", {spaces, codes, INT(3), INT(1), "NO"}, {0}},
};
static const struct call arguments[] = {
    {"%rd", "*C*F", {&real}, {0}},
    {"%rd", "*CI", {INT(3)}, {0}},
    {"%rd", "*CF", {0}, {1.0}},
    {"%rf", "*C*I", {&number}, {0}},
    {"%rs", "*C*I", {&number}, {0}},
    {"%rs", "*C*C", {name}, {0}},
    {"%rd%rf", "*C*I", {&number}, {0}},
    {"%wd", "*C", {0}, {0}},
    {"%*wd", "*C*C", {name}, {0}},
    {"%wf", "*CI", {INT(3)}, {0}},
    {"%wd", "*CF", {0}, {1.0}},
    {"%ca@", "*CI", {INT(3)}, {0}},
    {"%10.2ls", "*C*C*I", {name, &number}, {0}},
    {"%20.4cw", "*C*I", {&number}, {0}},
    {"%~bt[OK]", "*CI", {INT(1)}, {0}},
    {"%^bt[OK]", "*C*I", {&number}, {0}},
    {"%^bt[OK]", "*C*C", {"NO_SUCH_ACTION"}, {0}},
    {"%^bt[OK]", NULL, {"NO_SUCH_ACTION"}, {0}},
    {"%ga", "*C*I", {&number}, {0}},
    {"%dl", "*CI*E", {INT(3), CALL}, {0}},
    {"text", "*C*I", {&number}, {0}},
    {"%rd", "*C*I*I", {&number, &other}, {0}},
    {"%wf", "*CF", {0}, {__builtin_nan("")}},
    {"%fl", "*CFF", {0}, {__builtin_inf(), 1.0}},
    {"%^bt[A]", NULL, {"EXITS"}, {0}},
    {"%^bt[A]", NULL, {"BEEP[loud]"}, {0}},
    {"%^bt[A]", NULL, {"BEEP[hand"}, {0}},
    {"%^bt[A]", "*C*C*E", {"+", CALL}, {0}},
    {"%^bt[A]", "*C*C*E*I", {"+", CALL, &number}, {0}},
    {"%^bt[A]", "*C*C*F*I", {"SET", &number, &number}, {0}},
    {"%2ga%2`ga", "*C*I*I*I*I", {&number, &other, &number, &other}, {0}},
    {"%^bt[A]", "*C*CI", {"PRINTER_OPEN", INT(6)}, {0}},
    {"%df", "*CF", {0}, {__builtin_nan("")}},
    {"%rf", "*C*F", {&no_number}, {0}},
    {"%20.3`eb", "*C*CI*I", {name, INT(16), &number}, {0}},
};
static const struct call modifiers[] = {
    {"%^nl", NULL, {0}, {0}},     {"%`nl", NULL, {0}, {0}},
    {"%~nl", NULL, {0}, {0}},     {"%^`~ff", NULL, {0}, {0}},
    {"%?bt[OK]", NULL, {0}, {0}}, {"%?bt[OK][help", NULL, {0}, {0}},
    {"%#+-0nl", NULL, {0}, {0}},  {"%`cm[Item]", "*C*C", {"EXIT"}, {0}},
};
static const struct call texts[] = {
    {"%ca", NULL, {0}, {0}},       {"%ca[never closed", NULL, {0}, {0}},
    {"%fn", NULL, {0}, {0}},       {"%bt", NULL, {0}, {0}},
    {"%ca@", "*C*C", {NULL}, {0}}, {"%ac[Ctrl+Nothing]", "*C*E", {CALL}, {0}},
    {"%si%", NULL, {0}, {0}},      {"%ts[big]", NULL, {0}, {0}},
};
static const struct call options[] = {
    {"%ww[nonsense]", NULL, {0}, {0}},
    {"%sy", NULL, {0}, {0}},
    {"x%sy[3d]", NULL, {0}, {0}},
    {"%10.2ls[height=7]", "*C*S*I", {items, &number}, {0}},
    {"%10.2ls[height=7]", "*C**C*I", {items, &number}, {0}},
    {"%10.2ls[h-scrollbar]", "*C**C*I", {items, &number}, {0}},
    {"%10.2ls[icons,colors]", "*C**C*I", {items, &number}, {0}},
    {"%rd[radix=1]", "*C*I", {&number}, {0}},
    {"%rf[radix=2]", "*C*F", {&real}, {0}},
    {"%rd[fmt=5d]", "*C*I", {&number}, {0}},
    {"%rf[fmt=%n]", "*C*F", {&real}, {0}},
    {"%rf[fmt='5.2f']", "*C*F", {&real}, {0}},
    {"%rs[centre_text,right_text]", "*C*CI", {name, INT(16)}, {0}},
    {"%rs[right_text,centre_text]", "*C*CI", {name, INT(16)}, {0}},
    {"%bn[text='never closed]", NULL, {0}, {0}},
    {"%og[gibber]", "*CII", {INT(10), INT(10)}, {0}},
    {"%gr[red,blue]", "*CII", {INT(10), INT(10)}, {0}},
    {"%gr[metafile_resize,user_resize]", "*CII", {INT(10), INT(10)}, {0}},
    {"%ob[rounded,status]%cb", NULL, {0}, {0}},
    {"%em[height=7]%mn[A]", "*C*C", {"EXIT"}, {0}},
    {"%th[scale=9]", "*C*I", {&number}, {0}},
    {"%cd[file]", "*C*C", {NULL}, {0}},
    {"%cd[shortfile]", "*C*C", {NULL}, {0}},
    {"%cd[rootdir]", "*C*C", {NULL}, {0}},
    {"%bg[red]%2mb[left]", "*C*I*I", {&number, &number}, {0}},
    {"%2mb[left]%bg[red]", "*C*I*I", {&number, &number}, {0}},
    {"%10.2el[height=7]", "*C**C*CI", {items, name, INT(16)}, {0}},
    {"%10.2el[vertical_fill=4]", "*C**C*CI", {items, name, INT(16)}, {0}},
    {"%10.2el[font_set=256]", "*C**C*CI", {items, name, INT(16)}, {0}},
    {"%10.2ms[vertical_fill=4]", "*C**C*I", {items, &number}, {0}},
    {"%10.2ls[vertical_fill=*]", "*CF**C*I", {items, &number}, {__builtin_nan("")}},
    {"%10.2el[height=*]", "*CI**C*CI", {INT(5), items, name, INT(16)}, {0}},
    {"%10.2ms[height=*]", "*CI**C*I", {INT(81), items, &number}, {0}},
};
static const struct call colours[] = {
    {"%bg[ff]", NULL, {0}, {0}},     {"%tc[#12]x", NULL, {0}, {0}}, {"%bg[", NULL, {0}, {0}},
    {"%bg[#FF0000", NULL, {0}, {0}}, {"%`tc", "*C*I", {NULL}, {0}},
};
static const struct call boxes[] = {
    {"%ob text", NULL, {0}, {0}},
    {"%cb", NULL, {0}, {0}},
    {"%2.2ob[named_l]", NULL, {0}, {0}},
    {"%ob[named_l]", NULL, {0}, {0}},
    {"%2.2ob[named_l][a]%cb%cb%cb%cb", NULL, {0}, {0}},
    {"%2.2ob[status]%cb%cb%cb%cb", NULL, {0}, {0}},
    {"%ob[no_border,named_l][a]%cb", NULL, {0}, {0}},
    {"%ob%ln%cb", NULL, {0}, {0}},
    {"%ob%bx%cb", "*CF", {0}, {1.0}},
    {"%bx%bx", "*CFF", {0}, {1.0, 1.0}},
    {"%za", NULL, {0}, {0}},
    {"%zz", NULL, {0}, {0}},
    {"%bo", NULL, {0}, {0}},
    {"%eo", NULL, {0}, {0}},
    {"%bo%bo", NULL, {0}, {0}},
    {"%bo%nl", NULL, {0}, {0}},
    {"%ob[no_border,nameless]%cb", NULL, {0}, {0}},
    {"%ob[no_border,scored]%cb", NULL, {0}, {0}},
    {"text & text", NULL, {0}, {0}},
};
static const struct call places[] = {
    {"%cn%cn", NULL, {0}, {0}},
    {"%rj%rj", NULL, {0}, {0}},
    {"%pv%bt[OK]", NULL, {0}, {0}},
    {"%pv%ws", "*C*C", {name}, {0}},
    {"%pv%pv", NULL, {0}, {0}},
    {"%tl", "*CI", {INT(3)}, {0}},
    {"%0tl", NULL, {0}, {0}},
    {"%rp", "*CII", {INT(-5), INT(0)}, {0}},
    {"%rp", "*CII", {INT(0), INT(-5)}, {0}},
    {"%lo", "*CIIII", {INT(0), INT(0), INT(1), INT(1)}, {0}},
    {"%`su", NULL, {0}, {0}},
    {"%1000000000nl", NULL, {0}, {0}},
    {"%9999999999ta", NULL, {0}, {0}},
    {"%9999999999rd", "*C*I", {&number}, {0}},
    {"%9999999999.9999999999rs", "*C*CI", {name, INT(16)}, {0}},
    {"%*rd", "*CI*I", {INT(-2147483647 - 1), &number}, {0}},
    {"%ap", "*CII", {INT(2147483647), INT(2147483647)}, {0}},
    {"%xw%rd", "*CI*I", {INT(2147483647), &number}, {0}},
    {"%hx", "*C*I*I*I", {&number, &number, &number}, {0}},
    {"%2tl", "*CII", {INT(3), INT(3)}, {0}},
    {"%1tl", "*CI", {INT(-3)}, {0}},
    {"%3.5000cw", "*C**S", {NULL}, {0}},
    {"%fn[user_default]%su%`sd", NULL, {0}, {0}},
    {"%pv%gr", "*CII", {INT(10), INT(10)}, {0}},
    {"%pv%dw", "*CI", {INT(10)}, {0}},
    {"%pv%ob%cb", NULL, {0}, {0}},
    {"%pv%bx", "*CF", {0}, {1.0}},
    {"%pt", "*CI", {INT(12)}, {0}},
    {"%fn[No Such Font]x", NULL, {0}, {0}},
};
static const struct call sizes[] = {
    {"%cw", "*C**S", {NULL}, {0}},
    {"%st", "*C*C", {name}, {0}},
    {"%tv", "*C**C*I", {items, &number}, {0}},
    {"%pb", NULL, {0}, {0}},
    {"%300sb", NULL, {0}, {0}},
    {"%mb", NULL, {0}, {0}},
    {"%eb", "*C*CI", {name, INT(16)}, {0}},
    {"%gr", "*CII", {INT(0), INT(10)}, {0}},
    {"%tx", NULL, {0}, {0}},
    {"%rs", "*C*CI", {name, INT(0)}, {0}},
    {"%rs", "*C*CI", {name, INT(-7)}, {0}},
    {"%3sb%10br[panel=5,ms_style][red]", "*C*I*F", {&number, &real}, {0}},
    {"%3.0tx", "*C*C*CII", {spaces, codes, INT(3), INT(1)}, {0}},
    {"%3.1tx", "*C*C*CII", {spaces, name, INT(3), INT(1)}, {0}},
};
static const struct call limits[] = {
    {"%il%rd", "*CII*I", {INT(5), INT(5), &number}, {0}},
    {"%il%rd", "*CII*I", {INT(5), INT(-5), &number}, {0}},
    {"%fl%rf", "*CFF*F", {&real}, {2.0, 1.0}},
    {"%pr", "*C*CI", {"prompt", INT(1)}, {0}},
    {"%rd%pr", "*C*I*CI", {&number, "prompt", INT(0)}, {0}},
    {"%ty[red]", NULL, {0}, {0}},
    {"%rb[A]%pr", "*C*I*CI", {&number, "x", INT(1)}, {0}},
    {"%re%pr", "*C*CI*CI", {name, INT(16), "x", INT(1)}, {0}},
};
static const struct call menus[] = {
    {"%mn", NULL, {0}, {0}},
    {"%mn[]", NULL, {0}, {0}},
    {"%mn[File[Exit]", "*C*C", {"EXIT"}, {0}},
    {"%mn[File[Exit]]]", "*C*C", {"EXIT"}, {0}},
    {"%mn[[Exit]]", "*C*C", {"EXIT"}, {0}},
    {"%mn[|]", NULL, {0}, {0}},
    {"%mn[#File]", "*C*I*C", {&number, "EXIT"}, {0}},
    {"%mn[File,,Help]", "*C*C*C", {"EXIT", "EXIT"}, {0}},
    {"%mn[File]%`mn[A]", "*C*C*C*C", {"EXIT", "text", "EXIT"}, {0}},
    {"%mn[A]", "*C*I", {&number}, {0}},
    {"%cm[Item]%pm[Item]", "*C*C*C", {"EXIT", "EXIT"}, {0}},
    {"%nw", "*CI", {INT(12345)}, {0}},
    {"%rc", "*CI*I", {INT(1), &number}, {0}},
    {"%em[w7]%`mn", NULL, {"[A]", "EXIT"}, {0}},
    {"%?mn[A]", NULL, {"EXIT"}, {0}},
    {"%?mn[A,B][one]", NULL, {"EXIT", "EXIT"}, {0}},
    {"%mn[F[~^A]]", NULL, {&number, "CONTINUE", "EXIT"}, {0}},
    {"%mn[F[^#A]]", NULL, {CALL, &number, "EXIT"}, {0}},
    {"%mn[A& B]", NULL, {"EXIT"}, {0}},
};
static const struct call buttons[] = {
    {"%`bt[A]%`bt[B]", NULL, {0}, {0}},
    {"%bn[OK,default]", NULL, {0}, {0}},
    {"%bn[no_such", NULL, {0}, {0}},
    {"%bb[no_such_icon/Text]", NULL, {0}, {0}},
    {"%bi[no_such_icon]%bt[A]", NULL, {0}, {0}},
    {"%si~", NULL, {0}, {0}},
    {"%ic[no_such_icon]", NULL, {0}, {0}},
    {"%bm[no_such_picture]", NULL, {0}, {0}},
    {"%rb[Choice]", "*C*F", {&real}, {0}},
    {"%bb[Text]", NULL, {0}, {0}},
    {"%bi[no_such_icon]%bb[Text]", NULL, {0}, {0}},
    {"%bb@", "*C*C", {"warnIcon/a\nb"}, {0}},
    {"%bn[text=A,icon=no_such_icon]", NULL, {0}, {0}},
    {"%bn[text=A,icon=warnIcon,colour=red]", NULL, {0}, {0}},
    {"%bn[text=A,notes=b,colour=red]", NULL, {0}, {0}},
    {"%bn[text=A,notes=b,split]", NULL, {0}, {0}},
    {"%^bn[text=A,return=9]", "*C*C", {"EXIT"}, {0}},
    {"%~bt[A]", "*C*I", {NULL}, {0}},
    {"%~bn[A]", "*C*I", {NULL}, {0}},
    {"%ib", "*C*C*I*C", {"no_such/Label", &number, "EXIT"}, {0}},
    {"%?ib", NULL, {"no_such/Label", &number, "EXIT"}, {0}},
    {"%2mb[strings]", "*C*I*I", {&number, &number}, {0}},
    {"%2?mb", "*C*I*I", {&number, &number}, {0}},
    {"%2?mb[strings]@", "*C*I*I*C", {&number, &number, "|a|b"}, {0}},
};
static const struct call windows[] = {
    {"%wi", "*CI", {INT(0)}, {0}},
    {"%wi%wi", "*CII", {INT(1), INT(2)}, {0}},
    {"%qd[name]", NULL, {0}, {0}},
    {"%wr text", NULL, {0}, {0}},
    {"%aw", "*C*I", {&number}, {0}},
    {"%ch", "*C*I", {&number}, {0}},
    {"%fh", "*CI", {INT(77)}, {0}},
    {"%fr%fr", "*CIIII", {INT(50), INT(50), INT(50), INT(50)}, {0}},
    {"%cu[no_such_cursor]%bt[A]", NULL, {0}, {0}},
    {"%mi[no_such_icon]", NULL, {0}, {0}},
};

static int32_t close_at_once(void) {
    return 0;
}

static int32_t run_call(const struct call* c) {
    char format[256];
    snprintf(format, sizeof format, "%s&", c->format);
    const void* const* w = c->words;
    const double* d = c->doubles;
    if (c->descriptor)
        __winio__(c->descriptor, format, w[0], w[1], w[2], w[3], w[4], d[0], d[1], d[2]);
    else
        __winio(format, w[0], w[1], w[2], w[3], w[4], d[0], d[1], d[2]);
    return __winio("%sc", close_at_once);
}

static void run_given(const void* given) {
    run_call(given);
}

static void run_table(const char* kind, const struct call* calls, size_t count) {
    printf("%s\n", kind);
    for (size_t i = 0; i < count; ++i) run_apart(calls[i].format, run_given, &calls[i]);
}
#define RUN(table) run_table(#table, table, sizeof table / sizeof table[0])

int main(void) {
    RUN(unknown_codes);
    RUN(arguments);
    RUN(call_backs);
    RUN(modifiers);
    RUN(texts);
    RUN(options);
    RUN(colours);
    RUN(boxes);
    RUN(places);
    RUN(sizes);
    RUN(limits);
    RUN(menus);
    RUN(buttons);
    RUN(windows);
    return 0;
}
