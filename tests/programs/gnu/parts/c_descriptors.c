#include <ISO_Fortran_binding.h>
#include <stdio.h>
#include <stdlib.h>

static void show(const char* what, int status, const CFI_cdesc_t* d) {
    printf("%-28s %d", what, status);
    if (d != NULL) {
        printf("  %s %zu bytes, attribute %d, type %x", d->base_addr ? "there" : "gone", d->elem_len,
               d->attribute, d->type);
        for (int i = 0; i < d->rank; i++)
            printf(" (%td %td %td)", d->dim[i].lower_bound, d->dim[i].extent, d->dim[i].sm);
    }
    puts("");
    fflush(stdout);
}

void c_show(const CFI_cdesc_t* d) {
    show("shown", CFI_is_contiguous(d), d);
}

// What a section, given as 3 lower bounds, upper bounds and strides, gets of an array.
static void cut(CFI_cdesc_t* from, const CFI_index_t* lower, const CFI_index_t* upper,
                const CFI_index_t* strides, int rank) {
    CFI_CDESC_T(3) room;
    CFI_cdesc_t* part = (CFI_cdesc_t*)&room;
    CFI_establish(part, NULL, CFI_attribute_pointer, from->type, from->elem_len, rank, NULL);
    const int status = CFI_section(part, from, lower, upper, strides);
    show("section", status, status ? NULL : part);
    if (!status)
        printf("    from byte %td on\n", (char*)part->base_addr - (char*)from->base_addr);
}

void c_sections(CFI_cdesc_t* d) {
    const CFI_index_t lower[] = {1, 0, 2}, upper[] = {3, 4, 3};
    const CFI_index_t every[] = {2, 1, 1}, back[] = {-1, -2, 0}, none[] = {0, 0, 0};
    const CFI_index_t last[] = {3, 4, 2}, first[] = {0, 0, 2}, outside[] = {4, 4, 2};
    cut(d, lower, upper, every, 3);
    cut(d, last, first, back, 2);
    cut(d, NULL, upper, every, 3);
    cut(d, lower, NULL, every, 3);
    cut(d, lower, lower, none, 0);
    cut(d, lower, upper, every, 2);
    cut(d, lower, outside, every, 3);
    cut(d, lower, upper, none, 0);
    const CFI_index_t place[] = {3, 2, 1};
    printf("%td\n", (char*)CFI_address(d, place) - (char*)d->base_addr);
    printf("%d\n", CFI_address(d, outside) == NULL);
}

void c_allocates(CFI_cdesc_t* d) {
    const CFI_index_t lower[] = {-1, 3}, upper[] = {2, 5};
    show("allocate", CFI_allocate(d, lower, upper, 0), d);
    show("once more", CFI_allocate(d, lower, upper, 0), NULL);
    show("deallocate", CFI_deallocate(d), d);
    show("once more", CFI_deallocate(d), NULL);
    show("none", CFI_deallocate(NULL), NULL);
    CFI_allocate(d, lower, upper, 0);
    for (CFI_index_t i = 0; i < 12; i++) ((int*)d->base_addr)[i] = (int)i * i;
}

void c_text(CFI_cdesc_t* d) {
    show("allocate a text", CFI_allocate(d, NULL, NULL, 11), d);
    snprintf(d->base_addr, 11, "%s", "ten bytes.");
    ((char*)d->base_addr)[10] = '!';
}

struct pair {
    double number;
    int count;
    char name[8];
};

void c_points(CFI_cdesc_t* pointer, CFI_cdesc_t* target) {
    const CFI_index_t lower[] = {7};
    show("point", CFI_setpointer(pointer, target, lower), pointer);
    show("without a target", CFI_setpointer(pointer, NULL, lower), pointer);
    show("own bounds", CFI_setpointer(pointer, target, NULL), pointer);
    show("no pointer", CFI_setpointer(target, pointer, NULL), NULL);

    static struct pair pairs[3] = {{1, 10, "one"}, {2, 20, "two"}, {3, 30, "three"}};
    const CFI_index_t extents[] = {3};
    CFI_CDESC_T(1) whole_room, part_room;
    CFI_cdesc_t *whole = (CFI_cdesc_t*)&whole_room, *part = (CFI_cdesc_t*)&part_room;
    CFI_establish(whole, pairs, CFI_attribute_other, CFI_type_struct, sizeof(struct pair), 1, extents);
    CFI_establish(part, NULL, CFI_attribute_pointer, CFI_type_int, 0, 1, NULL);
    show("counts", CFI_select_part(part, whole, offsetof(struct pair, count), 0), part);
    for (CFI_index_t i = 0; i < 3; i++) printf("%d\n", *(int*)CFI_address(part, &i));
    show("beyond", CFI_select_part(part, whole, sizeof(struct pair), 0), NULL);
    CFI_establish(part, NULL, CFI_attribute_pointer, CFI_type_char, 1, 1, NULL);
    show("names", CFI_select_part(part, whole, offsetof(struct pair, name), 5), part);
    show("too long", CFI_select_part(part, whole, offsetof(struct pair, name), 9), NULL);
    CFI_establish(part, NULL, CFI_attribute_allocatable, CFI_type_int, 0, 1, NULL);
    show("allocatable", CFI_select_part(part, whole, 0, 0), NULL);

    const CFI_index_t negative[] = {-1};
    show("negative", CFI_establish(part, pairs, CFI_attribute_other, CFI_type_int, 0, 1, negative), NULL);
    show("rank", CFI_establish(part, pairs, CFI_attribute_other, CFI_type_int, 0, 16, extents), NULL);
    show("type", CFI_establish(part, pairs, CFI_attribute_other, -2, 0, 1, extents), NULL);
    show("length", CFI_establish(part, pairs, CFI_attribute_other, CFI_type_struct, 0, 1, extents), NULL);
    show("storage", CFI_establish(part, pairs, CFI_attribute_allocatable, CFI_type_int, 0, 1, extents),
         NULL);
    const int types[] = {CFI_type_short, CFI_type_long_double, CFI_type_float128_Complex, CFI_type_Bool,
                         CFI_type_cptr, CFI_type_ucs4_char};
    for (int i = 0; i < 6; i++)
        show("type", CFI_establish(part, pairs, CFI_attribute_other, types[i], 12, 1, extents), part);
}
