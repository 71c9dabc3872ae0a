/* Virtual storage: ranges of address space that take memory only where they are touched.
 *
 *  - An expanding region is a range anywhere, of any size that the address space has: 64 GiB cost
 *    nothing, and each page that is read or written then costs a page. It reads as zeros. System
 *    calls may work in it as in any storage.
 *  - A virtual common is a range at an address that is chosen when the program is linked. With
 *    tarnfc, `--virtual-common=NAME` makes one of the COMMON block NAME. A C program writes a
 *    record of its own: TARN_VIRTUAL_COMMON below.
 *  - Virtual scratch is a region by a slot's number, 1 to 32.
 *
 * No access is possible just behind a region and just before it: one there is reported as an access
 * violation that names the region, with routine, line and callers. Regions go on in a child of
 * fork, as its own copy. All sizes are bytes.
 */
#ifndef TARN_VIRTUAL_STORAGE_H
#define TARN_VIRTUAL_STORAGE_H

#include <stdint.h>

#include "tarn/link_name.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Regions ---- */

/* Reserves a region and gives its start, a multiple of 256 KiB; null where there is no range, with
 * the reason in errno. `name` is copied; null is "No name". With an address, a multiple of 4096,
 * the region is made there: where nobody has the range, or where remove_virtual_region kept it. */
void* setup_virtual_region(const char* name, intptr_t size, void* address);
/* The same anywhere, and less where there isn't as much: half the size, and so on. Below 32 MiB the
 * program ends with a message and status 1. */
void* setup_expanding_region(const char* name, intptr_t size);

#define TARN_DECOMMIT 0x4000 /* the addresses stay reserved, for a region at this address */
#define TARN_RELEASE 0x8000  /* the addresses go back, too */
/* Gives the memory of the region that begins at `start` back. Non-zero: done. 0: no region begins
 * there, `kind` is neither of the two above, or the system refused. */
int remove_virtual_region(void* start, int32_t kind);

/* How many pages of 4096 bytes are committed together; 0 and less change nothing. A program that
 * fills its regions has fewer faults with 512 and more: regions made from then on use large pages
 * where the system has them. */
void __set_commit_pages(int32_t pages);

/* ---- Virtual common ---- */

#define TARN_VIRTUAL_COMMON_TAG 0x4F464E49u

struct tarn_virtual_common {
    void* address;        /* of the range, a multiple of 4096 */
    intptr_t size;        /* the library makes it 0 once the range is there */
    intptr_t commit_size; /* 0: as it is */
    uint32_t tag;         /* TARN_VIRTUAL_COMMON_TAG when the fields below hold */
    uint16_t reserved;
    uint16_t has_undefined_part;
    void* undefined_start; /* the part that reads as undefined, bytes of 0x80 */
    intptr_t undefined_length;
};

/* What stands in the section `tarnvc` of a program; the start-up object makes each one's range
 * before main. */
struct tarn_virtual_common_data {
    char mark[16]; /* "Tarnick_VC_data" */
    struct tarn_virtual_common record;
};

/* A range of `size_` bytes at `address_`, both constants:
 *
 *     static double* const grid = (double*)0x300000000000;
 *     TARN_VIRTUAL_COMMON(grid_common, 0x300000000000, 8LL << 32);
 *
 * The last two are the part that reads as undefined: TARN_VIRTUAL_COMMON_UNDEFINED. */
#define TARN_VIRTUAL_COMMON(name_, address_, size_) \
    TARN_VIRTUAL_COMMON_UNDEFINED(name_, address_, size_, 0, 0)
#define TARN_VIRTUAL_COMMON_UNDEFINED(name_, address_, size_, start_, length_)                \
    static struct tarn_virtual_common_data name_ __attribute__((section("tarnvc"), used)) = { \
        "Tarnick_VC_data",                                                                    \
        {(void*)(address_), (size_), 0, TARN_VIRTUAL_COMMON_TAG, 0, (length_) != 0,           \
         (void*)(start_), (length_)}}

/* Makes the range of a record, whose size becomes 0: a second call makes none. The undefined part
 * is filled each time. `instance` is an address in the module that the record belongs to, and names
 * it in messages. Ends the program, status 1, with a message where the range can't be had. */
struct tarn_virtual_common* __get_virtual_common_block(void* instance,
                                                       struct tarn_virtual_common* record);
/* The same without a record. The start of the range. */
void* setup_common_block_region(const char* path, void* address, intptr_t size,
                                intptr_t commit_size);
/* 1: a region of that name is there, and this is where. Names are compared without folders and
 * without regard to case. The size is a multiple of the commit size, measured from the multiple of
 * 256 KiB at or below the start; `committed` is the memory that the region has by now. */
int __get_virtual_common_info(const char* file_name, uintptr_t* address, intptr_t* size,
                              intptr_t* commit_size, intptr_t* committed);

/* ---- Virtual scratch ---- */

/* The size of regions to come, 64 KiB to 500 MiB; it is 500 MiB at the start. */
void SET_VIRTUAL_SCRATCH_FILE_SIZE_h(const intptr_t* size)
    TARN_LINK_NAME("SET_VIRTUAL_SCRATCH_FILE_SIZE#");
/* Opens the first free slot. The handle is the slot's number with bit 15 set; the entries below
 * take either. Status 0; -13: all slots are in use; 1: no range. */
void OPEN_VIRTUAL_SCRATCH_h(int16_t* handle, int16_t* status)
    TARN_LINK_NAME("OPEN_VIRTUAL_SCRATCH#");
/* Makes a slot's region at `*address`, or anywhere where that is null, and stores where it is.
 * Status 1, and a null address: no range. The slot itself isn't taken. */
void CREATE_VIRTUAL_SCRATCH_FILE_h(const int32_t* slot, void** address, int16_t* status)
    TARN_LINK_NAME("CREATE_VIRTUAL_SCRATCH_FILE#");
/* Where a slot's region is, as __get_virtual_common_info tells it; zeros without one. */
void GET_VIRTUAL_SCRATCH_FILE_INFO_h(const int32_t* slot, uintptr_t* address, intptr_t* size,
                                     intptr_t* commit_size, intptr_t* committed)
    TARN_LINK_NAME("GET_VIRTUAL_SCRATCH_FILE_INFO#");
/* Gives the memory back; the slot's next region has the same address. */
void CLOSE_VIRTUAL_SCRATCH_h(const int16_t* slot) TARN_LINK_NAME("CLOSE_VIRTUAL_SCRATCH#");
/* Gives the addresses back, too. */
void RELEASE_VIRTUAL_SCRATCH_h(const int16_t* slot) TARN_LINK_NAME("RELEASE_VIRTUAL_SCRATCH#");

#ifdef __cplusplus
}
#endif

#endif
