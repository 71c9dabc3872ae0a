#include "traceback/module.h"

#include <cstddef>
#include <dlfcn.h>
#include <link.h>

extern "C" int _dl_find_object(void*, struct dl_find_object*) noexcept __attribute__((weak));

namespace tarn::traceback {
namespace {

struct Search {
    std::uintptr_t address;
    Module* module;
};

int look_at(dl_phdr_info* info, std::size_t, void* data) {
    auto* search = static_cast<Search*>(data);
    Module found;
    found.bias = info->dlpi_addr;
    found.path = info->dlpi_name;
    found.start = ~std::uintptr_t{0};
    bool holds = false;
    for (const ElfW(Phdr)* part = info->dlpi_phdr; part != info->dlpi_phdr + info->dlpi_phnum;
         ++part) {
        const std::uintptr_t start = info->dlpi_addr + part->p_vaddr;
        if (part->p_type == PT_GNU_EH_FRAME) found.frame_table = reinterpret_cast<void*>(start);
        if (part->p_type != PT_LOAD) continue;
        const std::uintptr_t end = start + part->p_memsz;
        if (start < found.start) found.start = start;
        if (end > found.end) found.end = end;
        holds = holds || (search->address >= start && search->address < end);
    }
    if (holds) *search->module = found;
    return holds ? 1 : 0;
}

}  // namespace

bool find_module(std::uintptr_t address, Module& module) {
    if (_dl_find_object == nullptr) {
        Search search{address, &module};
        return dl_iterate_phdr(look_at, &search) != 0;
    }
    dl_find_object found;
    if (_dl_find_object(reinterpret_cast<void*>(address), &found) != 0) return false;
    module.start = reinterpret_cast<std::uintptr_t>(found.dlfo_map_start);
    module.end = reinterpret_cast<std::uintptr_t>(found.dlfo_map_end);
    module.bias = found.dlfo_link_map->l_addr;
    module.path = found.dlfo_link_map->l_name;
    module.frame_table = found.dlfo_eh_frame;
    return true;
}

}  // namespace tarn::traceback
