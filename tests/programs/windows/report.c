/* The windows of a report, opened by a program for a text of its own. */
#include <stdio.h>
#include <string.h>
#include <tarn/exceptions.h>
#include <tarn/winio.h>

static int asked(void) {
    char name[200] = "offered";
    const char filter[] = "Logs\0*.log\0";
    const int got = get_file_names(0, "Where to", name, sizeof name, filter, "log");
    printf("file %d %s\n", got, strrchr(name, '/') ? strrchr(name, '/') + 1 : name);
    char tiny[12] = "";
    printf("too small %d\n", get_file_names(0, "Where to", tiny, sizeof tiny, filter, "log"));
    return 0;
}

int main(void) {
    struct tarn_machine_context machine = {TARN_CONTEXT_INTEGER, sizeof machine, {0x1234}};
    machine.instruction = (uint64_t)main;
    int n = 1;
    __winio("%ca[Own]%rd%lw&", &n, &n);
    __winio("");
    printf("plain %d\n", __showExceptiondlg("*** Words\n    more words\n", NULL));
    printf("again %d\n", __showRegisterDialog(0));
    printf("machine %d\n", __showExceptiondlg("Stopped\n", &machine));
    return asked();
}
