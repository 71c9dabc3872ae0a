/* Several files from one dialog, and a variable that has no room for them. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tarn/winio.h>

int main(void) {
    char names[3 * 260] = "";
    int filter = 2;
    if (system("mkdir -p many && touch many/a many/b many/c.x") != 0) return 1;
    int result = __winio("%cd[title=Several,maxfiles,file,initialdir,showreadonly,filter='X|*.x',"
                         "filter='All (*)',filter_item_selected]",
                         3, names, "many", &filter);
    printf("%d filter %d\n", result, filter);
    const char* folder = strrchr(names, '/');
    printf("%s", folder ? folder : "none");
    for (const char* at = names + strlen(names) + 1; *at; at += strlen(at) + 1) printf(" %s", at);
    printf("\n");
    result = __winio("%cd[filter=bad,file]", (char*)0);
    printf("%d\n", result);
    return 0;
}
