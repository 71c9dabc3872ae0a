/* Standard actions, alone and in chains, and events whose call-backs tell why they were called. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tarn/text_window.h>
#include <tarn/winio.h>
#include <tarn/winio_menus.h>
#include <tarn/winio_run.h>
#include <tarn/winio_windows.h>

static int number = 5, on, width, height, palette;
static double real = 1.5;
static char name[20] = "hello";
static char cells[] = "abcdef", attributes[6];

static int32_t tell(void) {
    printf("%s", __quillpan_string("CALL_BACK_REASON"));
    if (__quillpan_info("SPIN_CONTROL_USED")) printf(" by the spin");
    printf(", number %d\n", number);
    fflush(stdout);
    return 2;
}

static int32_t send_key(void) {
    __send_accelerator("Ctrl+K");
    __send_accelerator("Ctrl+E"); /* an item of the menu */
    return 2;
}

static int32_t answer(void) {
    printf("%s %s\n", __quillpan_string("CALL_BACK_REASON"), __quillpan_string("MESSAGE_TEXT"));
    __reply_to_text_message("understood");
    return 2;
}

static int32_t send_text(void) {
    char reply[256] = "";
    const int sent = __send_text_message("ListensHere", "hello there", reply) != 0;
    printf("sent %d, reply %s\n", sent, reply);
    printf("to nobody %d\n", __send_text_message("NobodyHere", "hello", reply) != 0);
    return 2;
}

int main(void) {
    void* stream = NULL;
    __winio("%ca[Listener]%nc[ListensHere]%rmlistens%lw", answer, &palette);
    __winio("%ca[Actions]%sz%mn[&Edit[&Keep^Ctrl+E,Cu&t,&Paste]]%ac[Ctrl+K]&", &width, &height,
            tell, "CUT", "PASTE", tell);
    __winio("%dd%^rd%rf%dd%^12rs%^3.2tx[full_mouse_input]%nl&", 2, &number, tell, &real, 1, name,
            20, tell, cells, attributes, 3, 2, tell);
    __winio("%^bt[Set]%^bt[Set real]%^bt[Toggle]%^bt[Chain]%~^bt[Lit]%nl&", "SET", &number, 42,
            "SETF", &real, 2.25, "TOGGLE", &on, "+", "INC", &number, "+", "DEC", &number, tell, &on,
            tell);
    __winio("%^bt[Text]%^bt[About]%^bt[Version]%^bt[Help]%^bt[Lookup]%nl&", "TEXT", "Some text",
            "ABOUT", "About this", "VERSION", "HELP_CONTENTS", "no.hlp", "HELPLOOKUP", "no.chm",
            "word");
    __winio("%^bt[Larger]%^bt[Restore]%^bt[All of it]%^bt[Print]%^bt[Send key]%^bt[Send text]%nl&",
            "MAXIMISE", "RESTORE", "SUPER_MAXIMISE", "PRINTER_OPEN", &stream, tell, send_key,
            send_text);
    const int result = __winio("%cc%^bt[Select]%^bt[Copy]%^bt[Close]%`bt[OK]", "CONFIRM_EXIT",
                               "Really?", "SELECT_ALL", "COPY", "CLOSE");
    printf("result %d, number %d, real %g, on %d\n", result, number, real, on);
    palette = 0;
    __window_update(&palette);
    return 0;
}
