/* Files without opening them, the command line, the environment, other programs.
 *
 * Nothing here ends a program. A 16-bit error is 0 when all went well; whether another number is
 * one of errno or of the platform is said below. The platform's: 2 there is no such file, 3 no such
 * path, 5 access is denied, 15 no such drive, 50 that can't be changed, 123 a name with a zero byte
 * in it, 206 a name that is too long; those of handles.h besides.
 *
 * Arguments are as Fortran passes them: by address, the lengths of texts by value behind the last.
 * Blanks behind a name are cut. A text result is filled with blanks or cut; in a CHARACTER function
 * it stands, with its length, before the other arguments.
 *
 * Names are paths of the system: case counts, `/` separates, a backslash is a character as any
 * other, and there are no drives.
 */
#ifndef TARN_FILES_H
#define TARN_FILES_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- The command line. Arguments are as the system passed them, of any length. ---- */

/* The number of arguments behind the program's name. */
int32_t IARGC(void);
int32_t COMMAND_ARGUMENT_COUNT(void);
int32_t CMNARGS_h(void) TARN_LINK_NAME("CMNARGS#");
/* Argument 0 is the program's name. One that isn't there is blank, of length 0. */
void GETARG(const int32_t* number, char* text, intptr_t length);
void GETARG_h(const int32_t* number, char* text, intptr_t length) TARN_LINK_NAME("GETARG#");
int32_t LENARG_h(const int32_t* number) TARN_LINK_NAME("LENARG#");
/* The arguments one after the other, blank behind the last; and back to the first. */
void CMNAM_h(char* result, intptr_t length) TARN_LINK_NAME("CMNAM#");
void CMNAMR_h(void) TARN_LINK_NAME("CMNAMR#");
/* The program's name. */
void CMPROGNM_h(char* result, intptr_t length) TARN_LINK_NAME("CMPROGNM#");
/* The next argument as an integer. Error 18: there is none; 13: it is no integer, and `value` stays
 * as it was. */
void CMNUM_h(int32_t* value, int16_t* error) TARN_LINK_NAME("CMNUM#");
/* The whole line, the program's name first; arguments with blanks stand in quotation marks. */
void COMMAND_LINE_h(char* text, intptr_t length) TARN_LINK_NAME("COMMAND_LINE#");
void COMMAND_LINE2_h(char* text, intptr_t length) TARN_LINK_NAME("COMMAND_LINE2#");
int32_t LEN_CMLINE_h(void) TARN_LINK_NAME("LEN_CMLINE#");
/* The intrinsic procedures of Fortran 2003; what is absent is a null pointer. A value that doesn't
 * fit stays as it was, with status -1; an argument that isn't there is status 1. */
void GET_COMMAND(char* command, int32_t* length, int32_t* status, intptr_t room);
void GET_COMMAND_ARGUMENT(const int32_t* number, char* value, int32_t* length, int32_t* status,
                          intptr_t room);
/* A line of the standard input, without its line end; what doesn't fit is lost. characters_read is
 * -1 at the end of the input, and may be null. */
void GETCL_h(char* text, intptr_t length) TARN_LINK_NAME("GETCL#");
void GETCL1_h(char* text, int32_t* characters_read, intptr_t length) TARN_LINK_NAME("GETCL1#");

/* ---- The environment ---- */

/* The intrinsic procedure. Status 1: there is no such variable, and the value is blank; -1: the
 * value is cut. A null trim_name counts as true. Without a name the value is blank and the length
 * -1. */
void GET_ENVIRONMENT_VARIABLE(const char* name, char* value, int32_t* length, int32_t* status,
                              const int32_t* trim_name, intptr_t name_length, intptr_t room);
/* A variable's value, blank when there is none. */
void GETENV_h(char* result, intptr_t length, const char* name, intptr_t name_length)
    TARN_LINK_NAME("GETENV#");
void GETENV_d(char* result, intptr_t length, const char* name, intptr_t name_length)
    TARN_LINK_NAME("GETENV$");
void DOSPARAM_h(const char* name, char* value, intptr_t name_length, intptr_t length)
    TARN_LINK_NAME("DOSPARAM#");
void GETENVIRON_h(const char* name, char* value, intptr_t name_length, intptr_t length)
    TARN_LINK_NAME("GETENVIRON#");
/* "NAME=value", for this process and those that it starts; "NAME=" takes the variable away. The
 * result is 0 or errno. */
int32_t PUTENV_h(const char* definition, intptr_t length) TARN_LINK_NAME("PUTENV#");

/* ---- Files ---- */

