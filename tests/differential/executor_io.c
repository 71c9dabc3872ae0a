// Reads the cases of a differential run, has executor.F90 perform each, and writes what came of
// it. The run-time under test is never asked to read a case or to write a result.
//
//     executor CASES RESULTS FIRST
//
// CASES has one case a line; words are parted by one blank. Text is a word that begins with `"`,
// where %XX stands for a byte that is no printing character, a blank or `%`. An item is its type
// and its bits in hexadecimal, as in `r8:3ff0000000000000`, or its text, as in `c1"abc`.
//
//     w MODES FMT COUNT SIZE ITEM...            WRITE to COUNT internal records of SIZE
//     l MODES COUNT SIZE ITEM...                the same, list-directed
//     r MODES FMT COUNT SIZE RECORD... ITEM...  READ from internal records
//     d MODES COUNT SIZE RECORD... ITEM...
//     W FMT COUNT SIZE ITEM...                  records of character kind 4; FMT "* is a list
//     R FMT COUNT SIZE RECORD... ITEM...
//     o UNIT MODES STATUS ACCESS FORM ACTION POSITION RECL ENCODING
//     c UNIT STATUS          p UNIT HOW         q UNIT (INQUIRE)
//     x UNIT ADVANCE FMT ITEM...                X UNIT ITEM...
//     y UNIT ADVANCE FMT ITEM...                Y UNIT ITEM...
//     a UNIT rec|pos PLACE FMT ITEM...          b ... (READ)
//     u UNIT rec|pos|- PLACE ITEM...            v ... (READ)
//     n MODES PLACE COUNT SIZE ARENA VARIABLE...  NAMELIST, see executor_namelist.c
//     m MODES PLACE COUNT SIZE RECORD... ARENA VARIABLE...
//     f UNIT TEXT   makes the unit's file       g UNIT   shows the file's bytes
//     e             ends a sequence of statements on units: closes them, removes the files
//
// MODES is `-` where the statement names none, else six letters: blank n z, decimal p c, delim
// n a q, pad y n, round u d z n c p, sign p + s.
//
// RESULTS is a mapped file, so that it is whole up to the case in which a process died: 20 bytes
// with the length of what follows, then one line a case behind one that names the libraries that
// the entries came from. Results start with case number FIRST.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "executor.h"

enum { most_items = 32, longest = 256, types = 19 };
enum { first_unit = 10, last_unit = 13 };

// The arrays of executor.F90.
extern unsigned char ex_i1_[], ex_i2_[], ex_i4_[], ex_i8_[], ex_iq_[], ex_l1_[], ex_l2_[], ex_l4_[],
    ex_l8_[], ex_r4_[], ex_r8_[], ex_ra_[], ex_rq_[], ex_z4_[], ex_z8_[], ex_za_[], ex_zq_[],
    ex_c1_[], ex_c4_[];
extern int32_t ex_has_[most_items][types], ex_length_[most_items];

static const struct {
    char name[3];
    unsigned char* array;
    int stride;  // bytes of an element in memory
    int bytes;   // of them with a value, in each part
    int parts;
} type_table[types] = {
    {"i1", ex_i1_, 1, 1, 1},           {"i2", ex_i2_, 2, 2, 1},   {"i4", ex_i4_, 4, 4, 1},
    {"i8", ex_i8_, 8, 8, 1},           {"iq", ex_iq_, 16, 16, 1}, {"l1", ex_l1_, 1, 1, 1},
    {"l2", ex_l2_, 2, 2, 1},           {"l4", ex_l4_, 4, 4, 1},   {"l8", ex_l8_, 8, 8, 1},
    {"r4", ex_r4_, 4, 4, 1},           {"r8", ex_r8_, 8, 8, 1},   {"ra", ex_ra_, 16, 10, 1},
    {"rq", ex_rq_, 16, 16, 1},         {"z4", ex_z4_, 8, 4, 2},   {"z8", ex_z8_, 16, 8, 2},
    {"za", ex_za_, 32, 10, 2},         {"zq", ex_zq_, 32, 16, 2}, {"c1", ex_c1_, longest, 1, 0},
    {"c4", ex_c4_, longest * 4, 4, 0},
};
enum { type_c1 = 17, type_c4 = 18 };

