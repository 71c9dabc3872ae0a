/* The start of a compiled image, and what the library knows of the process.
 *
 * A program that is linked by the drivers needs none of the start entries: the start-up object
 * calls them before main. A program without it needs none either: the library comes up with the
 * first entry that it reaches. They are here for whoever writes a start-up object of his own, and
 * are called in this order:
 *
 *     __init_WindowsType, __initialise_cpplib, __init_cpplib_info (a shared library:
 *     __initialise_xcbdll), __Register_map_info, __execute_preamble, and for a Fortran main program
 *     one of the __ORVEXINIT forms.
 */
#ifndef TARN_START_H
#define TARN_START_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Pairs of a key and a function, for code that calls through __Obtain_stdcall_functionptr. */
struct tarn_stdcall_pair {
    uintptr_t key;
    void* function;
};
struct tarn_stdcall_record {
    intptr_t count;
    intptr_t carried1;
    struct tarn_stdcall_record* next; /* the library's, in its own copy of the record */
    intptr_t carried3, carried4;
    const struct tarn_stdcall_pair* pairs;
};

/* What an executable tells of itself. Versions are in hundredths (1.48 is 148): 110 and below are
 * refused, the control words count from 148 on, the functions from 150 on. */
struct tarn_program_info {
    void* instance;
    const char* name;
    void* stack_top;         /* highest stack address of the main thread */
    intptr_t version;        /* the low 16 bits, signed */
    uint16_t* control_words; /* the image's eight, or null */
    intptr_t carried[2];
    const struct tarn_stdcall_record* stdcalls; /* or null */
};

/* What a compiled shared library tells of itself. */
struct tarn_module_info {
    const char* path;
    intptr_t version;
    uint16_t* control_words;
    const struct tarn_stdcall_record* stdcalls;
};

/* The argument block of a Fortran main program. */
struct tarn_fortran_arguments {
    intptr_t count;
    char** values;
    intptr_t third; /* carried */
};

/* The image type: 0 console, 2 windowed. With 0x100 the library's own floating-point masks are
 * loaded, under which all exceptions but the inexact one trap; without it the units stay as the
 * system gives them. Does nothing once __init_cpplib_info has run. */
void __init_WindowsType(int type);
/* Brings the library up. Again: only marks the standard streams, where output goes to a window. */
void __initialise_cpplib(void);
/* Registers the executable, and reads the option variable TARNENVAR. */
void __init_cpplib_info(const struct tarn_program_info* info);
/* The older, shorter registration. */
void __initialise2_cpplib(void* instance, const char* name);
/* Registers a compiled shared library; at any time. */
void __initialise_xcbdll(const struct tarn_module_info* info);
/* Enters the image's routine map, for tracebacks. Null is ignored. */
void __Register_map_info(void* instance, const void* map);
/* Calls each non-null routine from `first` to `last`, both included. */
void __execute_preamble(void (*const* first)(void), void (*const* last)(void));
/* Splits the command line by the library's own rules, under which a `/` begins an argument.
 * The result is the line itself. */
const char* __get_main_arguments(int* argc, char*** argv);

/* The start of a Fortran main program: with arguments; with the interface version that it needs (2
 * at most); without arguments. Units that ORVALPRECON names are connected. */
void __ORVEXINIT_(const struct tarn_fortran_arguments* arguments);
void __ORVEXINIT1_(const struct tarn_fortran_arguments* arguments, const int32_t* version);
void __ORVEXINIT2_(void);
void F77INIT_h(const struct tarn_fortran_arguments* arguments) TARN_LINK_NAME("F77INIT#");
/* Stores the interface version of this library. */
void __GET_ORVEX_LIBRARY_VERSION_(int32_t* version);

/* The start of a C image in one call; non-zero: a windowed program. */
void cinit_(int windowed);
/* The start of a managed program: everything masked. */
void __com_plus_initialise(void* instance);

/* Standard input and output go to the text window from now on. */
void __set_windows_mode(void);
void __switch_to_quillpan(void);
int GetNtWindowsMode(void);

/* ---- The process and its library ---- */

const char* get_program_name(void); /* the full path */
int32_t xcb_lib_version(void);      /* in hundredths */
const char* get_xcblib_comments(void);
void* __windows_instance(void);

/* Who the operating system is; each reference of __get_os_ver may be null. */
int32_t __getosinfo(int32_t* platform, int32_t* major, int32_t* minor, int32_t* build);
int32_t __get_os_ver(int32_t* platform, int32_t* major, int32_t* minor);
int32_t __get_os_build(void);
int32_t ISWINDOWSNT(void);

/* A value of the user's configuration (tarnlibc/config in XDG_CONFIG_HOME, else ~/.config; one
 * section a key), or else of the environment; null without either. Good until the next call. */
const char* ReadRegAndEnv(const char* key, const char* name);
const char* read_config_key(const char* name);

/* The address of a routine of a shared library, which is loaded when it isn't yet; or null. */
void* find_entry_point(const char* path, const char* routine);
/* Replaces the key in the cell by the registered function for it; a miss leaves the cell. */
void __Obtain_stdcall_functionptr(uintptr_t* cell);

/* Messages in a box, or on standard error without windows. mprintf is silent until __mdebug(1). */
void mprintf0(const char* format, ...);
void mprintf(const char* format, ...);
void __mdebug(int on);

#ifdef __cplusplus
}
#endif

#endif
