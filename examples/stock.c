/* Fortran's input and output in a C program: statements of the native dialect, called by hand.
 *
 *     tarncc stock.c -o stock && ./stock
 */
#include <stdio.h>
#include <string.h>
#include <tarn/io.h>

static const int32_t one = 1;
static const int32_t console = 6;

static const uint16_t unit_number = TARN_SPECIFIER(TARN_UNIT, TARN_INTEGER4);
static const uint16_t format_text = TARN_SPECIFIER(TARN_FORMAT_TEXT, TARN_CHARACTER);
static const uint16_t internal_file = TARN_SPECIFIER(TARN_INTERNAL_FILE, TARN_CHARACTER);
static const uint16_t io_status = TARN_SPECIFIER(TARN_IOSTAT, TARN_INTEGER4);

struct article {
    char name[10]; /* blank-filled, as a CHARACTER*10 is */
    int32_t pieces;
    double price;
};

/* READ (line, '(A10,I6,F10.0)', IOSTAT=status) name, pieces, price */
static int32_t read_article(const char* line, struct article* article) {
    static const int16_t words = 6;
    static const char format[] = "(A10,I6,F10.0)";
    int32_t status = 0;
    RSF1_hh(&words, &internal_file, line, &format_text, format, &io_status, &status,
            (intptr_t)strlen(line), (intptr_t)strlen(format));
    CH_h_RSF(article->name, &one, sizeof article->name);
    I4_h_RSF(&article->pieces, &one);
    D8_h_RSF(&article->price, &one);
    WSF2_h();
    return status;
}

/* WRITE (6, '(1X,A10,I6,F10.2,1X,1PE12.4)') name, pieces, price, pieces * price */
static void print_article(const struct article* article) {
    static const int16_t words = 4;
    static const char format[] = "(1X,A10,I6,F10.2,1X,1PE12.4)";
    double value = article->pieces * article->price;
    WSF1_hh(&words, &unit_number, &console, &format_text, format, (intptr_t)strlen(format));
    CH_h_WSF(article->name, &one, sizeof article->name);
    I4_h_WSF(&article->pieces, &one);
    D8_h_WSF(&article->price, &one);
    D8_h_WSF(&value, &one);
    WSF2_h();
}

/* WRITE (6, *) text, values */
static void print_list(const char* text, const double* values, int32_t count) {
    static const int16_t words = 2;
    WSF1_hh(&words, &unit_number, &console);
    CH_h_WSF(text, &one, (intptr_t)strlen(text));
    D8_h_WSF(values, &count);
    WSF2_h();
}

int main(void) {
    static const char* const lines[] = {"screw        250      0.04", "nut          2S0      0.03",
                                        "washer       400     0.015"};
    double total = 0;
    for (int i = 0; i < 3; ++i) {
        struct article article;
        int32_t status = read_article(lines[i], &article);
        if (status != 0) {
            printf(" line %d is no good (status %d)\n", i + 1, (int)status);
            fflush(stdout);
            continue;
        }
        print_article(&article);
        total += article.pieces * article.price;
    }
    print_list("total", &total, 1);
    return 0;
}