/* 1 or 0. A pattern with * or ? in its last part exists when it matches something. */
int32_t FILE_EXISTS_h(const char* name, intptr_t length) TARN_LINK_NAME("FILE_EXISTS#");
int32_t FEXISTS_h(const char* name, intptr_t length) TARN_LINK_NAME("FEXISTS#");
/* Errors of errno. An empty directory is erased, too. */
void ERASE_h(const char* name, int16_t* error, intptr_t length) TARN_LINK_NAME("ERASE#");
/* Errors of errno. A file that has the new name already stays: EEXIST. */
void RENAME_h(const char* old_name, const char* new_name, int16_t* error, intptr_t old_length,
              intptr_t new_length) TARN_LINK_NAME("RENAME#");
/* Makes a directory; makes one the current directory. Errors of errno. */
void MKDIR_h(const char* name, int16_t* error, intptr_t length) TARN_LINK_NAME("MKDIR#");
void MKDIR_d(const char* name, int16_t* error, intptr_t length) TARN_LINK_NAME("MKDIR$");
void ATTACH_h(const char* name, int16_t* error, intptr_t length) TARN_LINK_NAME("ATTACH#");
void ATTACH1_h(const char* name, int16_t* error, intptr_t length) TARN_LINK_NAME("ATTACH1#");
void ATTACH_d(const char* name, int16_t* error, intptr_t length) TARN_LINK_NAME("ATTACH$");
/* There are no drives: error 15, and nothing changes. */
void CHANGE_DRIVE_h(const char* drive, int16_t* error, intptr_t length)
    TARN_LINK_NAME("CHANGE_DRIVE#");
void CHANGE_DRIVE1_h(const char* drive, int16_t* error, intptr_t length)
    TARN_LINK_NAME("CHANGE_DRIVE1#");
/* The current directory, from the root. */
void CURDIR_h(char* result, intptr_t length) TARN_LINK_NAME("CURDIR#");
void CURDIR_d(char* result, intptr_t length) TARN_LINK_NAME("CURDIR$");
void CURRENT_DIR_h(char* result, intptr_t length) TARN_LINK_NAME("CURRENT_DIR#");
void CURRENT_DIR_d(char* result, intptr_t length) TARN_LINK_NAME("CURRENT_DIR$");

/* Attributes, as `mode` and elsewhere: 1 nobody may write, 2 the name begins with a dot, 16 a
 * directory; 128 a file with none of them. */
enum {
    TARN_FILE_READ_ONLY = 1,
    TARN_FILE_HIDDEN = 2,
    TARN_FILE_DIRECTORY = 16,
    TARN_FILE_NORMAL = 128
};
/* What is known of a file: its attributes, its size in bytes, when it was made, last read and last
 * written in seconds since 1970. Device and links are 0. Sizes and times that don't fit into 32
 * bits are 2147483647. The platform's errors; the other variables stay as they were then. */
void FILEINFO_h(const char* name, int32_t* mode, int32_t* device, int32_t* links, int32_t* size,
                int32_t* created, int32_t* accessed, int32_t* written, int16_t* error,
                intptr_t length) TARN_LINK_NAME("FILEINFO#");
void FILEINFO8_h(const char* name, int32_t* mode, int32_t* device, int32_t* links, int64_t* size,
                 int64_t* created, int64_t* accessed, int64_t* written, int16_t* error,
                 intptr_t length) TARN_LINK_NAME("FILEINFO8#");
void FILE_SIZE_h(const char* name, int32_t* size, int16_t* error, intptr_t length)
    TARN_LINK_NAME("FILE_SIZE#");
void FILE_SIZE8_h(const char* name, int64_t* size, int16_t* error, intptr_t length)
    TARN_LINK_NAME("FILE_SIZE8#");
/* Reads the attributes; sets them, of which only TARN_FILE_READ_ONLY can be changed: error 50 for
 * another one that the file doesn't have. The result is the platform's error. */
int32_t SET_FILE_ATTRIBUTE_h(const char* name, const int32_t* attributes, intptr_t length)
    TARN_LINK_NAME("SET_FILE_ATTRIBUTE#");
int32_t GET_FILE_ATTRIBUTE_h(const char* name, int32_t* attributes, intptr_t length)
    TARN_LINK_NAME("GET_FILE_ATTRIBUTE#");

/* Lists the files that a pattern matches into arrays of `maximum` elements, in the order of their
 * names, which are full paths; `count` tells how many. * stands for any characters, ? for one, in
 * the pattern's last part; *.* means all files. Names that begin with a dot are listed only where
 * the pattern begins with one. Dates (year - 1980, month, day in 7, 4 and 5 bits) and times (hours,
 * minutes, half the seconds in 5, 6 and 5 bits) are local. */
void FILES_h(const char* pattern, int32_t* count, const int32_t* maximum, char* names,
             int16_t* attributes, int16_t* dates, int16_t* times, int32_t* sizes,
             intptr_t pattern_length, intptr_t name_length) TARN_LINK_NAME("FILES#");
void FILES_d(const char* pattern, int32_t* count, const int32_t* maximum, char* names,
             int16_t* attributes, int16_t* dates, int16_t* times, int32_t* sizes,
             intptr_t pattern_length, intptr_t name_length) TARN_LINK_NAME("FILES$");
