#include "storage/mappings.h"

#include <atomic>
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
    std::atomic<Mapping*> first = nullptr;  // changes while the section is held
    bool released_at_exit = false;
};
constinit Mappings the_mappings;

bool is_same_file(int a, int b) {
    struct stat x {};
    struct stat y {};
    return fstat(a, &x) == 0 && fstat(b, &y) == 0 && x.st_dev == y.st_dev && x.st_ino == y.st_ino;
}

// The end of a shared name: whoever gets the lock alone is its last user. The lock is asked for by
// a descriptor of its own, since a process that fork made has the old one, and its lock, in common
// with its parent.
void leave_shared(const Mapping& mapping) {
    const int file = shm_open(mapping.name->c_str(), O_RDWR | O_CLOEXEC, 0);
    const bool named = file >= 0 && is_same_file(file, mapping.file);
    close(mapping.file);
    if (named && flock(file, LOCK_EX | LOCK_NB) == 0) shm_unlink(mapping.name->c_str());
    if (file >= 0) close(file);
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
            const int error = errno;
            // A name that was made for nothing goes again.
            if (found != Found::stale && flock(file, LOCK_EX | LOCK_NB) == 0)
                shm_unlink(path.c_str());
            close(file);
            errno = error;
            if (found == Found::stale) continue;
            return nullptr;
        }
        if (!the_mappings.released_at_exit) {
            the_mappings.released_at_exit = std::atexit(leave_all_shared) == 0;
        }
        return keep(address, static_cast<std::size_t>(size), file, new std::string(path));
    }
}

// Most programs have no mapping, and ask with every block that they release.
bool is_mapped(const void* address) {
    if (the_mappings.first.load(std::memory_order_acquire) == nullptr) return false;
    InSection held(the_mappings.section);
    const Mapping* mapping = the_mappings.first;
    while (mapping != nullptr && mapping->address != address) mapping = mapping->next;
    return mapping != nullptr;
}

bool unmap(void* address) {
    Mapping* found = nullptr;
    {
        InSection held(the_mappings.section);
        Mapping* before = nullptr;
        found = the_mappings.first;
        while (found != nullptr && found->address != address) {
            before = found;
            found = found->next;
        }
        if (found != nullptr && before != nullptr) {
            before->next = found->next;
        } else if (found != nullptr) {
            the_mappings.first = found->next;
        }
    }
    if (found == nullptr) return false;
    release(found);
    return true;
}

}  // namespace tarn::storage
