// The entries that tell a group's variables before a NAMELIST statement is opened.
#include "frame/link_name.h"
#include "pairing/gcc/data_transfer.h"
#include "pairing/gcc/namelist.h"
#include "pairing/gcc/type_record.h"

namespace tarn::gcc {
namespace {

constexpr std::int8_t derived_type = 5;
constexpr std::int8_t class_type = 7;

void add_variable(DataBlock& block, void* address, const char* path, std::int32_t kind,
                  std::size_t length, const TypeWords& type, void* procedure, void* type_table) {
    fio::NamelistVariable variable;
    variable.address = address;
    variable.path = path;
    variable.derived = type.type == derived_type || type.type == class_type;
    variable.type = item_type(type.type);
    variable.kind = kind;
    variable.size = type.element_length;
    variable.length = length;
    variable.rank = static_cast<unsigned char>(type.rank);
    variable.procedure = procedure;
    if (procedure != nullptr) transfer_namelists_by_procedures();
    variable.type_table = type_table;
    if (type.type == class_type && type_table != nullptr) {
        // What is given is the container, which begins with the object's address.
        variable.address = *static_cast<void**>(address);
        variable.size = static_cast<std::size_t>(static_cast<const TypeRecord*>(type_table)->size);
    }
    group_of(block).add(variable);
}

}  // namespace

fio::NamelistGroup& group_of(DataBlock& block) {
    PrivatePart& part = block.part();
    if ((block.flags & has_variables) == 0) {
        part.namelist = fio::take_namelist_group();
        part.namelist->name = {block.namelist_name, block.namelist_name_length};
        block.flags |= has_variables;
    }
    return *part.namelist;
}

void release_group(DataBlock& block) {
    if ((block.flags & has_variables) == 0) return;
    fio::give_back(block.part().namelist);
    block.flags &= ~has_variables;
}

}  // namespace tarn::gcc

using tarn::gcc::DataBlock;
using tarn::gcc::TypeWords;

extern "C" {

TARN_EXPORT void _gfortran_st_set_nml_var(DataBlock* block, void* address, const char* path,
                                          std::int32_t kind, std::size_t length, TypeWords type) {
    tarn::gcc::add_variable(*block, address, path, kind, length, type, nullptr, nullptr);
}

TARN_EXPORT void _gfortran_st_set_nml_dtio_var(DataBlock* block, void* address, const char* path,
                                               std::int32_t kind, std::size_t length,
                                               TypeWords type, void* procedure, void* type_table) {
    tarn::gcc::add_variable(*block, address, path, kind, length, type, procedure, type_table);
}

TARN_EXPORT void _gfortran_st_set_nml_var_dim(DataBlock* block, std::int32_t index,
                                              std::int64_t stride, std::int64_t lower,
                                              std::int64_t upper) {
    tarn::gcc::group_of(*block).set_dimension(index, {stride, lower, upper});
}

}  // extern "C"
