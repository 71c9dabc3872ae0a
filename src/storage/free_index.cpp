#include "storage/free_index.h"

#include <algorithm>
#include <bit>
#include <sys/mman.h>

namespace tarn::storage {

namespace {

constexpr int used_levels = 3;

std::uint32_t last_bit(std::uint64_t bits) {
    return 63 - static_cast<std::uint32_t>(std::countl_zero(bits));
}

}  // namespace

// Pages of the tables that no region has needed yet cost nothing.
bool FreeIndex::start() {
    void* got = mmap(nullptr, sizeof(Tables), PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (got == MAP_FAILED) return false;
    tables_ = static_cast<Tables*>(got);
    return true;
}

void FreeIndex::stop() {
    if (tables_) munmap(tables_, sizeof(Tables));
    tables_ = nullptr;
}

std::uint32_t* FreeIndex::level(int number) {
    switch (number) {
        case 0:
            return tables_->bound.data();
        case 1:
            return tables_->bound1.data();
        case 2:
            return tables_->bound2.data();
        default:
            return tables_->bound3.data();
    }
}

std::uint64_t* FreeIndex::used(int number) {
    switch (number) {
        case 0:
            return tables_->used.data();
        case 1:
            return tables_->used1.data();
        default:
            return tables_->used2.data();
    }
}

void FreeIndex::mark_used(std::uint32_t page) {
    for (int number = 0; number < used_levels; ++number, page >>= branch_bits) {
        used(number)[page / branches] |= std::uint64_t{1} << page % branches;
    }
}

void FreeIndex::mark_unused(std::uint32_t page) {
    for (int number = 0; number < used_levels; ++number, page >>= branch_bits) {
        std::uint64_t& word = used(number)[page / branches];
        word &= ~(std::uint64_t{1} << page % branches);
        if (word != 0) return;
    }
}

void FreeIndex::insert(Address region, std::uint32_t size) {
    std::uint32_t node = page_of(region);
    Address& first = tables_->first[node];
    if (first == 0) mark_used(node);
    if (first == 0 || region < first) first = region;
    for (int number = 0; number < levels; ++number, node >>= branch_bits) {
        std::uint32_t& bound = level(number)[node];
        if (bound < size) bound = size;
    }
}

void FreeIndex::remove(Address region, Address next) {
    std::uint32_t page = page_of(region);
    Address& first = tables_->first[page];
    if (first != region) return;
    first = next && page_of(next) == page ? next : 0;
    if (first != 0) return;
    tables_->bound[page] = 0;
    mark_unused(page);
}

void FreeIndex::put_bound_right(int number, std::uint32_t node) {
    const std::uint32_t* below = level(number - 1) + node * branches;
    level(number)[node] = *std::max_element(below, below + branches);
}

std::uint32_t FreeIndex::next_node(int number, std::uint32_t from, std::uint32_t least) {
    const std::uint32_t* bounds = level(number);
    for (std::uint32_t node = from;;) {
        std::uint32_t stop = std::min(nodes(number), (node | (branches - 1)) + 1);
        for (; node < stop; ++node) {
            if (bounds[node] >= least) return node;
        }
        if (node >= nodes(number)) return nodes(number);
        // The rest of this branch is done: the node above tells which branch is next. One that
        // promised more than it has gets its true bound, and is passed over.
        std::uint32_t branch = next_node(number + 1, node >> branch_bits, least);
        if (branch >= nodes(number + 1)) return nodes(number);
        put_bound_right(number + 1, branch);
        node = branch << branch_bits;
    }
}

bool FreeIndex::page_before(std::uint32_t& page) {
    std::uint32_t node = page;
    for (int number = 0; number < used_levels; ++number, node >>= branch_bits) {
        std::uint64_t left = (std::uint64_t{1} << node % branches) - 1;
        std::uint64_t bits = used(number)[node / branches] & left;
        if (bits == 0) continue;
        node = (node & ~(branches - 1)) + last_bit(bits);
        while (number-- > 0) node = (node << branch_bits) + last_bit(used(number)[node]);
        page = node;
        return true;
    }
    // The topmost level has a word for each half of the addresses.
    if (node != 1 || used(used_levels - 1)[0] == 0) return false;
    node = last_bit(used(used_levels - 1)[0]);
    for (int number = used_levels - 1; number-- > 0;) {
        node = (node << branch_bits) + last_bit(used(number)[node]);
    }
    page = node;
    return true;
}

Address FreeIndex::before(Address address) {
    std::uint32_t page = page_of(address);
    Address region = tables_->first[page];
    if (region == 0 || region >= address) {
        if (!page_before(page)) return 0;
        region = tables_->first[page];
    }
    // A link that leads back is none of ours: the heap finds that out.
    for (Address next = link_of(region); next > region && next < address && page_of(next) == page;
         next = link_of(region)) {
        region = next;
    }
    return region;
}

}  // namespace tarn::storage
