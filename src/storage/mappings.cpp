#include "storage/mappings.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "storage/polled_section.h"

namespace tarn::storage {

namespace {

struct Mapping {
    Mapping* next;
    void* address;
    std::size_t size;
    int file;           // of shared storage, locked while it is in use; -1 of a file's mapping
    std::string* name;  // of shared storage
};

struct Mappings {
    PolledSection section;
    Mapping* first = nullptr;
    bool released_at_exit = false;
};
constinit Mappings the_mappings;

// The end of a shared name: whoever gets the lock alone is its last user.
void leave_shared(const Mapping& mapping) {
    if (flock(mapping.file, LOCK_EX | LOCK_NB) == 0) shm_unlink(mapping.name->c_str());
    close(mapping.file);
    delete mapping.name;
}

void release(Mapping* mapping) {
    munmap(mapping->address, mapping->size);
    if (mapping->file >= 0) leave_shared(*mapping);
    delete mapping;
}

// A name that its last user doesn't give back would keep its storage for ever.
void leave_all_shared() {
    for (Mapping* mapping = the_mappings.first; mapping != nullptr; mapping = mapping->next) {
        if (mapping->file >= 0) leave_shared(*mapping);
        mapping->file = -1;
    }
}

void* keep(void* address, std::size_t size, int file, std::string* name) {
    auto* mapping = new Mapping{nullptr, address, size, file, name};
    InSection held(the_mappings.section);
    mapping->next = the_mappings.first;
    the_mappings.first = mapping;
    return address;
}

// Bytes to map, after the file has been made as long as it needs to be; -1: it can't be.
std::intptr_t fit_size(int file, std::intptr_t size, MappedFor purpose) {
    struct stat status {};
    if (fstat(file, &status) != 0) return -1;
    const std::intptr_t there = status.st_size;
    if (S_ISREG(status.st_mode) && there >= size && there > 0) return there;
    if (!S_ISREG(status.st_mode) || purpose == MappedFor::reading || size <= 0) {
        errno = EINVAL;
        return -1;
    }
    return ftruncate(file, size) == 0 ? size : -1;
}

void* map(int file, std::intptr_t size, MappedFor purpose) {
    const int protection = purpose == MappedFor::reading ? PROT_READ : PROT_READ | PROT_WRITE;
    void* address = mmap(nullptr, static_cast<std::size_t>(size), protection, MAP_SHARED, file, 0);
    return address == MAP_FAILED ? nullptr : address;
}

void close_keeping_error(int file) {
    const int error = errno;
    close(file);
    errno = error;
}

// A name of the system has one slash, in front.
std::string system_name(std::string_view name) {
    std::string result = "/tarn-" + std::to_string(getuid()) + "-";
    for (const char c : name) {
        if (c == '/') {
            result += "%2F";
        } else if (c == '%') {
            result += "%25";
        } else {
            result += c;
        }
    }
    return result;
}

enum class Found { usable, stale, failed };

// Takes the shared lock that tells others of this user. The exclusive one comes first: who gets it
// is alone, and what a process that crashed may have left goes away.
Found enter_shared(int file, std::intptr_t size) {
    if (flock(file, LOCK_EX | LOCK_NB) == 0 && ftruncate(file, 0) != 0) return Found::failed;
    // A storage that others use grows where that is needed; none of them minds.
    struct stat status {};
    if (fstat(file, &status) != 0) return Found::failed;
    if (status.st_size < size && ftruncate(file, size) != 0) return Found::failed;
    if (flock(file, LOCK_SH) != 0) return Found::failed;
    // Between the two locks the last user may have taken the name away, or a new one emptied it.
    if (fstat(file, &status) != 0) return Found::failed;
    return status.st_nlink == 0 || status.st_size < size ? Found::stale : Found::usable;
}

}  // namespace

void* map_file(const char* path, std::intptr_t size, MappedFor purpose) {
    const int flags = purpose == MappedFor::reading ? O_RDONLY : O_RDWR | O_CREAT;
    const int file = open(path, flags | O_CLOEXEC, 0666);
    if (file < 0) return nullptr;
    const std::intptr_t bytes = fit_size(file, size, purpose);
    void* address = bytes < 0 ? nullptr : map(file, bytes, purpose);
    close_keeping_error(file);
    if (address == nullptr) return nullptr;
    return keep(address, static_cast<std::size_t>(bytes), -1, nullptr);
}

void* create_interprocess_shared_memory(std::string_view name, std::intptr_t size) {
    if (size <= 0) size = 1;
    const std::string path = system_name(name);
    for (;;) {
        const int file = shm_open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (file < 0) return nullptr;
        const Found found = enter_shared(file, size);
        void* address = found == Found::usable ? map(file, size, MappedFor::sharing) : nullptr;
        if (address == nullptr) {
            close_keeping_error(file);
            if (found == Found::stale) continue;
            return nullptr;
        }
        if (!the_mappings.released_at_exit) {
            the_mappings.released_at_exit = std::atexit(leave_all_shared) == 0;
        }
        return keep(address, static_cast<std::size_t>(size), file, new std::string(path));
    }
}

bool is_mapped(const void* address) {
    InSection held(the_mappings.section);
    const Mapping* mapping = the_mappings.first;
    while (mapping != nullptr && mapping->address != address) mapping = mapping->next;
    return mapping != nullptr;
}

bool unmap(void* address) {
    Mapping* found = nullptr;
    {
        InSection held(the_mappings.section);
        Mapping** place = &the_mappings.first;
        while (*place != nullptr && (*place)->address != address) place = &(*place)->next;
        found = *place;
        if (found != nullptr) *place = found->next;
    }
    if (found == nullptr) return false;
    release(found);
    return true;
}

}  // namespace tarn::storage
