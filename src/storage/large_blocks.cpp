#include "storage/large_blocks.h"

#include <cstdlib>

#include "storage/polled_section.h"
#include "storage/regions.h"

namespace tarn::storage {

namespace {

constexpr std::intptr_t usual_block = 52428800;
constexpr std::intptr_t block_unit = 65536;

struct Piece {
    Piece* next;
    std::intptr_t size;
    char* address;
};

struct Block {
    Block* next;
    std::intptr_t size;
    char* base;
    Piece* allocated;  // newest first
    Piece* free;       // by address; no two of them meet
};

struct LargeBlocks {
    PolledSection section;
    Block* first = nullptr;
};
constinit LargeBlocks the_blocks;

Piece* new_piece(char* address, std::intptr_t size, Piece* next) {
    auto* piece = static_cast<Piece*>(std::malloc(sizeof(Piece)));
    if (piece != nullptr) *piece = {next, size, address};
    return piece;
}

// Where a free piece that fits hangs: an exact fit before all, else the first that is larger.
struct Place {
    Block* block = nullptr;
    Piece** link = nullptr;
};

Place find_place(std::intptr_t size) {
    Place larger;
    for (Block* block = the_blocks.first; block != nullptr; block = block->next) {
        for (Piece** link = &block->free; *link != nullptr; link = &(*link)->next) {
            if ((*link)->size == size) return {block, link};
            if ((*link)->size > size && larger.link == nullptr) larger = {block, link};
        }
    }
    return larger;
}

void* take(const Place& place, std::intptr_t size) {
    Piece* piece = *place.link;
    Block& block = *place.block;
    if (piece->size == size) {
        *place.link = piece->next;
        piece->next = block.allocated;
        block.allocated = piece;
        return piece->address;
    }
    Piece* taken = new_piece(piece->address, size, block.allocated);
    if (taken == nullptr) return nullptr;
    block.allocated = taken;
    piece->address += size;
    piece->size -= size;
    return taken->address;
}

// A new block with one free piece; false: there is no range, or no storage for the records.
bool add_block(std::intptr_t size) {
    std::intptr_t bytes = usual_block;
    if (size > usual_block && __builtin_add_overflow(size, block_unit - 1, &bytes)) {
        return false;
    }
    if (size > usual_block) bytes &= -block_unit;
    auto* block = static_cast<Block*>(std::malloc(sizeof(Block)));
    Piece* piece = new_piece(nullptr, bytes, nullptr);
    void* base = block != nullptr && piece != nullptr
                     ? setup_virtual_region("VIRTUAL_STORAGE", bytes, nullptr)
                     : nullptr;
    if (base == nullptr) {
        std::free(block);
        std::free(piece);
        return false;
    }
    piece->address = static_cast<char*>(base);
    *block = {the_blocks.first, bytes, piece->address, nullptr, piece};
    the_blocks.first = block;
    return true;
}

void put_back(Block& block, Piece* piece) {
    Piece* before = nullptr;
    Piece* after = block.free;
    while (after != nullptr && after->address < piece->address) {
        before = after;
        after = after->next;
    }
    piece->next = after;
    (before != nullptr ? before->next : block.free) = piece;
    if (after != nullptr && piece->address + piece->size == after->address) {
        piece->size += after->size;
        piece->next = after->next;
        std::free(after);
    }
    if (before != nullptr && before->address + before->size == piece->address) {
        before->size += piece->size;
        before->next = piece->next;
        std::free(piece);
    }
}

// Where an allocated piece hangs; no link: there is none at this address.
Place find_piece(const void* address) {
    const auto* at = static_cast<const char*>(address);
    for (Block* block = the_blocks.first; block != nullptr; block = block->next) {
        if (at < block->base || at >= block->base + block->size) continue;
        Piece** link = &block->allocated;
        while (*link != nullptr && (*link)->address != at) link = &(*link)->next;
        return {block, *link != nullptr ? link : nullptr};
    }
    return {};
}

std::intptr_t total(const Piece* piece) {
    std::intptr_t sum = 0;
    for (; piece != nullptr; piece = piece->next) sum += piece->size;
    return sum;
}

void print_pieces(const Piece* piece, std::FILE* stream) {
    for (int number = 1; piece != nullptr; piece = piece->next, ++number) {
        std::fprintf(stream, "    %d Region: %016lX, size 0x%lx  %ld\n", number,
                     reinterpret_cast<std::uintptr_t>(piece->address), piece->size, piece->size);
    }
}

}  // namespace

void* vmalloc(std::intptr_t size) {
    if (size < 0 || __builtin_add_overflow(size, 3, &size)) return nullptr;
    size &= -4;
    // Two pieces never share an address.
    if (size == 0) size = 4;
    InSection held(the_blocks.section);
    Place place = find_place(size);
    if (place.link == nullptr) {
        if (!add_block(size)) return nullptr;
        place = {the_blocks.first, &the_blocks.first->free};
    }
    return take(place, size);
}

void vfree(void* address) {
    InSection held(the_blocks.section);
    const Place place = find_piece(address);
    if (place.link == nullptr) return;
    Piece* piece = *place.link;
    *place.link = piece->next;
    put_back(*place.block, piece);
}

void* shrink_vmalloc(void* address, std::intptr_t size) {
    if (address == nullptr || size <= 0) return nullptr;
    InSection held(the_blocks.section);
    const Place place = find_piece(address);
    if (place.link == nullptr) return address;
    Piece* piece = *place.link;
    if (size > piece->size) return nullptr;
    const std::intptr_t kept = (size + 3) & -4;
    const std::intptr_t cut = piece->size - kept;
    if (cut <= 0) return address;
    Piece* tail = new_piece(piece->address + kept, cut, nullptr);
    if (tail == nullptr) return address;  // it stays as long as it was
    piece->size = kept;
    put_back(*place.block, tail);
    return address;
}

std::intptr_t free_empty_vmalloc_blocks() {
    InSection held(the_blocks.section);
    std::intptr_t freed = 0;
    for (Block** link = &the_blocks.first; *link != nullptr;) {
        Block* block = *link;
        if (block->allocated != nullptr) {
            link = &block->next;
            continue;
        }
        *link = block->next;
        freed += block->size;
        remove_virtual_region(block->base, Removal::release);
        std::free(block->free);
        std::free(block);
    }
    return freed;
}

void print_vheaps(bool allocated, bool free, std::FILE* stream) {
    InSection held(the_blocks.section);
    int number = 1;
    for (const Block* block = the_blocks.first; block != nullptr; block = block->next, ++number) {
        std::fprintf(stream, "%d Virtual Block, @ 0x%016lX, size %ld\n", number,
                     reinterpret_cast<std::uintptr_t>(block->base), block->size);
        if (allocated) {
            std::fputs("  Allocated:\n", stream);
            print_pieces(block->allocated, stream);
        }
        if (!free) continue;
        std::fputs("  Free:\n", stream);
        print_pieces(block->free, stream);
        if (block->free == nullptr) std::fputs("    No free regions\n", stream);
        const std::intptr_t used = total(block->allocated);
        const std::intptr_t left = total(block->free);
        std::fprintf(stream, "%d Allocated %ld, Free %ld (%ld)\n", number, used, left, used + left);
    }
}

}  // namespace tarn::storage
