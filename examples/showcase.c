/* Most of what a form can hold, in one window. */
#include <stdio.h>
#include <tarn/winio.h>

static char name[40] = "Ada Lovelace", word[40] = "secret", nickname[40] = "",
            title[40] = "Countess";
static int copies = 5, number = 123456, unused = -7, never = 0, wrap = 1;
static int fast = 1, careful = 0, thorough = 0, log_it = 1, backups = 0;
static double rate = 3.25;

static int noted(void) {
    puts("noted");
    return 1;
}

static void fields(void) {
    __winio("%1tl%ob[named_l][Fields]&", 14);
    __winio("Name%ta%16rs\n&", name, 40);
    __winio("Password%ta%16rs[password]\n&", word, 40);
    __winio("Title%ta%16rs[centre_text]\n&", title, 40);
    __winio("Prompt%ta%16rs%pr\n&", nickname, 40, "Your nickname", 0x808080);
    __winio("Copies%ta%il%dd%16rd%`il\n&", 0, 500, 1, &copies);
    __winio("Rate%ta%fl%df%16rf%`fl\n&", 0.0, 100.0, 0.5, &rate);
    __winio("Read only%ta%`16rd\n&", &number);
    __winio("Disabled%ta%dd%~16rd%cb&", 1, &unused, &never);
}

static void choices(void) {
    __winio("%ob[named_c][Choices]%rb[Fast]\n%rb[Careful]\n%rb[Thorough]%3ga\n&", &fast, &careful,
            &thorough, &fast, &careful, &thorough);
    __winio("%`rb[Write a log]\n%`rb[Keep backups]\n%~`rb[Not for you]\n%~rb[Nor this]%cb&",
            &log_it, &backups, &never, &never, &never, &never);
}

static void signs(void) {
    __winio("%ob[named_r][Signs]%si! %si? %siI %siX%cb&");
}

static void boxes(void) {
    __winio("%ff%nl%ob[panelled]Panelled%cb%ob[thin_panelled]Thin%cb%ob[scored]Scored%cb&");
    __winio("%ob[raised]Raised%cb%ob[depressed]Depressed%cb%ob[rounded]Round%cb%`obShaded%cb%ff&");
}

static void buttons(void) {
    __winio("%nl%bn[Options,split] %bn[Colour,colour=white,bk_colour=#7040B0] %tt[Tool] &");
    __winio("%~tt[No tool]%ff%nl%`9bt[Default] %^9bt[Plain] %~9bt[Grey] &", &never, noted, &never);
    __winio("%bc[#C02030]%bu[white]%9bt[Coloured] %bc[#205030]%9bt[Face] %bu[red]%9bt[Text]%ff &");
}

int main(void) {
    __winio("%ca[Showcase]%mn[&File[&New^Ctrl+N,|,E&xit],&Edit[~&Undo^Ctrl+Z,#&Wrap]]&", noted,
            "EXIT", &never, noted, &wrap, noted);
    fields();
    choices();
    signs();
    boxes();
    buttons();
    __winio("%2.1ob[status]Ready%cbLine 3, column 14%cb");
    return 0;
}
