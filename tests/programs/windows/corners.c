/* Sizes asked for, menus that are taller than the screen, texts longer than 16 bits count. */
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

/* ---- Typing goes on at its place, and is undone as one, also where call-backs look on. */
static int typed;

static int note(void) {
    ++typed;
    return 2;
}
static void long_text(void) {
    static char text[100000];
    memset(text, 'x', 70000);
    int button = __winio("%ca[Text]%^40.4re%bt[OK]", text, 100000, note);
    printf("text %d: %d times, %s\n", button, typed, text + 70000);
}

int main(void) {
    sizes();
    long_text();
    long_menu();
    return 0;
}