void internal_write_(char*, I, I, char*, I, I, I, size_t, size_t);
void internal_list_write_(char*, I, I, I, I, I, size_t);
void internal_read_(char*, I, I, char*, I, I, I, size_t, size_t);
void internal_list_read_(char*, I, I, I, I, I, size_t);
void wide_write_(char*, I, I, char*, I, I, I, size_t, size_t);
void wide_read_(char*, I, I, char*, I, I, I, size_t, size_t);
void position_unit_(I, char*, I, size_t);
void unit_write_(I, char*, char*, I, I, size_t, size_t);
void unit_read_(I, char*, char*, I, I, I, size_t, size_t);
void unit_list_write_(I, I, I);
void unit_list_read_(I, I, I);
void unit_write_at_(I, char*, char*, int64_t*, I, I, size_t, size_t);
void unit_read_at_(I, char*, char*, int64_t*, I, I, size_t, size_t);
void raw_write_(I, char*, int64_t*, I, I, size_t);
void raw_read_(I, char*, int64_t*, I, I, size_t);
void inquire_unit_(I, int64_t*, char*, I, size_t);

// ---- Results ----

static const size_t room = (size_t)1 << 32;
static char* results;
static char* out;

static void put_byte(unsigned char c) {
    static const char digits[] = "0123456789abcdef";
    if (c < ' ' || c == '%' || c > '~') {
        *out++ = '%';
        *out++ = digits[c >> 4];
        c = digits[c & 15];
    }
    *out++ = c;
}
void put_text(const char* text) {
    out = stpcpy(out, text);
}
// Long runs of one byte, as in a sparse file, are written as %{count*byte}.
static void put_bytes(const void* bytes, size_t n) {
    const unsigned char* b = bytes;
    *out++ = '"';
    for (size_t i = 0; i < n;) {
        size_t run = 1;
        while (i + run < n && b[i + run] == b[i]) ++run;
        if (run > 40)
            out += sprintf(out, "%%{%zu*%02x}", run, b[i]);
        else
            run = (put_byte(b[i]), 1);
        i += run;
    }
}
void put_number(int64_t n) {
    out += sprintf(out, "%lld", (long long)n);
}
static void put_hex(const unsigned char* value, int bytes) {
    while (bytes-- > 0) out += sprintf(out, "%02x", value[bytes]);
}
static void end_line(void) {
    *out++ = '\n';
    char length[24];
    snprintf(length, sizeof length, "%019lld\n", (long long)(out - results - 20));
    memcpy(results, length, 20);
}

// ---- Cases ----

static char *in, *case_end;  // the rest of the case at hand
int more_words(void) {
    return in < case_end;
}

void broken(const char* what) {
    fprintf(stderr, "executor: bad case: %s at: %.60s\n", what, in);
    exit(9);
}

// The next word, ended in place.
char* word(void) {
    char* start = in;
    if (in >= case_end) broken("a word is missing");
    while (*in != ' ' && *in != '\n') ++in;
    if (in == start) broken("a word is missing");
    *in++ = 0;
    return start;
}
int nibble(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    broken("no hexadecimal digit");
    return 0;
}
static size_t unescape(const char* from, char* to) {
    char* start = to;
    for (; *from; ++from) {
        if (*from == '%') {
            *to++ = (char)(nibble(from[1]) << 4 | nibble(from[2]));
            from += 2;
        } else {
            *to++ = *from;
        }
    }
    *to = 0;
    return (size_t)(to - start);
}
// A text word; it may stand in the case's own line, since it never grows.
static char* text(size_t* length) {
    char* t = word();
    if (*t++ != '"') broken("text is wanted");
    *length = unescape(t, t);
    return t;
}
int32_t number(void) {
    return (int32_t)atoll(word());
}

static void set_mode(int i, const char* value) {
    memset(ex_modes_[i], ' ', 20);
    memcpy(ex_modes_[i], value, strlen(value));
}
int32_t modes(void) {
    const char* m = word();
    int with = *m != '-';
    if (!with) m = "npnypp";
    set_mode(0, m[0] == 'z' ? "zero" : "null");
    set_mode(1, m[1] == 'c' ? "comma" : "point");
    set_mode(2, m[2] == 'a' ? "apostrophe" : m[2] == 'q' ? "quote" : "none");
    set_mode(3, m[3] == 'n' ? "no" : "yes");
    set_mode(4, m[4] == 'u'   ? "up"
                : m[4] == 'd' ? "down"
                : m[4] == 'z' ? "zero"
                : m[4] == 'n' ? "nearest"
                : m[4] == 'c' ? "compatible"
                              : "processor_defined");
    set_mode(5, m[5] == '+' ? "plus" : m[5] == 's' ? "suppress" : "processor_defined");
    return with;
}

