// Debug information and symbols, by libdw and libelf (elfutils).
#include <algorithm>
#include <cstring>
#include <dwarf.h>
#include <elfutils/libdw.h>
#include <fcntl.h>
#include <filesystem>
#include <gelf.h>
#include <libelf.h>
#include <memory>
#include <stdexcept>
#include <unistd.h>
#include <unordered_map>

#include "program_map.h"
#include "spelling.h"
#include "traceback/map_format.h"

namespace tarn::map {
namespace {

struct Range {
    std::uint64_t start, end;
};

std::string attribute_text(Dwarf_Die* die, unsigned name) {
    Dwarf_Attribute attribute;
    const char* text = dwarf_formstring(dwarf_attr_integrate(die, name, &attribute));
    return text != nullptr ? text : "";
}

std::uint64_t attribute_number(Dwarf_Die* die, unsigned name) {
    Dwarf_Attribute attribute;
    Dwarf_Word value = 0;
    return dwarf_formudata(dwarf_attr(die, name, &attribute), &value) == 0 ? value : 0;
}

bool is_fortran(int language) {
    switch (language) {
        case DW_LANG_Fortran77:
        case DW_LANG_Fortran90:
        case DW_LANG_Fortran95:
        case DW_LANG_Fortran03:
        case DW_LANG_Fortran08:
            return true;
        default:
            return false;
    }
}

// A procedure as its source declares it. What is inlined across files, or moved about by the
// linker, has it in another unit.
struct Declared {
    Dwarf_Die die;
    std::string source;
    int line;
};

class Reader {
  public:
    explicit Reader(const std::string& path);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ProgramMap read();

  private:
    // One compilation: what all its routines share.
    struct Unit {
        Dwarf_Die* die;
        std::string folder;
        bool fortran;
        Dwarf_Files* files = nullptr;
    };

    void read_sections();
    std::vector<Routine> read_symbols();
    void read_unit(Dwarf_Die* die);
    void read_lines(const Unit& unit);
    void read_children(const Unit& unit, Dwarf_Die* parent, int inline_depth);
    void read_routine(const Unit& unit, Dwarf_Die* die);
    void read_inlined(const Unit& unit, Dwarf_Die* die, int depth);
    std::vector<Range> code_of(Dwarf_Die* die) const;
    bool is_code(std::uint64_t address) const;
    std::string name_of(const Unit& unit, Dwarf_Die* die);
    std::string fortran_name(const Unit& unit, Dwarf_Die* die);
    std::string spelled(const Unit& unit, Dwarf_Die* die);
    std::string host_of(const Unit& unit, Dwarf_Die* die);
    std::string parallel_name(const Unit& unit, const std::string& symbol);
    std::string shown_path(const Unit& unit, const char* path) const;
    std::uint32_t file_index(const std::string& file);

