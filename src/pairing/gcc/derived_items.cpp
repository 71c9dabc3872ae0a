// Items of derived types whose program has procedures for their input and output.
#include "fio/gnu/namelist.h"
#include "pairing/gcc/data_transfer.h"

namespace tarn::gcc {
namespace {

// A default INTEGER has 8 bytes in a program compiled with -fdefault-integer-8, and nothing tells
// which one this is: a place of 8 bytes does for both.
using AnyInteger = std::int64_t;

using FormattedRoutine = void (*)(void* object, AnyInteger* unit, const char* iotype,
                                  const ArrayDescriptor* values, AnyInteger* iostat, char* iomsg,
                                  std::size_t iotype_length, std::size_t iomsg_length);
using UnformattedRoutine = void (*)(void* object, AnyInteger* unit, AnyInteger* iostat, char* iomsg,
                                    std::size_t iomsg_length);

constexpr std::int8_t integer_type = 1;

// The list of DT as an assumed-shape array: INTEGER, rank 1.
ArrayDescriptor describe(const std::int32_t* values, std::int32_t count) {
    static constexpr std::int32_t nothing = 0;
    ArrayDescriptor array{};
    array.base = reinterpret_cast<char*>(const_cast<std::int32_t*>(count > 0 ? values : &nothing));
    array.offset = -1;
    array.element_length = sizeof *values;
    array.rank = 1;
    array.type = integer_type;
    array.span = sizeof *values;
    array.dimension[0] = {1, 1, count};
    return array;
}

void call(const fio::ItemProcedure& procedure, fio::ProcedureArguments& a) {
    AnyInteger unit = a.unit;
    AnyInteger iostat = a.iostat;
    if (a.unformatted) {
        const auto routine = reinterpret_cast<UnformattedRoutine>(procedure.routine);
        routine(procedure.object, &unit, &iostat, a.iomsg, a.iomsg_length);
    } else {
        const std::int32_t single[2] = {a.value_count == 1 ? *a.values : 0, 0};
        const ArrayDescriptor values =
            describe(a.value_count == 1 ? single : a.values, a.value_count);
        const auto routine = reinterpret_cast<FormattedRoutine>(procedure.routine);
        routine(procedure.object, &unit, a.iotype.data(), &values, &iostat, a.iomsg,
                a.iotype.size(), a.iomsg_length);
    }
    // A program with 4 bytes leaves the others as they were, 0.
    a.iostat = static_cast<std::int32_t>(iostat);
}

// A class container as compiled code makes one for a variable that isn't polymorphic.
struct ClassObject {
    void* data;
    const void* type_table;
};

void transfer_namelist_element(fio::Statement& statement, const fio::NamelistItem& item,
                               char* element) {
    ClassObject object{element, item.type_table};
    fio::transfer_in_namelist(statement, item_procedure(&object, item.procedure));
}

}  // namespace

void transfer_namelists_by_procedures() {
    fio::namelist_procedures() = {transfer_namelist_element, transfer_namelist_element};
}

fio::ItemProcedure item_procedure(void* object, void* routine) {
    return {call, routine, object};
}

void transfer_derived(DataBlock& block, void* object, void* routine) {
    PrivatePart& part = block.part();
    if (part.owner == Owner::native) return native_road().refuse_derived(&block);
    fio::transfer_derived(statement_of(block), item_procedure(object, routine));
}

}  // namespace tarn::gcc
