// NAMELIST cases. The group's variables lie in an arena of bytes and are told to the run-time as
// compiled code tells them, so that a case may have any derived types, bounds and strides.
//
//     n MODES PLACE COUNT SIZE ARENA VARIABLE...            WRITE
//     m MODES PLACE COUNT SIZE RECORD... ARENA VARIABLE...  READ
//
// PLACE: i for COUNT internal records of SIZE characters, u for a unit. ARENA is the bytes in
// hexadecimal. A VARIABLE is PATH,TYPE,KIND,LENGTH,SIZE,OFFSET,RANK and STRIDE,LOWER,UPPER for each
// dimension; TYPE is the number of a descriptor, OFFSET is in the arena. The group's name is g. A
// READ from a unit is tried twice, to tell where the first one left it.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "executor.h"

// The parameter block and the descriptors of compiled code.
struct Dimension {
    int64_t stride, lower, upper;
};
struct Type {
    size_t size;
    int32_t version;
    int8_t rank, type;
    int16_t attribute;
};
struct Array {
    char* base;
    int64_t offset;
    struct Type type;
    int64_t span;
    struct Dimension dimension[1];
};
struct Block {
    uint32_t flags;
    int32_t unit;
    const char* source;
    int32_t line;
    size_t iomsg_length;
    char* iomsg;
    int32_t* iostat;
    int64_t rec;
    int64_t *size, *iolength;
    struct Array* internal_array;
    const char* format;
    size_t format_length, advance_length;
    const char* advance;
    char* internal;
    size_t internal_length, name_length;
    const char* name;
    int32_t* id;
    int64_t pos;
    const char* asynchronous;
    size_t asynchronous_length, blank_length;
    const char *blank, *decimal;
    size_t decimal_length, delim_length;
    const char *delim, *pad;
    size_t pad_length, round_length;
    const char *round, *sign;
    size_t sign_length;
    char own[256];
};
_Static_assert(sizeof(struct Block) == 528, "as compiled code lays it out");

void _gfortran_st_set_nml_var(struct Block*, void*, char*, int32_t, size_t, struct Type);
void _gfortran_st_set_nml_var_dim(struct Block*, int32_t, int64_t, int64_t, int64_t);
void _gfortran_st_read(struct Block*);
void _gfortran_st_read_done(struct Block*);
void _gfortran_st_write(struct Block*);
void _gfortran_st_write_done(struct Block*);

enum {
    has_iostat = 1 << 5,
    namelist_read = 1 << 8,
    has_internal = 1 << 14,
    has_namelist = 1 << 15,
    has_decimal = 1 << 20,
    has_delim = 1 << 21,
    has_round = 1 << 23,
    has_sign = 1 << 24,
    unit_number = 13,
    most_variables = 64,
    arena_room = 1 << 16
};

static char arena[arena_room];
static size_t arena_size;
static struct {
    char path[128];
    int kind, type, rank;
    size_t length, size, offset;
    struct Dimension dimension[15];
} variables[most_variables];
static int variable_count;

static void read_variables(void) {
    const char* bytes = word();
    arena_size = strlen(bytes) / 2;
    if (arena_size > arena_room) broken("arena");
    for (size_t i = 0; i < arena_size; ++i)
        arena[i] = (char)(nibble(bytes[2 * i]) << 4 | nibble(bytes[2 * i + 1]));
    for (variable_count = 0; more_words(); ++variable_count) {
        if (variable_count == most_variables) broken("variables");
        char* part = strtok(word(), ",");
        if (part == NULL || strlen(part) >= sizeof variables->path) broken("path");
        strcpy(variables[variable_count].path, part);
        int64_t numbers[6 + 45];
        int count = 0;
        while (count < 51 && (part = strtok(NULL, ",")) != NULL) numbers[count++] = atoll(part);
        if (count < 6 || count != 6 + 3 * (int)numbers[5]) broken("variable");
        variables[variable_count].type = (int)numbers[0];
        variables[variable_count].kind = (int)numbers[1];
        variables[variable_count].length = (size_t)numbers[2];
        variables[variable_count].size = (size_t)numbers[3];
        variables[variable_count].offset = (size_t)numbers[4];
        variables[variable_count].rank = (int)numbers[5];
        memcpy(variables[variable_count].dimension, numbers + 6, sizeof(int64_t) * (count - 6));
    }
}