static int item_type[most_items];

static int32_t items(void) {
    memset(ex_has_, 0, sizeof(int32_t) * most_items * types);
    int n = 0;
    while (in < case_end) {
        char* w = word();
        int t = 0;
        while (t < types && strncmp(w, type_table[t].name, 2) != 0) ++t;
        if (t == types || n == most_items) broken("item");
        item_type[n] = t;
        ex_has_[n][t] = 1;
        unsigned char* at = type_table[t].array + (size_t)n * type_table[t].stride;
        memset(at, 0, type_table[t].stride);
        w += 3;
        if (t == type_c1) {
            ex_length_[n] = (int32_t)unescape(w, w);
            memcpy(at, w, ex_length_[n]);
        } else if (t == type_c4) {
            int length = 0;
            for (; *w; w += 8)
                ((uint32_t*)at)[length++] = (uint32_t)strtoul(
                    (char[9]){w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7], 0}, NULL, 16);
            ex_length_[n] = length;
        } else {
            for (int p = 0; p < type_table[t].parts; ++p) {
                unsigned char* part = at + (size_t)p * type_table[t].stride / type_table[t].parts;
                for (int b = type_table[t].bytes; b-- > 0; w += 2)
                    part[b] = (unsigned char)(nibble(w[0]) << 4 | nibble(w[1]));
            }
        }
        ++n;
    }
    return n;
}

static void put_items(int n) {
    for (int k = 0; k < n; ++k) {
        int t = item_type[k];
        unsigned char* at = type_table[t].array + (size_t)k * type_table[t].stride;
        put_text(" ");
        put_text(type_table[t].name);
        if (t == type_c1) {
            put_bytes(at, ex_length_[k]);
        } else if (t == type_c4) {
            *out++ = ':';
            for (int i = 0; i < ex_length_[k]; ++i) put_hex(at + 4 * i, 4);
        } else {
            *out++ = ':';
            for (int p = 0; p < type_table[t].parts; ++p)
                put_hex(at + (size_t)p * type_table[t].stride / type_table[t].parts,
                        type_table[t].bytes);
        }
    }
}

// ---- Internal files ----

char records[record_room];
static char wide_records[record_room * 4];

// Records before a WRITE are full of a mark that shows which of them were written.
void blank_records(int32_t count, int32_t size) {
    if ((int64_t)count * size > record_room) broken("records");
    memset(records, '~', (size_t)count * size);
}
void read_records(int32_t count, int32_t size) {
    blank_records(count, size);
    for (int i = 0; i < count; ++i) {
        size_t length;
        char* t = text(&length);
        char* to = records + (size_t)i * size;
        memset(to, ' ', size);
        memcpy(to, t, length < (size_t)size ? length : (size_t)size);
    }
}
static void widen(size_t n) {
    for (size_t i = 0; i < n; ++i) ((uint32_t*)wide_records)[i] = (unsigned char)records[i];
}
void put_records(int32_t count, int32_t size) {
    for (int i = 0; i < count; ++i) {
        put_text(" ");
        put_bytes(records + (size_t)i * size, size);
    }
}
static void put_wide_records(int32_t count, int32_t size) {
    put_text(" \"");
    for (int64_t i = 0; i < (int64_t)count * size; ++i) {
        uint32_t c = ((uint32_t*)wide_records)[i];
        if (c < 256)
            put_byte((unsigned char)c);
        else
            out += sprintf(out, "%%{%x}", c);
    }
}

