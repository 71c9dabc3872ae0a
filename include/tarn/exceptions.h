/* Exceptions of the processor, traps for them, and the state of the machine at one.
 *
 * A fault of the program (a wild pointer, a division by zero, an overflow that is unmasked) ends it
 * with a report: the cause, the routine, the line and all callers. A trap is a routine that is called
 * first. It takes no arguments and gives 0 to go on where the fault was, with whatever it changed of
 * the state; -2 to end the program at once; anything else for the usual report. It runs in a signal
 * handler, on a stack of 512 KiB: it should do little, and no input or output on a unit that the
 * program may be using at the time.
 *
 * Faults come as the signals SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP and SIGABRT. A program that
 * handles one of them itself keeps it: neither report nor trap then comes from here. After a report
 * the process dies of its signal, with a core file where the system makes them.
 */
#ifndef TARN_EXCEPTIONS_H
#define TARN_EXCEPTIONS_H

#include <stdint.h>

#include "tarn/link_name.h"

/* NOLINTBEGIN(modernize-use-using): for C too. */
#ifdef __cplusplus
extern "C" {
#endif

/* ---- The records of an exception ---- */

/* Codes. */
#define TARN_ACCESS_VIOLATION 0xC0000005u
#define TARN_DATA_ALIGNMENT 0x80000002u
#define TARN_BREAKPOINT 0x80000003u
#define TARN_SINGLE_STEP 0x80000004u
#define TARN_PAGE_ERROR 0xC0000006u
#define TARN_ILLEGAL_INSTRUCTION 0xC000001Du
#define TARN_FLOAT_DENORMAL 0xC000008Du
#define TARN_FLOAT_ZERO_DIVIDE 0xC000008Eu
#define TARN_FLOAT_INEXACT 0xC000008Fu
#define TARN_FLOAT_INVALID 0xC0000090u
#define TARN_FLOAT_OVERFLOW 0xC0000091u
#define TARN_FLOAT_STACK 0xC0000092u
#define TARN_FLOAT_UNDERFLOW 0xC0000093u
#define TARN_INTEGER_ZERO_DIVIDE 0xC0000094u
#define TARN_INTEGER_OVERFLOW 0xC0000095u
#define TARN_PRIVILEGED_INSTRUCTION 0xC0000096u
#define TARN_STACK_OVERFLOW 0xC00000FDu
#define TARN_CONTROL_C 0xC000013Au

struct tarn_exception_record {
    uint32_t code;
    uint32_t flags; /* 1: the program can't go on */
    struct tarn_exception_record* next;
    void* address; /* of the instruction */
    uint32_t parameter_count;
    /* Of an access violation: 1 for a write, 0 for a read; and the address, -1 where the processor
     * doesn't tell it. */
    uintptr_t parameters[15];
};

/* Both floating-point units, as the instruction FXSAVE stores them. */
struct tarn_float_area {
    uint16_t control, status; /* of the x87 */
    uint8_t tags;             /* bit n: x87 register n is in use; n doesn't count from the top */
    uint8_t reserved;
    uint16_t opcode;
    uint64_t instruction, data; /* addresses of the last x87 instruction and its operand */
    uint32_t sse_control, sse_mask;
    struct {
        uint64_t significand;
        uint16_t sign_and_exponent;
        uint16_t unused[3];
    } st[8]; /* counted from the top */
    uint64_t xmm[16][2];
    uint64_t unused[12];
};

#define TARN_CONTEXT_INTEGER 1u
#define TARN_CONTEXT_FLOAT 2u

/* The registers at an exception. Numbers of `integer` are the processor's: rax, rcx, rdx, rbx, rsp,
 * rbp, rsi, rdi, r8 to r15. */
struct tarn_machine_context {
    uint32_t flags; /* which parts are there */
    uint32_t size;  /* of this record */
    uint64_t integer[16];
    uint64_t instruction; /* rip */
    uint64_t eflags;
    uint16_t cs, gs, fs, ss;
    uint32_t trap;  /* number of the processor's exception */
    uint32_t error; /* its error code */
    struct tarn_float_area floating;
};

/* ---- Traps ---- */

/* Classes: 0 access violation; 1 invalid operation, 2 denormal operand, 3 zero divide, 4 overflow,
 * 5 underflow, 6 loss of precision (all floating point); 7 stack; 8 Control-C; 9 breakpoint; 10
 * single step; 11 privileged instruction; 12 all; 13 all of arithmetic; 14 integer zero divide; 15
 * integer overflow; 16 low memory. */
typedef int (*tarn_trap)(void);

/* Sets a trap, or with a null routine clears it; the one before. Null for a class out of 0 to 16. */
tarn_trap __set_exception_trap(int exception_class, tarn_trap routine);
tarn_trap set_exception_trap(int exception_class, tarn_trap routine);
tarn_trap TRAP_EXCEPTION_h(const int32_t* exception_class, tarn_trap routine)
    TARN_LINK_NAME("TRAP_EXCEPTION#");
void __reset_exception(int exception_class);
void RESTORE_DEFAULT_HANDLER_h(const int32_t* exception_class)
    TARN_LINK_NAME("RESTORE_DEFAULT_HANDLER#");

/* For a trap while it runs; null, or 0, at any other time. */
int __exception_caught(void); /* the class */
int EXCEPTION_TRAPPED_h(void) TARN_LINK_NAME("EXCEPTION_TRAPPED#");
struct tarn_exception_record* __get_exception_info(void);
struct tarn_exception_record* EXCEPTION_INFORMATION_h(void) TARN_LINK_NAME("EXCEPTION_INFORMATION#");
struct tarn_machine_context* __get_exception_context(void);
struct tarn_machine_context* MACHINE_STATE_h(void) TARN_LINK_NAME("MACHINE_STATE#");
void* get_exception_address(void);
void* EXCEPTION_ADDRESS_h(void) TARN_LINK_NAME("EXCEPTION_ADDRESS#");
/* Of an access violation: the address, 1 for a write, and 0; of anything else 0, 0 and 1. */
void get_access_details(uintptr_t* address, int32_t* is_write, int32_t* failed);
void ACCESS_DETAILS_h(uintptr_t* address, int32_t* is_write, int32_t* failed)
    TARN_LINK_NAME("ACCESS_DETAILS#");
/* Copies the registers out, or back; 1, or 0 where no trap runs. */
int get_machine_state(struct tarn_machine_context* state);
int set_machine_state(const struct tarn_machine_context* state);
/* In a trap for an underflow: puts a zero in place of the result; 1 where it could. */
int clear_flt_underflow(void);
int CLEAR_FLT_UNDERFLOW_h(void) TARN_LINK_NAME("CLEAR_FLT_UNDERFLOW#");

/* ---- What reports say ---- */

/* At the head of every report, and its title; at most 99 characters; null or empty clears. */
void __Put_exception_message(const char* text);
void __Put_exception_title(const char* text);
/* Reports where the program stands, under this text, and goes on. */
void __At_Breakpoint(const char* text);
/* Lines of disassembly in a report's file and window: 1 to 20, 5 for 0. */
void __set_disassamble_inst(int count);
/* Whether the instructions' bytes are shown too. */
void __display_codebytes(int on);
/* Prints every exception, also those that are trapped or repaired. */
void display_ex_message(int on);
/* Single steps are accepted, not reported. */
void __debugger_mode(void);

/* The filter itself: 0 the program goes on with `context`, 1 somebody else may want it. */
int tarn_exception_handler(struct tarn_exception_record* record, void* frame,
                           struct tarn_machine_context* context);

/* The handler of storage that grows (tarn/virtual_storage.h), which the filter asks first: 0 the
 * access lies in a region and may be tried again, 1 it doesn't. */
int __tarn_vc_handler(struct tarn_exception_record* record, void* frame,
                      struct tarn_machine_context* context);

/* ---- Windows that show a report ----
 * A program that opened a window shows its own failures in them, as one does that runs on a desktop
 * with no standard error. These entries show any other text in the same way. */

/* Text, callers and, where `state` isn't null, the machine; 1. With the option kill_dialogbox the
 * text is printed and the program ends. */
int __showExceptiondlg(const char* text, struct tarn_machine_context* state);
/* The same report again; 1, or 0 where nobody can see it. */
int __showRegisterDialog(intptr_t instance);
/* What the windows of a report do with their messages. */
intptr_t __TRACEOUTPUT_PROC(int32_t dialog, uint32_t message, uintptr_t wparam, intptr_t lparam);
intptr_t __REGSOUTPUT_PROC(int32_t window, uint32_t message, uintptr_t wparam, intptr_t lparam);
/* Asks for the name of a file to write. `name` holds what is offered and gets the path; `filter` is
 * pairs of a name and patterns, each ended by a zero, with one more zero at the end. A name without an
 * extension gets `extension`. 1, or 0 where none was chosen or `size` is too small. */
int get_file_names(int32_t owner, const char* title, char* name, int32_t size, const char* filter,
                   const char* extension);
/* Stores the exit code of a process that was started, for the development environment. */
void NotifyRegistryExitCode(int32_t code);

/* ---- Frames of the filter on a block of the caller's stack ----
 * Code that installs and removes the filter by itself may go on doing so; the filter serves the whole
 * process anyway. `words` counts 4-byte words. */
void REGISTER_TARN_EXCEPTION_HANDLER(void* block, const int32_t* words);
void REGISTER_TARN_VIRTUAL_HANDLER(void* block, const int32_t* words);
void* INSTALL_TARN_EXCEPTION_HANDLER(void);
void* INSTALL_TARN_VIRTUAL_HANDLER(void);
void REMOVE_TARN_HANDLER(void);

/* ---- Signals by number ----
 * 100 control break, 101 floating point, 105 low memory, 106 storage access, 107 illegal instruction;
 * and for tarn_raise only 200 abnormal end, 201 termination, 202 to 205 the user's. */
typedef void (*tarn_signal_routine)(int number, int detail);
#define TARN_SIGNAL_DEFAULT ((tarn_signal_routine)0)
#define TARN_SIGNAL_IGNORE ((tarn_signal_routine)-1)
/* The routine before; (tarn_signal_routine)-2, with errno -1008, for an unknown number. The routine is
 * called once: the signal is back at its default when it runs. */
tarn_signal_routine tarn_signal(int number, tarn_signal_routine routine);
/* Calls the routine; by default prints what was raised and ends with status 1. 1, with errno -1008,
 * for an unknown number. */
int tarn_raise(int number);
/* Index 0 is the handler of break keys, any other a class of traps; the trap before. */
tarn_trap set_trap(tarn_trap routine, int index);
tarn_trap SET_TRAP_h(tarn_trap routine, const int32_t* index) TARN_LINK_NAME("SET_TRAP#");

#ifdef __cplusplus
}
#endif
/* NOLINTEND(modernize-use-using) */

#endif
