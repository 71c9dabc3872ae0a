// Listings of the hash chains for someone who looks at a heap in a debugger.
#include <cstdio>

#include "storage/heap.h"

namespace tarn::storage {

void Heap::print_chains() {
    if (!hash_table_) return;
    for (std::uint32_t bucket = 0; bucket < hash_buckets; ++bucket) {
        if (hash_table_[bucket] == 0) continue;
        std::printf("hash_value = %d\n", static_cast<int>(bucket));
        for (Address c = hash_table_[bucket]; c && holds(c); c = at<LengthChain>(c).next) {
            std::printf("%8.8X, length of chain = %d\n", c,
                        static_cast<int>(at<LengthChain>(c).length));
        }
    }
    std::fflush(stdout);
}

void Heap::print_chains(std::uint32_t bucket) {
    if (!hash_table_ || bucket >= hash_buckets) return;
    for (Address c = hash_table_[bucket]; c && holds(c); c = at<LengthChain>(c).next) {
        std::printf("length of chain = %d  ", static_cast<int>(at<LengthChain>(c).length));
        std::printf("data of first chain = %8.8x\n", at<LengthChain>(c).first_block);
    }
    std::fflush(stdout);
}

void Heap::print_chain(std::uint32_t bucket, std::uint32_t length) {
    if (!hash_table_ || bucket >= hash_buckets) return;
    const LengthChain* chain = find_chain(bucket, length);
    if (!chain) return;
    std::printf("c = %8.8x  length of chain = %d\n", address_of(*chain), static_cast<int>(length));
    for (Address block = chain->first_block; block && holds(block); block = link_of(block)) {
        std::printf("pointer = %8.8x next data = %8.8x\n", block, link_of(block));
    }
    std::fflush(stdout);
}

}  // namespace tarn::storage