static void internal_case(char kind) {
    int32_t with = 1;
    if (kind != 'W' && kind != 'R') with = modes();
    size_t length = 0;
    char* fmt = NULL;
    if (kind != 'l' && kind != 'd') fmt = text(&length);
    int32_t formatted = !(fmt && fmt[0] == '*');
    int32_t count = number(), size = number();
    int reading = kind == 'r' || kind == 'd' || kind == 'R';
    if (reading)
        read_records(count, size);
    else
        blank_records(count, size);
    int32_t n = items(), ios = -77;
    widen((size_t)count * size * (kind == 'W' || kind == 'R'));
    switch (kind) {
        case 'w':
            internal_write_(records, &count, &size, fmt, &n, &with, &ios, size, length);
            break;
        case 'l':
            internal_list_write_(records, &count, &size, &n, &with, &ios, size);
            break;
        case 'r':
            internal_read_(records, &count, &size, fmt, &n, &with, &ios, size, length);
            break;
        case 'd':
            internal_list_read_(records, &count, &size, &n, &with, &ios, size);
            break;
        case 'W':
            wide_write_(wide_records, &count, &size, fmt, &n, &formatted, &ios, size, length);
            break;
        default:
            wide_read_(wide_records, &count, &size, fmt, &n, &formatted, &ios, size, length);
            break;
    }
    put_number(ios);
    if (reading)
        put_items(n);
    else if (kind == 'W')
        put_wide_records(count, size);
    else
        put_records(count, size);
}

// ---- Units ----

