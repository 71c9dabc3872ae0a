#include "storage/heap.h"

#include <cstring>

namespace tarn::storage {

namespace {

constexpr std::uint32_t hash_page = page_size;
constexpr std::uint32_t first_heap_commit = 8192;
constexpr std::uint32_t commit_margin = 128;
constexpr std::uint32_t spare_batch = 50;
// A range's free region is as long as the range itself although it begins a little inside it, so a
// reservation is two pages longer than what it is said to hold.
constexpr std::uint32_t range_slack = 2 * page_size;

// 0, which is never a block, for a pointer that lies outside the addresses a heap can have.
Address block_of(const void* pointer) {
    auto value = reinterpret_cast<std::uintptr_t>(pointer);
    return value >= page_size && value < address_limit ? static_cast<Address>(value) - 4 : 0;
}

void* pointer_of(Address block) {
    return reinterpret_cast<void*>(std::uintptr_t{block} + 4);
}

constexpr std::uint32_t total_size(std::uint32_t length) {
    return (length + 7) & ~3U;
}

// What a region must give up in front so that the pointer behind the header comes out aligned.
constexpr std::uint32_t padding_for(Address region, std::uint32_t alignment) {
    return alignment <= 4 ? 0 : (0U - (region + 4)) & (alignment - 1);
}

}  // namespace

bool Heap::start() {
    Address base = reserve_pages(std::uint64_t{first_reservation} + range_slack);
    if (base == 0 || !free_index_.start() ||
        !commit_pages(base, base + hash_page + first_heap_commit))
        return false;
    hash_table_ = &at<Address>(base);
    use_memory_block(base + hash_page, first_reservation, first_heap_commit);
    return true;
}

void Heap::stop() {
    while (memory_blocks_) {
        Address range = memory_blocks_;
        std::uint64_t size = std::uint64_t{at<MemoryBlock>(range).size} + range_slack;
        memory_blocks_ = at<MemoryBlock>(range).next;
        bool holds_hash = address_of(*hash_table_) == range - hash_page;
        release_pages(holds_hash ? range - hash_page : range, size);
    }
    free_index_.stop();
    hash_table_ = nullptr;
    free_chain_ = spare_chains_ = total_allocated_ = 0;
    lowest_ = room_ = 0;
    heap_extended_ = corrupt_ = false;
}

void Heap::use_memory_block(Address start, std::uint32_t size, std::uint32_t committed) {
    Address aligned = (start + 15) & ~15U;
    size -= aligned - start;
    at<MemoryBlock>(aligned) = {memory_blocks_, size, aligned + committed, 0};
    memory_blocks_ = aligned;
    note_bounds(aligned + sizeof(MemoryBlock), aligned + committed);
    free_memory_region(aligned + sizeof(MemoryBlock), size);
}

// Works once. Of the sizes tried, the first ones are above 2 GiB and fail at once: they are what a
// whole address space would have given.
bool Heap::add_more_storage() {
    if (heap_extended_ || !hash_table_) return false;
    for (std::uint64_t size = largest_extension; size >= extension_step; size -= extension_step) {
        Address start = reserve_pages(size + range_slack);
        if (start == 0) continue;
        if (!commit_pages(start, start + first_heap_commit)) {
            release_pages(start, size + range_slack);
            return false;
        }
        use_memory_block(start, static_cast<std::uint32_t>(size), first_heap_commit);
        heap_extended_ = true;
        return true;
    }
    return false;
}

// The range that an address lies in; 0: none.
Address Heap::range_of(Address address) const {
    Address range = memory_blocks_;
    while (range && (address < range || address - range >= at<MemoryBlock>(range).size + 16)) {
        range = at<MemoryBlock>(range).next;
    }
    return range;
}

void Heap::note_bounds(Address begin, Address end) {
    Address highest = lowest_ + room_ + sizeof(LengthChain);
    if (lowest_ == 0 || begin < lowest_) lowest_ = begin;
    room_ = (end > highest || room_ == 0 ? end : highest) - sizeof(LengthChain) - lowest_;
}

// The list ascends, and no two regions meet.
bool Heap::is_sound(Address region, std::uint32_t size) const {
    Address next = link_of(region);
    return size >= sizeof(FreeRegion) && size % 4 == 0 && size < address_limit - region &&
           (next == 0 || (next > region + size && holds(next)));
}

// Commits what a block carved out of `region` needs when the rest of the region begins at `end`.
bool Heap::commit_for(Address region, Address end) {
    Address range = range_of(region);
    if (range == 0) return false;
    MemoryBlock& block = at<MemoryBlock>(range);
    if (end + 16 <= block.committed_end) return true;
    Address upto = (end + commit_margin + page_size - 1) & ~(page_size - 1);
    if (!commit_pages(block.committed_end & ~(page_size - 1), upto)) return false;
    block.committed_end = upto;
    note_bounds(range + sizeof(MemoryBlock), upto);
    return true;
}

// First fit, from the lowest address.
Heap::Carved Heap::carve_memory_region(std::uint32_t total, std::uint32_t alignment) {
    Carved result;
    total = (total + 3) & ~3U;
    if (total == 4) {
        // No block is smaller than a free region: it becomes one again.
        total = 8;
        result.extra = true;
    }
    FreeIndex::Fit fit =
        free_index_.find(free_chain_, total, [&](Address region, std::uint32_t size) {
            if (!is_sound(region, size)) return corrupt_ = true;
            std::uint32_t needed = total + padding_for(region, alignment);
            return size >= needed && !(result.extra && size - needed == 4);
        });
    Address region = fit.region;
    if (region == 0 || corrupt_) return result;
    Address range = range_of(region);
    if (range == 0 || region - range + at<FreeRegion>(region).size >
                          at<MemoryBlock>(range).size + sizeof(MemoryBlock)) {
        corrupt_ = true;
        return result;
    }

    result.padding = padding_for(region, alignment);
    std::uint32_t wanted = total + result.padding;
    Address next = link_of(region);
    std::uint32_t remainder = at<FreeRegion>(region).size - wanted;
    Address rest = region + wanted;
    bool whole = remainder < sizeof(FreeRegion);
    if (!commit_for(region, whole ? rest + remainder : rest)) {
        result.commit_failed = true;
        return result;
    }
    Address follower = next;
    free_index_.remove(region, next);
    if (whole) {
        if (remainder == 4) result.extra = true;
    } else {
        at<FreeRegion>(rest).size = remainder;
        set_link(rest, next);
        free_index_.insert(rest, remainder);
        follower = rest;
    }
    if (fit.previous) {
        set_link(fit.previous, follower);
    } else {
        free_chain_ = follower;
    }
    result.block = region + result.padding;
    result.size = whole ? wanted + remainder : wanted;
    return result;
}

// Carves, and extends the heap where nothing fits. The section is held on entry and on return.
Heap::Carved Heap::get_region(std::uint32_t total, std::uint32_t alignment) {
    for (;;) {
        Carved carved = carve_memory_region(total, alignment);
        if (carved.block || corrupt_) return carved;
        if (carved.commit_failed && low_memory) {
            // The handler frees storage, so the section can't be held; the list is new after it.
            section_.leave();
            bool again = low_memory();
            section_.enter();
            if (again) continue;
        }
        if (!add_more_storage()) return carved;
    }
}

// Takes its place in the list by address and merges with both neighbours.
void Heap::free_memory_region(Address region, std::uint32_t size) {
    Address previous = free_index_.before(region);
    Address next = previous ? link_of(previous) : free_chain_;
    if ((previous && (!is_sound(previous, at<FreeRegion>(previous).size) ||
                      previous + at<FreeRegion>(previous).size > region)) ||
        (next && (next < region + size || !is_sound(next, at<FreeRegion>(next).size)))) {
        corrupt_ = true;
        return;
    }
    if (next && region + size == next) {
        size += at<FreeRegion>(next).size;
        Address behind = link_of(next);
        free_index_.remove(next, behind);
        next = behind;
    }
    if (previous && previous + at<FreeRegion>(previous).size == region) {
        region = previous;
        size += at<FreeRegion>(previous).size;
    } else if (previous) {
        set_link(previous, region);
    } else {
        free_chain_ = region;
    }
    at<FreeRegion>(region).size = size;
    set_link(region, next);
    free_index_.insert(region, size);
}

// Sees to it that there is a spare record.
bool Heap::has_spare_chain() {
    if (spare_chains_ == 0 && !allocate_length_chains()) return false;
    if (!holds(spare_chains_)) corrupt_ = true;
    return !corrupt_;
}

bool Heap::allocate_length_chains() {
    Carved batch = get_region(spare_batch * sizeof(LengthChain), 4);
    if (batch.block == 0) return false;
    for (std::uint32_t i = spare_batch; i-- > 0;) {
        auto& record = at<LengthChain>(batch.block + i * sizeof(LengthChain));
        record.next = spare_chains_;
        spare_chains_ = address_of(record);
    }
    return true;
}

LengthChain* Heap::find_chain(std::uint32_t bucket, std::uint32_t length) {
    for (Address record = hash_table_[bucket]; record; record = at<LengthChain>(record).next) {
        if (!holds(record)) {
            corrupt_ = true;
            return nullptr;
        }
        if (at<LengthChain>(record).length == length) return &at<LengthChain>(record);
    }
    return nullptr;
}

// The caller has seen to it that a spare record is there.
void Heap::chain_memory(Address block, std::uint32_t length) {
    word_at(block) = 0;
    std::uint32_t bucket = hash_bucket(block);
    LengthChain* chain = find_chain(bucket, length);
    if (!chain) {
        chain = &at<LengthChain>(spare_chains_);
        spare_chains_ = chain->next;
        *chain = {hash_table_[bucket], length, 0};
        hash_table_[bucket] = address_of(*chain);
    }
    set_link(block, chain->first_block);
    chain->first_block = block;
}

// Links that go round end the walk by their number: no heap has so many blocks.
Heap::Place Heap::find_place(Address block) {
    if (block == 0 || !hash_table_ || corrupt_) return {};
    constexpr std::uint32_t most_blocks = address_limit / 8;
    std::uint32_t passed = 0;
    auto is_possible = [&](Address link) { return holds(link) && ++passed < most_blocks; };
    Address* from = &hash_table_[hash_bucket(block)];
    for (; *from != 0 && is_possible(*from); from = &at<LengthChain>(*from).next) {
        Address previous = 0;
        Address found = at<LengthChain>(*from).first_block;
        for (; found != 0 && is_possible(found); found = link_of(found)) {
            if (found == block) return {from, previous};
            previous = found;
        }
        corrupt_ = found != 0;
        if (corrupt_) return {};
    }
    corrupt_ = *from != 0;
    return {};
}

// Takes the block off its chain and gives its length; nothing for what is no live block.
std::optional<std::uint32_t> Heap::unchain_memory(Address block) {
    Place place = find_place(block);
    if (place.record == nullptr) return std::nullopt;
    Address next = link_of(block);
    if (next != 0 && !holds(next)) {
        corrupt_ = true;
        return std::nullopt;
    }
    LengthChain& record = at<LengthChain>(*place.record);
    if (place.previous) {
        set_link(place.previous, next);
    } else {
        record.first_block = next;
    }
    std::uint32_t length = record.length;
    if (record.first_block == 0) {
        Address spare = *place.record;
        *place.record = record.next;
        record.next = spare_chains_;
        spare_chains_ = spare;
    }
    return length;
}

bool Heap::find_block(Address block, std::uint32_t& length) {
    Place place = find_place(block);
    if (place.record == nullptr) return false;
    length = at<LengthChain>(*place.record).length;
    return true;
}

void* Heap::get(std::size_t length, std::size_t alignment, Origin origin) {
    if (!hash_table_ || length >= address_limit || alignment >= address_limit) return nullptr;
    void* result = nullptr;
    {
        InSection held(section_);
        if (!has_spare_chain()) return nullptr;
        auto size = static_cast<std::uint32_t>(length);
        Carved carved = get_region(total_size(size), static_cast<std::uint32_t>(alignment));
        if (carved.block == 0) return nullptr;
        if (!has_spare_chain()) {
            // Others took the spare records while a low-memory handler ran.
            free_memory_region(carved.block - carved.padding, carved.size);
            return nullptr;
        }
        chain_memory(carved.block, size);
        if (corrupt_) return nullptr;
        std::uint32_t& header = word_at(carved.block);
        if (carved.extra) header |= block_has_extra;
        if (origin == Origin::by_new) header |= block_from_new;
        if (carved.padding) {
            header |= block_has_padding;
            word_at(carved.block - 4) = carved.padding;
        }
        total_allocated_ += size;
        result = pointer_of(carved.block);
    }
    if (reinterpret_cast<std::uintptr_t>(result) == breaks.when_allocated) asm volatile("int3");
    return result;
}

Released Heap::release(const void* pointer) {
    auto value = reinterpret_cast<std::uintptr_t>(pointer);
    if (value && value == breaks.when_freed && value != UINTPTR_MAX) asm volatile("int3");
    InSection held(section_);
    Address block = block_of(pointer);
    std::optional<std::uint32_t> length = unchain_memory(block);
    if (!length) return {false, false, 0};
    total_allocated_ -= *length;
    std::uint32_t header = word_at(block);
    std::uint32_t size = *length + (header & block_has_extra ? 4 : 0);
    std::uint32_t total = total_size(size);
    std::uint32_t padding = header & block_has_padding ? word_at(block - 4) : 0;
    if (padding % 4 != 0 || padding >= block - range_of(block)) corrupt_ = true;
    if (!corrupt_) free_memory_region(block - padding, total + padding);
    if (corrupt_) return {false, false, 0};
    if (breaks.data_address >= block && breaks.data_address - block < total) {
        auto* watched = reinterpret_cast<volatile std::uint8_t*>(breaks.data_address);
        *watched = *watched;
    }
    return {true, (header & block_from_new) != 0, size};
}

bool Heap::shrink(const void* pointer, std::size_t length) {
    InSection held(section_);
    // A spare record first: the block must not be left without a chain.
    bool has_spare = has_spare_chain();
    Address block = block_of(pointer);
    std::uint32_t old_length = 0;
    if (!find_block(block, old_length) || length > old_length) return false;
    if (!has_spare) return true;  // it stays as long as it is
    // A block that had bytes keeps one, for with less it would be smaller than a free region.
    auto new_length = static_cast<std::uint32_t>(length == 0 && old_length > 0 ? 1 : length);
    if (!unchain_memory(block)) return false;
    total_allocated_ -= old_length - new_length;
    std::uint32_t header = word_at(block);
    std::uint32_t old_total = total_size(old_length) + (header & block_has_extra ? 4 : 0);
    std::uint32_t surplus = old_total - total_size(new_length);
    if (surplus > 4) free_memory_region(block + total_size(new_length), surplus);
    chain_memory(block, new_length);
    word_at(block) |= header & block_has_padding;
    if (surplus == 4) word_at(block) |= block_has_extra;
    return true;
}

std::optional<std::uint32_t> Heap::find_size(const void* pointer) {
    InSection held(section_);
    std::uint32_t length = 0;
    if (!find_block(block_of(pointer), length)) return std::nullopt;
    return length;
}

bool Heap::passes(Address region) {
    if (!is_sound(region, at<FreeRegion>(region).size)) corrupt_ = true;
    return !corrupt_;
}

std::int64_t Heap::available() {
    InSection held(section_);
    std::int64_t sum = 0;
    for (Address region = free_chain_; region && passes(region); region = link_of(region)) {
        sum += at<FreeRegion>(region).size;
    }
    return sum;
}

std::int64_t Heap::largest_block() {
    InSection held(section_);
    std::int64_t best = 0;
    for (Address region = free_chain_; region && passes(region); region = link_of(region)) {
        std::int64_t size = at<FreeRegion>(region).size;
        if (size > best) best = size - 2000;
    }
    return best;
}

}  // namespace tarn::storage
