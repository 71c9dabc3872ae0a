/* Format windows: a window from a format string and the program's variables.
 *
 *     #include "tarn/winio.h"
 *
 *     int loan = 1000;
 *     double rate = 4.5;
 *     int button = __winio("%ca[Loan]Amount %rd\nRate %rf\n\n%`bt[OK] %bt[Cancel]", &loan, &rate);
 *
 * Text of the format is shown as it stands; a new line starts a new line of the window. A code is
 * `%`, then modifiers and numbers, then two letters, then what the code reads in the format: an
 * option list `[word,word=value]`, a text `[...]` or `@` (the text is an argument). `%%` is a
 * percent sign.
 *
 * Modifiers, before or behind the numbers: `^` a call-back follows, `~` the address of an int that
 * disables the control while it is 0, `?` help follows in the format as `[...]` or `@`, and the
 * grave accent, which changes what the code means. `0`, `+` and `-` are those of printf.
 * Numbers: `%12.3rf`, or `%*.*rf` with two ints in the arguments.
 *
 * A format that ends in `&` leaves the window open for the next call. The call without it makes the
 * window and, unless `%lw` was there, waits until it is closed.
 *
 * The result: -1 for a call that ends in `&`; 0 for a window left up by `%lw`; otherwise the number
 * of the button that closed the window (from 1, or what `%id` said), the absolute value of a
 * negative call-back result, or 0.
 *
 * A call-back is a function of no arguments. Its result: 0 closes the window, 1 shows all variables
 * anew, 2 does nothing, a negative one closes with that result. A text instead names a standard
 * action: "EXIT", "CONTINUE", "COPY", "+" ...
 *
 * Variables are bound by address and must live as long as the window. `%rd` and the like take int,
 * `%rf` double, `%rs` and `%re` a char array and its length.
 *
 * Errors in a format are reported by a window with the buttons Ignore, Ignore All, Quit and Quit
 * with Trace, on standard error where nobody can answer. Those that a program can't survive (an
 * unknown code, a wrong argument) end it.
 *
 * Pictures have names: "warnIcon", "errorIcon", "infoIcon", "questionIcon", "appIcon", "checkIcon"
 * and the cursors "CURSOR_WAIT", "IDC_HAND" ... are built in; any other is a file in the working
 * folder or beside the program (`%bb[save/&Save]` reads save.ico or save.bmp, `%cu[grip]` grip.cur),
 * or what PROGRAM.rc beside the program says of it (`save ICON "pictures/save.ico"`), the text that
 * resource compilers read. The sounds of "SOUND" are found in the same way (.wav).
 *
 * The codes. I an int, I* the address of an int, F and F* the same for double, S a text, T a text
 * in the format or behind `@`, B a char array (in C with its length as I), L a table of texts ended
 * by a null pointer, H a handle, H* the address of one, C a call-back, K a colour `[red]`,
 * `[#FF8000]` or I (0x00BBGGRR); opts an option list; n and m the numbers.
 *
 *   Text and fonts
 *     %wd I %wx I %wc I %wf F %we F %wg F   a value as text, n.m as printf's
 *     %ws S          a string; with opts or grave as a control of its own
 *     %st S          a string that follows its variable, n wide, m deep
 *     %fn T          font by name; %bf bold, %it italic, %ul underlined (grave: not)
 *     %ts F or [f]   size factor (grave: back); %pt I points; %cs I character set
 *     %sf %fd        the standard font; %fh H by handle; %gf H* its handle; %fb for buttons too
 *     %tc K          text colour; %bg K background (grave: of the next control, ~: of the box)
 *     %su %sd        superscript, subscript (grave ends it); %pd the pound sign
 *   Place
 *     %nl            n new lines; %ff below everything; %ta tab; %tl I.. tab stops
 *     %ap I,I  %rp I,I  %dy F  %xw I  %xd I  %pp I,I,I,I  %lo I,I,I,I
 *     %cn centred, %rj right-justified, %pv this control grows with the window
 *     %ob opts ... %cb   a box of n columns, m rows; %ln a line; %bd F,F,F,F margins; %bx F a pane
 *   Values
 *     %rd I*  %rf F*  %rs B  %re B   a box for an integer, a number, a text, several lines
 *     %il I,I  %fl F,F  limits; %dd I  %df F  spin step; %co opts; %pr S,I prompt and colour
 *     %rb T,I*       a radio button; %ga I*.. (n of them) a gang
 *     %ls L,I*       list, n wide and m rows (grave: drop-down); %lb the same, m wide and n rows
 *     %ms L,I*  %el L,B  %lv I,I,L,I*,I*  %bv I,I,L,I*  %tv L,I*  %pb %dp %fp %tp %ep %up
 *     %sl F*,F,F  slider; %br F*,K bar; %ld I* %cl I* %dt %mc
 *   Buttons and menus
 *     %bt T  %bb T  %tt T  %bn opts   buttons (grave: the default one); %bc K %bu K %bi T their look
 *     %tb %ib %mb    blocks of buttons and toolbars; %id I number of the next button
 *     %mn[..] menu, %pm[..] popup, %cm[..] of the next control, %sm[..] system menu, %em opts
 *     %ac T,C key; %es ESC closes; %av the version; %rc I,C; %gc C,C
 *   Window
 *     %ca T caption; %sy opts  %ww opts style; %sz I*,I* size; %sp I,I place; %bg K
 *     %lw I* leave it up; %cv I* its variable; %aw I* %fr I,I MDI; %ch I* embedded; %sh I* %ps
 *     %pa H parent; %ph H owner; %hw H* handle; %lc H* of the last control; %ud H* user data
 *     %cc C at the close (grave: after it); %sc C at the start; %mv C moved (grave: re-sized)
 *     %dl F,C timer; %mg I,C message; %dr C files dropped; %rm C text from a program; %ew C
 *     %hs %vs I,I,I* its scroll bars; %hx %vx I*,I*,I* the next control's; %cu %dc cursors
 *     %mi T icon; %nc T class; %wp T wallpaper; %ti T,T,C; %th %bh tool help; %he %sb; %if focus
 *     %ss T,I* what later boxes hold is kept under that key from run to run, while the int isn't 0
 *     %nr %nd %nw H %zc %wt %sv %ns %gd %dg I,I %de H
 *   Files
 *     %fs T          where FILE_OPENR and FILE_OPENW begin ("data/" "*.dat"); %ft T,T a filter: its
 *                    name and patterns ("*.dat;*.txt"). Both count for the codes behind them.
 *     "FILE_OPENR" "FILE_OPENW", "FILE_OPENR[Title]"   B, C: the dialog; a name that the user
 *                    chooses goes into B, and C runs with the reason FILE_OPEN
 *     %cd opts       the dialog by itself, one call or several; 1: chosen. Its words read: file,
 *                    shortfile, rootdir a char array (no length: 260 bytes, file 260 * maxfiles),
 *                    initialdir S, flags I, maxfiles I (before file), filter_item_selected I*,
 *                    hwndowner H. Of several files, file gets the folder and the names, a zero
 *                    behind each and one more behind all.
 *   Text window, drawing, documents
 *     %cw            n columns, m rows; C: the address of a stream; Fortran: a unit
 *     %gr I,I  %dw  %og I,I  %pl I,I..  %ht T  %eb B  %wb T  %eq T,I,I
 *     %si! %ic T %bm T %im T %fi T %gi T %gb T,I,I %gp I*,I* %uw pictures and marks
 */
