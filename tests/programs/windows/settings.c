/* Settings that a window keeps: the second window begins with what the first was left with. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tarn/winio.h>

int main(void) {
    setenv("XDG_CONFIG_HOME", realpath(".", NULL), 1);
    for (int round = 0; round < 3; ++round) {
        int count = 1, bold = 0, keep = round < 2;
        double rate = 0.5;
        char name[40] = "", notes[80] = "";
        int button = __winio("%ca[Form]%ss[Test\\Form]%il&", &keep, 0, 20);
        button = __winio("Count %rd\nRate %rf\nName %rs\nNotes %20.2re\n%rb[Bold]\n%bt[OK]", &count,
                         &rate, name, 40, notes, 80, &bold);
        for (char* p = notes; *p; ++p)
            if (*p == '\r' || *p == '\n') *p = '|';
        printf("%d: %d %g '%s' '%s' %d\n", button, count, rate, name, notes, bold);
    }
    return 0;
}
