// What is asked of an ELF file: a section by its name, and a function by its address.
#include <cstring>
#include <elf.h>

#include "traceback/routine_map.h"

namespace tarn::traceback {
namespace {

struct Sections {
    Bytes file;
    const Elf64_Shdr* headers = nullptr;
    std::uint64_t count = 0;

    Bytes content(const Elf64_Shdr& header) const {
        const char* data =
            header.sh_type == SHT_NOBITS ? nullptr : file.part(header.sh_offset, header.sh_size);
        return data != nullptr ? Bytes{data, header.sh_size} : Bytes{};
    }
};

template <class Record>
const Record* record_at(Bytes file, std::uint64_t offset, std::uint64_t count) {
    if (offset % alignof(Record) != 0 || count > file.size / sizeof(Record)) return nullptr;
    return reinterpret_cast<const Record*>(file.part(offset, count * sizeof(Record)));
}

bool open_sections(Bytes file, Sections& sections) {
    const auto* header = record_at<Elf64_Ehdr>(file, 0, 1);
    if (header == nullptr || std::memcmp(header->e_ident, ELFMAG, SELFMAG) != 0 ||
        header->e_ident[EI_CLASS] != ELFCLASS64 || header->e_shentsize != sizeof(Elf64_Shdr))
        return false;
    const auto* first = record_at<Elf64_Shdr>(file, header->e_shoff, 1);
    if (first == nullptr) return false;
    // A file with very many sections has their number in the first one.
    sections.count = header->e_shnum != 0 ? header->e_shnum : first->sh_size;
    sections.headers = record_at<Elf64_Shdr>(file, header->e_shoff, sections.count);
    sections.file = file;
    return sections.headers != nullptr;
}

bool symbol_in(const Sections& sections, const Elf64_Shdr& table, std::uint64_t address,
               Symbol& symbol) {
    if (table.sh_link >= sections.count) return false;
    const Bytes names = sections.content(sections.headers[table.sh_link]);
    const Bytes content = sections.content(table);
    const std::uint64_t count = content.size / sizeof(Elf64_Sym);
    const auto* all = record_at<Elf64_Sym>(sections.file, table.sh_offset, count);
    if (all == nullptr || content.data == nullptr) return false;
    const Elf64_Sym* best = nullptr;
    for (const Elf64_Sym* each = all; each != all + count; ++each) {
        const unsigned kind = ELF64_ST_TYPE(each->st_info);
        if ((kind != STT_FUNC && kind != STT_GNU_IFUNC) || each->st_shndx == SHN_UNDEF) continue;
        if (address < each->st_value || (address - each->st_value >= each->st_size &&
                                         !(each->st_size == 0 && address == each->st_value)))
            continue;
        if (best == nullptr || each->st_value > best->st_value) best = each;
    }
    if (best == nullptr) return false;
    symbol = {names.text(best->st_name), best->st_value};
    return !symbol.name.empty();
}

}  // namespace

Bytes find_section(Bytes file, std::string_view name) {
    Sections sections;
    if (!open_sections(file, sections)) return {};
    const auto* header = record_at<Elf64_Ehdr>(file, 0, 1);
    const std::uint64_t names_at =
        header->e_shstrndx == SHN_XINDEX ? sections.headers[0].sh_link : header->e_shstrndx;
    if (names_at >= sections.count) return {};
    const Bytes names = sections.content(sections.headers[names_at]);
    for (std::uint64_t i = 0; i < sections.count; ++i) {
        if (names.text(sections.headers[i].sh_name) == name)
            return sections.content(sections.headers[i]);
    }
    return {};
}

bool find_symbol(Bytes file, std::uint64_t address, Symbol& symbol) {
    Sections sections;
    if (!open_sections(file, sections)) return false;
    for (std::uint32_t wanted : {SHT_SYMTAB, SHT_DYNSYM}) {
        for (std::uint64_t i = 0; i < sections.count; ++i) {
            if (sections.headers[i].sh_type == wanted &&
                symbol_in(sections, sections.headers[i], address, symbol))
                return true;
        }
    }
    return false;
}

}  // namespace tarn::traceback