#ifndef TARN_WINIO_H
#define TARN_WINIO_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Calls ---- */
int32_t __winio(const char* format, ...);
int32_t __window_printf(const char* format, ...); /* the same */
/* With the types of the arguments: one token each, the format's first. `I` an int, `J` a 64-bit
 * integer, `F` a double, `C` a character, `V` a null pointer or a value of any kind; `*I *J *F *C
 * *S *E` addresses of those, of a structure, of a function; `**C **S` addresses of addresses. An
 * argument that doesn't fit its code is reported with its number. */
int32_t __winio__(const char* descriptor, const char* format, ...);
int32_t __winio____C(const char* descriptor, const char* format, ...);
/* Calls of Fortran: `count` arguments, the format's first, all by reference; behind the last the
 * lengths of the texts among them, the format's first, as words of pointer size. */
int32_t WINIO_h(int32_t count, const char* format, ...) TARN_LINK_NAME("WINIO#");
int32_t WINDOW_PRINTF_h(int32_t count, const char* format, ...) TARN_LINK_NAME("WINDOW_PRINTF#");
int32_t WINDOW_PRINTF_hh(const char* descriptor, int32_t count, const char* format, ...)
    TARN_LINK_NAME("WINDOW_PRINTF##");

/* ---- Arguments of the next call, one by one ----
 * For languages that can't pass a variable list. The next call takes all of them; one that brings
 * a descriptor of its own is refused. */
