/* The start-up object: what an executable does before its main, on this library.
 *
 * A constructor of the highest priority plays the stub of a compiled image: it calls the library's
 * start entries in their fixed order, before any other constructor of the executable runs. So the
 * library is up before a static object prints, and its exit chain is behind everything that the
 * executable registers later. The process ends by `exit` or a return from main as any other; the
 * library's own destructor comes last.
 *
 * Built twice: TARN_FORTRAN_MAIN adds the start of the Fortran library, which a C program gets
 * with its first Fortran statement. TARN_NATIVE_FLOAT asks for the library's own floating-point
 * masks, under which all exceptions but the inexact one trap; without it the units stay as the
 * system gives them and 0/0 is a NaN.
 */
#include <stddef.h>
#include <stdint.h>
#include <string.h>

typedef void routine(void);

struct program_info {
    const void* instance;
    const char* name;
    const void* stack_top;
    intptr_t version;
    uint16_t* control_words;
    intptr_t carried[2];
    const void* stdcalls;
};

struct fortran_arguments {
    intptr_t count;
    char** values;
    intptr_t third;
};

void __init_WindowsType(int type);
void __initialise_cpplib(void);
void __init_cpplib_info(const struct program_info* info);
void __Register_map_info(const void* instance, const void* map);
void __execute_preamble(routine* const* first, routine* const* last);
void __ORVEXINIT1_(const struct fortran_arguments* arguments, const int32_t* version);

/* The linker's bounds of the image. The map is a loaded section only where the traceback's tool
 * made it one. */
#define HIDDEN __attribute__((visibility("hidden")))
extern const char __ehdr_start[] HIDDEN;
extern const char __start_tarnmap[] __attribute__((weak)) HIDDEN;
extern routine* __start_tarn_crt[] HIDDEN;
extern routine* __stop_tarn_crt[] HIDDEN;

/* Ranges of address space that the program wants at an address of its own choice: a mark, and a
 * record of the library's. */
struct virtual_common {
    char mark[16];
    uint64_t record[6];
};
extern struct virtual_common __start_tarnvc[] __attribute__((weak)) HIDDEN;
extern struct virtual_common __stop_tarnvc[] __attribute__((weak)) HIDDEN;
void* __get_virtual_common_block(const void* instance, void* record);

static void make_virtual_common(void) {
    static const char mark[16] = "Tarnick_VC_data";
    for (struct virtual_common* each = __start_tarnvc; each < __stop_tarnvc; ++each) {
        if (memcmp(each->mark, mark, sizeof mark) == 0)
            __get_virtual_common_block(__ehdr_start, each->record);
    }
}

/* The image's preamble section is an array of routines, with zero words wherever they come from.
 * This one makes sure that there is a section. */
static routine* no_routine __attribute__((section("tarn_crt"), used)) = 0;

#ifdef TARN_NATIVE_FLOAT
#define MASKS 0x00
enum { image_type = 0x100 };
#else
#define MASKS 0x1F
enum { image_type = 0 };
#endif

/* The image's control words, which the library rewrites when a mask changes. */
static uint16_t control_words[8] = {
    0x0320 | MASKS, 0x0F20 | MASKS, 0x0720 | MASKS, 0x0B20 | MASKS,
    0x0320 | MASKS, 0x0F20 | MASKS, 0x0720 | MASKS, 0x0B20 | MASKS,
};

enum { image_version = 200, console = 0 };

static void start(int argc, char** argv, char** envp) __attribute__((constructor(101), used));

static void start(int argc, char** argv, char** envp) {
    (void)envp;
    struct program_info info = {
        .instance = __ehdr_start,
        .name = argc > 0 ? argv[0] : "",
        /* The argument vector lies above every frame of the main thread. */
        .stack_top = argv,
        .version = image_version,
        .control_words = control_words,
    };
    routine* const* last_word = (routine* const*)((uintptr_t)__stop_tarn_crt - sizeof(routine*));
    __init_WindowsType(console | image_type);
    __initialise_cpplib();
    __init_cpplib_info(&info);
    __Register_map_info(__ehdr_start, __start_tarnmap);
    make_virtual_common();
    __execute_preamble(__start_tarn_crt, last_word);
#ifdef TARN_FORTRAN_MAIN
    static const int32_t interface_version = 2;
    struct fortran_arguments arguments = {.count = argc, .values = argv};
    __ORVEXINIT1_(&arguments, &interface_version);
#endif
}
