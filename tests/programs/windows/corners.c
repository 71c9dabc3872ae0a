/* Sizes asked for, and menus that are taller than the screen. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tarn/winio.h>
#include <tarn/winio_run.h>

/* ---- The variables of %sz ask for a size, and tell the one that the window has. */
static int width = 300, height = 200;

static int started(void) {
    printf("%d x %d\n", width, height);
    return 2;
}
static void sizes(void) {
    int button = __winio("%ca[Size]%ww[not_fixed_size]%sz%sc%bt[OK]", &width, &height, started);
    printf("size %d\n", button);
}

/* ---- The pointer scrolls a menu that is taller than the screen. */
static int chosen(void) {
    const char* item = __quillpan_string("CURRENT_MENU_ITEM");
    int number = atoi(strstr(item, "Item") + 4);
    printf("%s\n", number > 40 && number < 399 ? "an item below" : item);
    return 2;
}
static void long_menu(void) {
    static char menu[20000];
    size_t length = (size_t)sprintf(menu, "[Long[Item 0");
    for (int i = 1; i < 400; ++i) length += (size_t)sprintf(menu + length, ",Item %d", i);
    strcpy(menu + length, "]]");
    printf("menu %d\n", __winio("%ca[Menu]%sp%`mn%bt[OK]", 0, 0, menu, chosen));
}

int main(void) {
    sizes();
    long_menu();
    return 0;
}
