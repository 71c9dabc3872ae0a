//> start: none
//> args: one two
//> status: 3
//> out: c says hello
//> err: STOP 3
/* A C main without a start-up object: what the Fortran side asks for is there all the same. */
#include <stdbool.h>
#include <stddef.h>
#include <stdio.h>

int _gfortran_iargc(void);
void _gfortran_get_command_argument_i4(int* number, char* value, int* length, int* status,
                                       size_t value_length);
void _gfortran_stop_numeric(int code, bool quiet);

int main(void) {
    char value[3];
    int number = 2, length = 0, status = 9;
    printf("c says hello\n");
    if (_gfortran_iargc() != 2) return 10;
    _gfortran_get_command_argument_i4(&number, value, &length, &status, 3);
    if (length != 3 || status != 0 || value[2] != 'o') return 11;
    _gfortran_stop_numeric(3, false);
}