    int descriptor_ = -1;
    Elf* elf_ = nullptr;
    Dwarf* dwarf_ = nullptr;
    std::vector<Range> code_;
    std::vector<Declared> declared_;  // of Fortran, but internal procedures
    std::unordered_map<std::uint64_t, std::string> symbols_;
    std::unordered_map<std::string, std::uint32_t> files_;
    Spelling spelling_;
    ProgramMap map_;
};

Reader::Reader(const std::string& path) {
    elf_version(EV_CURRENT);
    descriptor_ = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor_ < 0) throw std::runtime_error(path + ": " + std::strerror(errno));
    elf_ = elf_begin(descriptor_, ELF_C_READ_MMAP, nullptr);
    GElf_Ehdr header;
    if (elf_kind(elf_) != ELF_K_ELF || gelf_getehdr(elf_, &header) == nullptr)
        throw std::runtime_error(path + ": this is no program or library");
    if (header.e_machine != EM_X86_64 || (header.e_type != ET_EXEC && header.e_type != ET_DYN))
        throw std::runtime_error(path + ": not a linked program or library for x86-64");
    dwarf_ = dwarf_begin_elf(elf_, DWARF_C_READ, nullptr);  // null without debug information
}

Reader::~Reader() {
    dwarf_end(dwarf_);
    elf_end(elf_);
    if (descriptor_ >= 0) close(descriptor_);
}

void Reader::read_sections() {
    for (Elf_Scn* section = nullptr; (section = elf_nextscn(elf_, section)) != nullptr;) {
        GElf_Shdr header;
        if (gelf_getshdr(section, &header) != nullptr && (header.sh_flags & SHF_EXECINSTR) != 0)
            code_.push_back({header.sh_addr, header.sh_addr + header.sh_size});
    }
}

// Routines that the linker threw away stand at address 0 or so.
bool Reader::is_code(std::uint64_t address) const {
    return std::any_of(code_.begin(), code_.end(), [&](const Range& each) {
        return address >= each.start && address < each.end;
    });
}

// Routines without debug information get their names from here.
std::vector<Routine> Reader::read_symbols() {
    std::vector<Routine> routines;
    for (Elf_Scn* section = nullptr; (section = elf_nextscn(elf_, section)) != nullptr;) {
        GElf_Shdr header;
        if (gelf_getshdr(section, &header) == nullptr || header.sh_entsize == 0) continue;
        if (header.sh_type != SHT_SYMTAB && header.sh_type != SHT_DYNSYM) continue;
        Elf_Data* data = elf_getdata(section, nullptr);
        const auto count = static_cast<int>(header.sh_size / header.sh_entsize);
        for (int i = 0; data != nullptr && i < count; ++i) {
            GElf_Sym symbol;
            if (gelf_getsym(data, i, &symbol) == nullptr ||
                GELF_ST_TYPE(symbol.st_info) != STT_FUNC)
                continue;
            const char* name = elf_strptr(elf_, header.sh_link, symbol.st_name);
            if (name == nullptr || *name == 0 || !is_code(symbol.st_value)) continue;
            if (!symbols_.emplace(symbol.st_value, name).second) continue;
            std::uint32_t flags = 0;
            if (std::strcmp(name, "_start") == 0) flags = traceback::routine_hidden;
            if (std::strcmp(name, "MAIN__") == 0) flags = traceback::routine_is_main;
            routines.push_back({symbol.st_value,
                                symbol.st_value + std::max<std::uint64_t>(symbol.st_size, 1),
                                readable(name), flags});
        }
    }
    return routines;
}

std::uint32_t Reader::file_index(const std::string& file) {
    auto [place, is_new] = files_.try_emplace(file, static_cast<std::uint32_t>(map_.files.size()));
    if (is_new) map_.files.push_back(file);
    return place->second;
}

// As the compiler was given it: what lies below the folder it ran in is told from there.
std::string Reader::shown_path(const Unit& unit, const char* path) const {
    if (path == nullptr) return {};
    std::string plain = std::filesystem::path(path).lexically_normal().string();
    const std::string folder = unit.folder + "/";
    if (plain.compare(0, folder.size(), folder) == 0) plain.erase(0, folder.size());
    return plain;
}

void Reader::read_lines(const Unit& unit) {
    Dwarf_Lines* lines = nullptr;
    std::size_t count = 0;
    if (dwarf_getsrclines(unit.die, &lines, &count) != 0) return;
    std::unordered_map<const char*, std::uint32_t> known;
    for (std::size_t i = 0; i < count; ++i) {
        Dwarf_Line* line = dwarf_onesrcline(lines, i);
        Dwarf_Addr address = 0;
        int number = 0;
        bool ends = false;
        if (dwarf_lineaddr(line, &address) != 0 || dwarf_lineno(line, &number) != 0 ||
            dwarf_lineendsequence(line, &ends) != 0)
            continue;
        if (ends) {
            map_.lines.push_back({address, 0, 0});
            continue;
        }
        // Code that belongs to no line goes with the line before it.
        if (number <= 0 || !is_code(address)) continue;
        const char* source = dwarf_linesrc(line, nullptr, nullptr);
        auto [place, is_new] = known.try_emplace(source, 0);
        if (is_new) place->second = file_index(shown_path(unit, source));
        map_.lines.push_back({address, place->second, static_cast<std::uint32_t>(number)});
    }
}

std::vector<Range> Reader::code_of(Dwarf_Die* die) const {
    std::vector<Range> ranges;
    Dwarf_Addr base = 0, start = 0, end = 0;
    for (std::ptrdiff_t at = 0; (at = dwarf_ranges(die, at, &base, &start, &end)) > 0;) {
        if (start < end && is_code(start)) ranges.push_back({start, end});
    }
    return ranges;
}

std::string source_of(const std::string& folder, Dwarf_Die* die) {
    const char* file = dwarf_decl_file(die);
    return file != nullptr ? (std::filesystem::path(folder) / file).string() : std::string();
}

int line_of(Dwarf_Die* die) {
    int line = 0;
    return dwarf_decl_line(die, &line) == 0 ? line : 0;
}

std::string Reader::spelled(const Unit& unit, Dwarf_Die* die) {
    std::string name = attribute_text(die, DW_AT_name);
    const std::string file = source_of(unit.folder, die);
    const int line = line_of(die);
    if (file.empty() || line == 0) return name;
    // The symbol of a main program stands for its name where that is another's.
    if (name != "MAIN__") return spelling_.in_line(file, line, name);
    const std::string program = spelling_.of_program(file, line);
    return program.empty() ? "main program" : program;
}

// Debug information of the first level doesn't tell whose an internal procedure is. It has no
// symbol of its own, and its source stands behind its host's CONTAINS.
std::string Reader::host_of(const Unit& unit, Dwarf_Die* die) {
    const std::string file = source_of(unit.folder, die);
    const int contains = spelling_.contains_before(file, line_of(die));
    const Declared* host = nullptr;
    for (const Declared& each : declared_) {
        const bool nearer = host == nullptr || each.line > host->line;
        if (each.line < contains && nearer && each.source == file) host = &each;
    }
    if (host == nullptr) return {};
    Dwarf_Die found = host->die;
    return fortran_name(unit, &found);
}

bool has(Dwarf_Die* die, unsigned name) {
    Dwarf_Attribute attribute;
    return dwarf_attr(die, name, &attribute) != nullptr;
}

bool is_main_program(Dwarf_Die* die) {
    return has(die, DW_AT_main_subprogram) || attribute_text(die, DW_AT_name) == "MAIN__";
}

bool is_internal(Dwarf_Die* die) {
    return attribute_text(die, DW_AT_linkage_name).empty() && !has(die, DW_AT_external) &&
           !is_main_program(die);
}

// MODULE::PROCEDURE, and what is contained in it behind that.
std::string Reader::fortran_name(const Unit& unit, Dwarf_Die* die) {
    Dwarf_Die* scopes = nullptr;
    const int count = dwarf_getscopes_die(die, &scopes);
    const std::unique_ptr<Dwarf_Die, decltype(&std::free)> owned(scopes, &std::free);
    std::string name = spelled(unit, die);
    std::string symbol = attribute_text(die, DW_AT_linkage_name);
    bool nested = false;
    for (int i = 1; i < count; ++i) {
        if (dwarf_tag(&scopes[i]) != DW_TAG_subprogram) continue;
        nested = true;
        name.insert(0, spelled(unit, &scopes[i]) + "::");
        symbol = attribute_text(&scopes[i], DW_AT_linkage_name);
    }
    if (!nested && is_internal(die)) {
        const std::string host = host_of(unit, die);
        return host.empty() ? name : host + "::" + name;
    }
    const std::string module = module_in_symbol(symbol);
    if (module.empty()) return name;
    const std::string file = source_of(unit.folder, die);
    if (file.empty()) return module + "::" + name;
    return spelling_.of_module(file, module) + "::" + name;
}

// The body of a parallel region is a routine that the compiler names after the one it stands in.
std::string Reader::parallel_name(const Unit& unit, const std::string& symbol) {
    for (const Declared& each : declared_) {
        Dwarf_Die die = each.die;
        if (attribute_text(&die, DW_AT_linkage_name) == symbol ||
            attribute_text(&die, DW_AT_name) == symbol ||
            (symbol == "MAIN__" && is_main_program(&die)))
            return fortran_name(unit, &die);
    }
    return symbol;
}

std::string Reader::name_of(const Unit& unit, Dwarf_Die* die) {
    // The declaration that stands behind a copy of the code.
    Dwarf_Die origin = *die;
    for (int i = 0; i < 8; ++i) {
        Dwarf_Attribute attribute;
        Dwarf_Die next;
        if (dwarf_formref_die(dwarf_attr(&origin, DW_AT_abstract_origin, &attribute), &next) ==
            nullptr)
            break;
        origin = next;
    }
    std::string name;
    if (unit.fortran) {
        name = fortran_name(unit, &origin);
    } else {
        const std::string symbol = attribute_text(&origin, DW_AT_linkage_name);
        name = symbol.empty() ? attribute_text(&origin, DW_AT_name) : demangled(symbol);
    }
    const std::size_t parallel = name.find("._omp_fn");
    if (parallel == std::string::npos) return name;
    return parallel_name(unit, name.substr(0, parallel)) + " (parallel region)";
}

void Reader::read_routine(const Unit& unit, Dwarf_Die* die) {
    const std::vector<Range> ranges = code_of(die);
    if (ranges.empty()) return;
    Routine routine;
    routine.name = name_of(unit, die);
    // Routines of one file have no symbol in the debug information, but one in the table.
    const auto own = symbols_.find(ranges.front().start);
    if (!unit.fortran && own != symbols_.end() && own->second.starts_with("_Z"))
        routine.name = demangled(own->second.substr(0, own->second.find('.')));
    if (routine.name == "main") {
        routine.flags = unit.fortran ? traceback::routine_hidden : traceback::routine_is_main;
    }
    for (const Range& each : ranges) {
        auto symbol = symbols_.find(each.start);
        if (symbol != symbols_.end() && symbol->second == "MAIN__") {
            routine.flags = traceback::routine_is_main;
            if (routine.name.empty()) routine.name = "main program";
        }
        if (symbol != symbols_.end() && symbol->second.find(".part.") != std::string::npos)
            routine.flags |= traceback::routine_is_rest;
        routine.start = each.start;
        routine.end = each.end;
        map_.routines.push_back(routine);
    }
}

void Reader::read_inlined(const Unit& unit, Dwarf_Die* die, int depth) {
    InlinedCall call;
    call.name = name_of(unit, die);
    call.depth = static_cast<std::uint32_t>(depth);
    call.call_line = static_cast<std::uint32_t>(attribute_number(die, DW_AT_call_line));
    // A routine that the compiler split in two and put together again calls itself from its own
    // first line.
    int own_line = 0;
    if (dwarf_decl_line(die, &own_line) == 0 &&
        call.call_line == static_cast<std::uint32_t>(own_line))
        return;
    const std::uint64_t file = attribute_number(die, DW_AT_call_file);
    if (unit.files != nullptr)
        call.call_file = shown_path(unit, dwarf_filesrc(unit.files, file, nullptr, nullptr));
    for (const Range& each : code_of(die)) {
        call.start = each.start;
        call.end = each.end;
        map_.inlined.push_back(call);
    }
}

void Reader::read_children(const Unit& unit, Dwarf_Die* parent, int inline_depth) {
    Dwarf_Die child;
    if (dwarf_child(parent, &child) != 0) return;
    do {
        switch (dwarf_tag(&child)) {
            case DW_TAG_subprogram:
                read_routine(unit, &child);
                read_children(unit, &child, 0);
                break;
            case DW_TAG_inlined_subroutine:
                read_inlined(unit, &child, inline_depth);
                read_children(unit, &child, inline_depth + 1);
                break;
            case DW_TAG_lexical_block:
            case DW_TAG_module:
            case DW_TAG_namespace:
            case DW_TAG_class_type:
            case DW_TAG_structure_type:
                read_children(unit, &child, inline_depth);
                break;
            default:
                break;
        }
    } while (dwarf_siblingof(&child, &child) == 0);
}

void list_declared(Dwarf_Die* parent, const std::string& folder, std::vector<Declared>& all) {
    Dwarf_Die child;
    if (dwarf_child(parent, &child) != 0) return;
    do {
        const int tag = dwarf_tag(&child);
        if (tag == DW_TAG_module) list_declared(&child, folder, all);
        const int line = tag == DW_TAG_subprogram ? line_of(&child) : 0;
        // What the C library calls as `main` is the compiler's.
        const bool made = line == 0 || has(&child, DW_AT_abstract_origin) ||
                          attribute_text(&child, DW_AT_name) == "main";
        if (!made && !is_internal(&child)) all.push_back({child, source_of(folder, &child), line});
    } while (dwarf_siblingof(&child, &child) == 0);
}

void Reader::read_unit(Dwarf_Die* die) {
    const int tag = dwarf_tag(die);
    if (tag != DW_TAG_compile_unit && tag != DW_TAG_partial_unit) return;
    Unit unit{die, attribute_text(die, DW_AT_comp_dir), is_fortran(dwarf_srclang(die))};
    std::size_t count = 0;
    if (dwarf_getsrcfiles(die, &unit.files, &count) != 0) unit.files = nullptr;
    read_lines(unit);
    read_children(unit, die, 0);
}

ProgramMap Reader::read() {
    read_sections();
    // The symbols first, for they tell which routine is a Fortran main program.
    const std::vector<Routine> from_symbols = read_symbols();
    map_.files.emplace_back();  // the file of no line
    std::vector<Dwarf_Die> units;
    Dwarf_CU* unit = nullptr;
    Dwarf_Die die;
    while (dwarf_ != nullptr &&
           dwarf_get_units(dwarf_, unit, &unit, nullptr, nullptr, &die, nullptr) == 0)
        units.push_back(die);
    for (Dwarf_Die& each : units) {
        if (is_fortran(dwarf_srclang(&each)))
            list_declared(&each, attribute_text(&each, DW_AT_comp_dir), declared_);
    }
    for (Dwarf_Die& each : units) read_unit(&each);
    // What the debug information told counts before the symbols.
    map_.routines.insert(map_.routines.end(), from_symbols.begin(), from_symbols.end());
    return std::move(map_);
}

}  // namespace

ProgramMap read_program(const std::string& path) {
    return Reader(path).read();
}

}  // namespace tarn::map