void GET_FILES_h(const char* pattern, int32_t* count, const int32_t* maximum, char* names,
                 int16_t* attributes, int16_t* dates, int16_t* times, int32_t* sizes,
                 intptr_t pattern_length, intptr_t name_length) TARN_LINK_NAME("GET_FILES#");
void GET_FILES_d(const char* pattern, int32_t* count, const int32_t* maximum, char* names,
                 int16_t* attributes, int16_t* dates, int16_t* times, int32_t* sizes,
                 intptr_t pattern_length, intptr_t name_length) TARN_LINK_NAME("GET_FILES$");
void FILES8_h(const char* pattern, int32_t* count, const int32_t* maximum, char* names,
              int16_t* attributes, int16_t* dates, int16_t* times, int64_t* sizes,
              intptr_t pattern_length, intptr_t name_length) TARN_LINK_NAME("FILES8#");

/* A path from the root, whether the file is there or not (links stay as they are); relative to the
 * current directory where it lies below it. */
void FULL_PATH_NAME_h(char* result, intptr_t length, const char* name, intptr_t name_length)
    TARN_LINK_NAME("FULL_PATH_NAME#");
void RESOLVE_PATH_NAME_h(char* result, intptr_t length, const char* name, intptr_t name_length)
    TARN_LINK_NAME("RESOLVE_PATH_NAME#");
void LOCAL_FILE_NAME_h(char* result, intptr_t length, const char* name, intptr_t name_length)
    TARN_LINK_NAME("LOCAL_FILE_NAME#");

/* A name that no file has, in the current directory or the one for temporary files: F$000001.tmp
 * and so on. The file isn't made. Error 9: all numbers are used; 206: the name doesn't fit. */
void TEMP_FILE_h(char* name, int16_t* error, intptr_t length) TARN_LINK_NAME("TEMP_FILE#");
void TEMP_PATH_h(char* name, int16_t* error, intptr_t length) TARN_LINK_NAME("TEMP_PATH#");
/* The directory for temporary files: the first writable one of the variables TMPDIR, TMP and TEMP,
 * /tmp and /var/tmp; or blank. */
void TEMP_DIR_NAME_h(char* result, intptr_t length) TARN_LINK_NAME("TEMP_DIR_NAME#");
/* 1 when files can be made in a directory, otherwise 0. Nothing is written to find out. */
int32_t IS_WRITABLE_DIRECTORY_h(const char* directory, intptr_t length)
    TARN_LINK_NAME("IS_WRITABLE_DIRECTORY#");

/* ---- Other programs. What this one has written is on its way before they start. ---- */

/* Runs a command by the shell and waits. The error is errno's, where there is no shell to be had;
 * what the command itself says by its status doesn't count. */
void CISSUE(const char* command, int16_t* error, intptr_t length);
void CISSUE_h(const char* command, int16_t* error, intptr_t length) TARN_LINK_NAME("CISSUE#");
/* Starts a program, looked for along PATH and in the current directory, with arguments in one text:
 * blanks separate them, quotation marks of both kinds hold them together, no shell takes part. The
 * first waits and gives the exit code (128 and the signal's number for a program that was killed);
 * the other gives 0 at once. -1: it can't be started; -2: nothing was named. */
int32_t START_PROCESS_h(const char* program, const char* arguments, intptr_t program_length,
                        intptr_t arguments_length) TARN_LINK_NAME("START_PROCESS#");
int32_t START_PPROCESS_h(const char* program, const char* arguments, intptr_t program_length,
                         intptr_t arguments_length) TARN_LINK_NAME("START_PPROCESS#");
/* The same with terminated texts; mode 0 waits, mode 2 doesn't, any other gives -1. */
int __spawns(int mode, const char* program, const char* arguments);
/* Starts the program that a command line names, and waits where `wait` isn't 0. The result is 0,
 * whatever the program's exit code, or the platform's error. The title is for a window that a system
 * gives a program; here there is none, and it may be null. */
int __spawn_process(const char* command, const char* title, int wait);

/* ---- Texts between Fortran and C ---- */

/* A terminated copy of a text, without the blanks behind it. The buffer has room for length + 1. */
void MAKE_CSTRING_h(const char* text, char* buffer, intptr_t length) TARN_LINK_NAME("MAKE_CSTRING#");
/* The same into a buffer of `size` bytes; what doesn't fit is cut. */
void FSTRCPY(char* buffer, intptr_t size, const char* text, intptr_t length);
/* A terminated text into a CHARACTER variable, filled with blanks or cut. */
void GET_CSTRING_h(char* text, const char* string, intptr_t length) TARN_LINK_NAME("GET_CSTRING#");
void RETURNED_CSTRING_h(char* text, const char* string, intptr_t length)
    TARN_LINK_NAME("RETURNED_CSTRING#");

#ifdef __cplusplus
}
#endif

#endif
