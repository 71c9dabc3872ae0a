#include "storage/global_blocks.h"

#include <cstdlib>
#include <sys/mman.h>

#include "storage/polled_section.h"

namespace tarn::storage {

namespace {

struct GlobalBlock {
    GlobalBlock* next;
    void* address;
    std::size_t size;
};
struct GlobalBlocks {
    PolledSection section;
    GlobalBlock* first = nullptr;
};
constinit GlobalBlocks the_blocks;

}  // namespace

// The size of a range isn't kept by the system, which wants it when the range is given back.
void* global_alloc(std::intptr_t size) {
    auto* block = static_cast<GlobalBlock*>(std::malloc(sizeof(GlobalBlock)));
    if (block == nullptr) return nullptr;
    void* address = MAP_FAILED;
    if (size > 0) {
        address = mmap(nullptr, static_cast<std::size_t>(size), PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    }
    if (address == MAP_FAILED) {
        std::free(block);
        return nullptr;
    }
    InSection held(the_blocks.section);
    *block = {the_blocks.first, address, static_cast<std::size_t>(size)};
    the_blocks.first = block;
    return address;
}

void global_free(void* address) {
    GlobalBlock* block = nullptr;
    {
        InSection held(the_blocks.section);
        GlobalBlock** place = &the_blocks.first;
        while (*place != nullptr && (*place)->address != address) place = &(*place)->next;
        block = *place;
        if (block != nullptr) *place = block->next;
    }
    if (block == nullptr) return;
    munmap(block->address, block->size);
    std::free(block);
}

}  // namespace tarn::storage