static void tell_variables(struct Block* block) {
    for (int i = 0; i < variable_count; ++i) {
        struct Type type = {variables[i].size, 0, (int8_t)variables[i].rank,
                            (int8_t)variables[i].type, 0};
        _gfortran_st_set_nml_var(block, arena + variables[i].offset, variables[i].path,
                                 variables[i].kind, variables[i].length, type);
        for (int d = 0; d < variables[i].rank; ++d) {
            struct Dimension at = variables[i].dimension[d];
            _gfortran_st_set_nml_var_dim(block, d, at.stride, at.lower, at.upper);
        }
    }
}

static int32_t run(int reading, int with, int32_t internal_count, int32_t internal_size) {
    struct Block block;
    memset(&block, 0x5a, sizeof block);  // compiled code fills what it has to say, and no more
    struct Array array = {
        records, 0, {(size_t)internal_size, 0, 1, 6, 0}, internal_size, {{1, 1, internal_count}}};
    int32_t ios = 0;
    block.source = "executor";
    block.line = 1;
    block.iostat = &ios;
    block.name = "g";
    block.name_length = 1;
    block.flags = has_namelist | has_iostat | (reading ? namelist_read : 0);
    if (with) {
        block.flags |= has_decimal | (reading ? has_round : has_delim | has_round | has_sign);
        block.decimal = ex_modes_[1];
        block.delim = ex_modes_[2];
        block.round = ex_modes_[4];
        block.sign = ex_modes_[5];
        block.decimal_length = block.delim_length = block.round_length = block.sign_length = 20;
    }
    block.unit = unit_number;
    if (internal_count > 0) {
        block.flags |= has_internal;
        block.unit = -1;
        block.internal = records;
        block.internal_length = (size_t)internal_size;
        block.internal_array = internal_count > 1 ? &array : NULL;
    }
    tell_variables(&block);
    if (reading) {
        _gfortran_st_read(&block);
        _gfortran_st_read_done(&block);
    } else {
        _gfortran_st_write(&block);
        _gfortran_st_write_done(&block);
    }
    return ios;
}

static void open_file(void) {
    int32_t unit = unit_number, recl = 0, ios;
    open_unit_(&unit, "f13.dat", "unknown", "sequential", "formatted", "readwrite", "asis", &recl,
               "default", &ios, 7, 7, 10, 9, 9, 4, 7);
    if (ios != 0) broken("the unit's file");
}

void namelist_case(int reading) {
    int with = modes();
    int internal = word()[0] == 'i';
    int32_t count = number(), size = number();
    if (reading) {
        read_records(count, size);
    } else if (internal) {
        blank_records(count, size);
    }
    read_variables();
    if (internal) {
        put_number(run(reading, with, count, size));
        if (!reading) put_records(count, size);
    } else {
        char* file = malloc((size_t)count * ((size_t)size + 1));
        for (int32_t i = 0; i < count && reading; ++i) {
            memcpy(file + (size_t)i * ((size_t)size + 1), records + (size_t)i * (size_t)size,
                   (size_t)size);
            file[(size_t)(i + 1) * ((size_t)size + 1) - 1] = '\n';
        }
        make_file(unit_number, file, reading ? (size_t)count * ((size_t)size + 1) : 0);
        free(file);
        // What OPEN says of the modes is another case's business.
        char kept[6][20];
        memcpy(kept, ex_modes_, sizeof kept);
        static char usual[6][21] = {"null                ", "point               ",
                                    "none                ", "yes                 ",
                                    "processor_defined   ", "processor_defined   "};
        for (int i = 0; i < 6; ++i) memcpy(ex_modes_[i], usual[i], 20);
        open_file();
        memcpy(ex_modes_, kept, sizeof kept);
        int32_t ios = run(reading, with, 0, 0), unit = unit_number, closed;
        put_number(ios);
        if (reading && ios == 0) {
            put_text(" then ");
            put_number(run(1, with, 0, 0));
        }
        close_unit_(&unit, "keep", &closed, 4);
        put_text(" ");
        if (!reading) show_file(unit_number);
        remove("f13.dat");
    }
    if (!reading) return;
    put_text(" arena:");
    static const char digits[] = "0123456789abcdef";
    for (size_t i = 0; i < arena_size; ++i) {
        char hex[3] = {digits[(unsigned char)arena[i] >> 4], digits[arena[i] & 15], 0};
        put_text(hex);
    }
}
