#include "exceptions/loaded_modules.h"

#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <link.h>
#include <sys/auxv.h>
#include <unistd.h>

namespace tarn::exceptions {
namespace {

// "start-end perms offset device inode   path"
bool parse(std::string_view line, LoadedCode& code) {
    const char* const end = line.data() + line.size();
    const auto first = std::from_chars(line.data(), end, code.start, 16);
    if (first.ec != std::errc{} || first.ptr == end || *first.ptr != '-') return false;
    const auto second = std::from_chars(first.ptr + 1, end, code.end, 16);
    constexpr std::size_t permissions = 5;
    if (second.ec != std::errc{} || static_cast<std::size_t>(end - second.ptr) < permissions)
        return false;
    const bool has_code = second.ptr[3] == 'x';
    const std::size_t slash = line.find('/');
    if (!has_code || slash == std::string_view::npos) return false;
    code.path = line.substr(slash);
    return true;
}

struct Receiver {
    void (*each)(const LoadedCode& code, void* data);
    void* data;
};

// Where nothing can be read of the system's own list.
void list_by_loader(Receiver receiver) {
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) {
            const auto& to = *static_cast<Receiver*>(data);
            for (const ElfW(Phdr)* part = info->dlpi_phdr;
                 part != info->dlpi_phdr + info->dlpi_phnum; ++part) {
                if (part->p_type != PT_LOAD || (part->p_flags & PF_X) == 0) continue;
                const std::uintptr_t start = info->dlpi_addr + part->p_vaddr;
                const bool is_program = info->dlpi_name[0] == 0;
                const auto* name = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
                to.each({start, start + part->p_memsz,
                         is_program && name != nullptr ? name : info->dlpi_name},
                        to.data);
            }
            return 0;
        },
        &receiver);
}

}  // namespace

void list_loaded_code(void (*each)(const LoadedCode& code, void* data), void* data) {
    const int file = open("/proc/self/maps", O_RDONLY | O_CLOEXEC);
    if (file < 0) return list_by_loader({each, data});
    char buffer[8192];  // a line is at most a path long
    std::size_t length = 0;
    for (;;) {
        const ssize_t got = read(file, buffer + length, sizeof buffer - length);
        if (got <= 0) break;
        length += static_cast<std::size_t>(got);
        std::string_view left(buffer, length);
        for (std::size_t line_end = left.find('\n'); line_end != std::string_view::npos;
             line_end = left.find('\n')) {
            LoadedCode code;
            if (parse(left.substr(0, line_end), code)) each(code, data);
            left.remove_prefix(line_end + 1);
        }
        if (left.size() == sizeof buffer) break;
        std::memmove(buffer, left.data(), left.size());
        length = left.size();
    }
    close(file);
}

}  // namespace tarn::exceptions