void __add_winio_integer(int32_t value);
void __add_winio_integer_ptr(int32_t* variable);
void __add_winio_int64_ptr(long long* variable);
void __add_winio_float(double value);
void __add_winio_float_ptr(double* variable);
void __add_winio_character(const char* text, int32_t length); /* a null text: only the length */
void ADD_WINIO_CHARACTER_h(const char* text, int32_t length)
    TARN_LINK_NAME("ADD_WINIO_CHARACTER#");
void __add_winio_character_ptr(const char* text);
void __add_winio_character_ptr_ptr(const char* const* texts);
void __add_winio_function_ptr(int32_t (*function)());

/* ---- Options ahead of a code ----
 * `__winop("%bn[text='Go on']")` adds to the next %bn or %pl. The others put a value before the
 * last bracket: `__winop_int("%pl[width]", 2)`. */
void __winop(const char* text);
void __winop_int(const char* text, int32_t value);
void __winop_flt(const char* text, double value);
void __winop_clr(const char* text, int32_t colour); /* 0x00BBGGRR */
void __winop_str(const char* text, const char* value);
void __winop_chr(const char* text, const char* value); /* its address */
void __winop_hdl(const char* text, int32_t handle);
void __winop_fun(const char* text, void (*function)()); /* its address */

/* ---- Settings for later windows ----
 * Codes with their values in the format itself. __winstyle: %bg %tc %bf %it %ul %fb %es %fn %sy %ts
 * %ww, 1023 characters over all calls. __winclass, before anything else of the library: %mi %cu %fn
 * %nc %bg %ts. */
void __winstyle(const char* format);
void __winclass(const char* format);

/* ---- Checking formats without a window ----
 * While `report` (2048 bytes; null ends it) is set, calls are those of Fortran, are scanned and
 * checked in full, make no window and run nothing; the first message goes to `report`, which is
 * emptied here. `names`, one a argument behind the format, are used in messages; null for none.
 * `wide` non-zero: handles have 64 bits. */
void __winio_check(char* report, const char* const* names);
void __winio_check_ex(char* report, const char* const* names, int32_t wide);
/* The next window is scanned and laid out but not made. A message ends its construction and goes
 * to `hook`. */
void __set_passive_winio(void (*hook)(const char* text));

/* ---- The rest ---- */
/* The option words of a code, ended by a null pointer; null for a code without. `code` is first
 * letter * 256 + second letter, lower case. */
const char* const* get_quillpan_options(int32_t code);
/* A colour by its name or as #RRGGBB; -1 and a message for none. */
int32_t __get_quillpan_colour(const char* name);
/* A button's face as a bitmap, from a bitmap (0: none) and a label (null: none, `\n` a new line).
 * `state`: 0 grey, 1 up, 2 down, 3 checked. `style`: 0 plain, 1 flat, and without colours unless
 * `coloured`, 2 flat with the pointer over it. What has the colour 0xC0C0C0 or that of the bitmap's
 * first pixel is background. `width` and `height` (null: none) are the least that is wanted, and
 * get what it has; `min_lines` lines of label have room. `measure_only`: only that. The result is
 * a handle for ``%`bm``; 0 for none. */
int32_t __make_button_image(int32_t bitmap, int32_t state, int32_t style, int32_t coloured,
                            const char* text, int32_t* width, int32_t* height, int32_t min_lines,
                            int32_t measure_only);
/* Brushes and pens that are kept are deleted at the start of a window when there are more than
 * `limit` of them and of fonts; 0, as at the start, for never. */
void __max_gdi_objects(int32_t limit);
/* Texts of later windows are UTF-8 (non-zero) or of code page 1252. At the start the locale says
 * which. */
void __enable_utf8(int32_t on);
/* What the first use of the library does. */
void __initialise_quillpan_plus(void);

#ifdef __cplusplus
}
#endif
#endif
