// Finds free regions without walking the whole free list.
//
// The list itself is a chain through the regions, in ascending order; this index stands beside it
// and only saves steps. For each page of the addresses below 2 GiB it knows the first free region
// that begins there and a bound on the sizes of those that do. Above the pages stand two trees with
// 64 branches a node: bits that tell where regions are, for the way back, and maxima of the bounds,
// for the way to a fit. Bounds may be too high after a region has gone; the search that is misled
// puts them right, so that each error is met once.
#pragma once

#include <array>
#include <cstdint>

#include "storage/records.h"

namespace tarn::storage {

class FreeIndex {
  public:
    struct Fit {
        Address region = 0;
        Address previous = 0;  // the region before it in the list; 0: it is the first
    };

    // False: no storage for the index.
    bool start();
    void stop();

    // A region is on the list, or has grown. Its link and size are set.
    void insert(Address region, std::uint32_t size);
    // It is no more; `next` followed it.
    void remove(Address region, Address next);

    // The last region below an address, or 0.
    Address before(Address address);
    // The first region that `fits`, of those whose size is `least` or above; `head` begins the
    // list.
    template <class Fits>
    Fit find(Address head, std::uint32_t least, Fits fits);

  private:
    static constexpr std::uint32_t pages = address_limit / page_size;
    static constexpr unsigned branch_bits = 6;
    static constexpr std::uint32_t branches = 1U << branch_bits;
    static constexpr int levels = 4;  // 64 * 64 * 64 * 2 pages
    struct Tables {
        std::array<Address, pages> first;
        std::array<std::uint32_t, pages> bound;
        std::array<std::uint32_t, pages / branches> bound1;
        std::array<std::uint32_t, pages / branches / branches> bound2;
        std::array<std::uint32_t, pages / branches / branches / branches> bound3;
        // A bit a page, a bit for each word of those, and so on.
        std::array<std::uint64_t, pages / branches> used;
        std::array<std::uint64_t, pages / branches / branches> used1;
        std::array<std::uint64_t, pages / branches / branches / branches> used2;
    };

    static std::uint32_t page_of(Address address) { return address / page_size; }
    std::uint32_t* level(int number);
    std::uint64_t* used(int number);
    void mark_used(std::uint32_t page);
    void mark_unused(std::uint32_t page);
    std::uint32_t nodes(int number) const { return pages >> (branch_bits * number); }
    // The next node of a level, from `from` on, with a bound of `least` or above; nodes(number) for
    // none. The way up and down again costs a look at 64 bounds a level.
    std::uint32_t next_node(int number, std::uint32_t from, std::uint32_t least);
    // The last page below `page` with a free region; false: there is none.
    bool page_before(std::uint32_t& page);
    void put_bound_right(int number, std::uint32_t node);

    Tables* tables_ = nullptr;
};

template <class Fits>
FreeIndex::Fit FreeIndex::find(Address head, std::uint32_t least, Fits fits) {
    for (std::uint32_t page = head ? next_node(0, page_of(head), least) : pages; page < pages;
         page = next_node(0, page + 1, least)) {
        Address previous = 0;
        std::uint32_t greatest = 0;
        for (Address region = tables_->first[page]; region && page_of(region) == page;
             previous = region, region = link_of(region)) {
            std::uint32_t size = at<FreeRegion>(region).size;
            if (fits(region, size)) {
                if (!previous && region != head) previous = before(region);
                return {region, previous};
            }
            if (size > greatest) greatest = size;
        }
        tables_->bound[page] = greatest;
    }
    return {};
}

}  // namespace tarn::storage