static char* file_name(int32_t unit) {
    static char name[20];
    sprintf(name, "f%d.dat", unit);
    return name;
}
void make_file(int32_t unit, const char* bytes, size_t n) {
    int fd = open(file_name(unit), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (fd < 0 || write(fd, bytes, n) != (ssize_t)n) broken("can't make a file");
    close(fd);
}
void show_file(int32_t unit) {
    int fd = open(file_name(unit), O_RDONLY);
    if (fd < 0) {
        put_text("none");
        return;
    }
    char* bytes = wide_records;
    ssize_t n = read(fd, bytes, sizeof wide_records);
    close(fd);
    put_bytes(bytes, n < 0 ? 0 : (size_t)n);
}

static void unit_case(char kind) {
    int32_t ios = -77;
    if (kind == 'e') {
        for (int32_t u = first_unit; u <= last_unit; ++u) {
            close_unit_(&u, "keep", &ios, 4);
            unlink(file_name(u));
        }
        put_text("end");
        return;
    }
    int32_t unit = number();
    if (kind == 'f') {
        size_t n;
        char* t = text(&n);
        make_file(unit, t, n);
        put_text("made");
        return;
    }
    if (kind == 'g') {
        show_file(unit);
        return;
    }
    if (kind == 'o') {
        modes();
        char *status = word(), *access = word(), *form = word(), *action = word(),
             *position = word();
        int32_t recl = number();
        char *encoding = word(), *file = file_name(unit);
        open_unit_(&unit, file, status, access, form, action, position, &recl, encoding, &ios,
                   strlen(file), strlen(status), strlen(access), strlen(form), strlen(action),
                   strlen(position), strlen(encoding));
        put_number(ios);
        return;
    }
    if (kind == 'c') {
        char* status = word();
        close_unit_(&unit, status, &ios, strlen(status));
        put_number(ios);
        return;
    }
    if (kind == 'p') {
        char* how = word();
        position_unit_(&unit, how, &ios, strlen(how));
        put_number(ios);
        return;
    }
    if (kind == 'q') {
        int64_t numbers[5];
        char texts[20][20];
        inquire_unit_(&unit, numbers, texts[0], &ios, 20);
        put_number(ios);
        for (int i = 0; i < 5; ++i) {
            put_text(" ");
            // POS= means something for a stream only.
            put_number(i == 2 && strncmp(texts[0], "STREAM", 6) != 0 ? 0 : numbers[i]);
        }
        for (int i = 0; i < 20; ++i) {
            if (i == 7) continue;  // POSITION= is each run-time's own idea after a transfer
            int n = 20;
            while (n > 0 && texts[i][n - 1] == ' ') --n;
            put_text(" ");
            put_bytes(texts[i], n);
        }
        return;
    }
    size_t length = 0, word_length = 0;
    char *fmt = NULL, *advance = NULL, *what = NULL;
    int64_t place = 0;
    if (kind == 'x' || kind == 'y') {
        advance = word();
        word_length = strlen(advance);
        fmt = text(&length);
    } else if (kind == 'a' || kind == 'b' || kind == 'u' || kind == 'v') {
        what = word();
        word_length = strlen(what);
        place = number();
        if (kind == 'a' || kind == 'b') fmt = text(&length);
    }
    int32_t n = items(), size = -77;
    switch (kind) {
        case 'x':
            unit_write_(&unit, fmt, advance, &n, &ios, length, word_length);
            break;
        case 'X':
            unit_list_write_(&unit, &n, &ios);
            break;
        case 'y':
            unit_read_(&unit, fmt, advance, &n, &size, &ios, length, word_length);
            break;
        case 'Y':
            unit_list_read_(&unit, &n, &ios);
            break;
        case 'a':
            unit_write_at_(&unit, fmt, what, &place, &n, &ios, length, word_length);
            break;
        case 'b':
            unit_read_at_(&unit, fmt, what, &place, &n, &ios, length, word_length);
            break;
        case 'u':
            raw_write_(&unit, what, &place, &n, &ios, word_length);
            break;
        case 'v':
            raw_read_(&unit, what, &place, &n, &ios, word_length);
            break;
        default:
            broken("kind of case");
    }
    put_number(ios);
    if (kind == 'y') {
        put_text(" size=");
        put_number(size);
    }
    if (kind == 'y' || kind == 'Y' || kind == 'b' || kind == 'v') put_items(n);
}

static void do_case(void) {
    char kind = in[0];
    in += 2;
    if (kind == 'n' || kind == 'm')
        namelist_case(kind == 'm');
    else if (strchr("wlrdWR", kind))
        internal_case(kind);
    else
        unit_case(kind);
}

// ---- Where the entries come from ----

#define ENTRIES(E)                                                                                \
    E(st_write)                                                                                   \
    E(st_write_done)                                                                              \
    E(st_read)                                                                                    \
    E(st_read_done)                                                                               \
    E(st_open) E(st_close) E(st_inquire) E(st_backspace) E(st_rewind) E(st_endfile) E(st_flush)   \
        E(transfer_integer_write) E(transfer_integer) E(transfer_logical_write)                   \
            E(transfer_logical) E(transfer_real_write) E(transfer_real) E(transfer_real128_write) \
                E(transfer_real128) E(transfer_complex_write) E(transfer_complex)                 \
                    E(transfer_complex128_write) E(transfer_complex128)                           \
                        E(transfer_character_write) E(transfer_character)                         \
                            E(transfer_character_wide_write) E(transfer_character_wide)           \
                                E(st_set_nml_var) E(st_set_nml_var_dim)
#define DECLARE(name) void _gfortran_##name(void);
ENTRIES(DECLARE)
#define POINTER(name) {#name, (void*)_gfortran_##name},
static const struct {
    const char* name;
    void* code;
} entries[] = {ENTRIES(POINTER)};

static void put_origins(void) {
    for (size_t i = 0; i < sizeof entries / sizeof *entries; ++i) {
        Dl_info info;
        const char* file = "?";
        if (dladdr(entries[i].code, &info) && info.dli_fname) {
            const char* slash = strrchr(info.dli_fname, '/');
            file = slash ? slash + 1 : info.dli_fname;
        }
        put_text(entries[i].name);
        put_text("=");
        put_text(file);
        put_text(" ");
    }
    end_line();
}

int main(int argc, char** argv) {
    if (argc != 4) return 9;
    int fd = open(argv[1], O_RDONLY);
    struct stat status;
    if (fd < 0 || fstat(fd, &status) != 0) return 9;
    in = mmap(NULL, (size_t)status.st_size + 1, PROT_READ | PROT_WRITE, MAP_PRIVATE, fd, 0);
    int to = open(argv[2], O_RDWR | O_CREAT | O_TRUNC, 0666);
    if (in == MAP_FAILED || to < 0 || ftruncate(to, (off_t)room) != 0) return 9;
    results = mmap(NULL, room, PROT_READ | PROT_WRITE, MAP_SHARED, to, 0);
    if (results == MAP_FAILED) return 9;
    out = results + 20;
    put_origins();
    char* end = in + status.st_size;
    long index = 0, first = atol(argv[3]);
    while (in < end) {
        char* next = memchr(in, '\n', (size_t)(end - in));
        if (!next) break;
        if (index >= first) {
            // A case that hangs ends the process by this signal.
            if (index % 64 == 0 || index == first) alarm(5);
            case_end = next + 1;
            do_case();
            end_line();
        }
        ++index;
        in = next + 1;
    }
    return ftruncate(to, out - results) == 0 ? 0 : 9;
}
