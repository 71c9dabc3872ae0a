// What the executor's parts share: the words of the case at hand, and the line of results.
#pragma once

#include <stddef.h>
#include <stdint.h>

// Words of the case.
int more_words(void);
char* word(void);
int32_t number(void);
int nibble(char c);
int32_t modes(void);  // fills ex_modes_; 0: the statement names none
void broken(const char* what);
extern char ex_modes_[6][20];  // blank, decimal, delim, pad, round, sign

// Results.
void put_text(const char* text);
void put_number(int64_t n);

// Internal files.
enum { record_room = 1 << 20 };
extern char records[record_room];
void blank_records(int32_t count, int32_t size);
void read_records(int32_t count, int32_t size);
void put_records(int32_t count, int32_t size);

// Files of units, and the statements on units in executor.F90.
void make_file(int32_t unit, const char* bytes, size_t n);
void show_file(int32_t unit);
typedef int32_t* I;
void open_unit_(I, char*, char*, char*, char*, char*, char*, I, char*, I, size_t, size_t, size_t,
                size_t, size_t, size_t, size_t);
void close_unit_(I, char*, I, size_t);

void namelist_case(int reading);
