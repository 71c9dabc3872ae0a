#include "storage/heap.h"

#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>
#include <sys/resource.h>
#include <thread>
#include <utility>
#include <vector>

namespace {

using tarn::storage::Address;
using tarn::storage::Heap;
using tarn::storage::Origin;

Address address(const void* pointer) {
    return static_cast<Address>(reinterpret_cast<std::uintptr_t>(pointer));
}

std::uint32_t header(const void* pointer) {
    return *reinterpret_cast<const std::uint32_t*>(std::uintptr_t{address(pointer)} - 4);
}

class HeapTest : public testing::Test {
  protected:
    // The first request also carves the spare records; with it out of the way, sizes can be
    // compared.
    void SetUp() override {
        ASSERT_TRUE(heap.start());
        heap.release(heap.get(1));
    }
    void TearDown() override { heap.stop(); }
    Heap heap;
};

TEST_F(HeapTest, BlockSizes) {
    constexpr struct {
        std::size_t length;
        std::uint32_t total;
    } table[] = {{0, 8}, {1, 8}, {4, 8}, {5, 12}, {8, 12}, {9, 16}, {100, 104}, {4093, 4100}};
    for (auto [length, total] : table) {
        std::int64_t before = heap.available();
        void* block = heap.get(length);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(address(block) % 4, 0U) << length;
        EXPECT_EQ(before - heap.available(), total) << length;
        EXPECT_EQ(heap.find_size(block), length);
        EXPECT_TRUE(heap.release(block).found);
        EXPECT_EQ(heap.available(), before) << length;
    }
}

TEST_F(HeapTest, FirstFitTakesTheLowestRegionThatHolds) {
    void* a = heap.get(100);
    void* b = heap.get(200);
    void* c = heap.get(100);
    void* d = heap.get(400);
    void* e = heap.get(4);
    heap.release(b);
    heap.release(d);
    EXPECT_EQ(heap.get(300), d);
    EXPECT_EQ(heap.get(150), b);
    EXPECT_LT(address(heap.get(4)), address(c));
    EXPECT_GT(address(heap.get(500)), address(e));
    EXPECT_LT(address(a), address(b));
}

TEST_F(HeapTest, RemainderOfFourBelongsToTheBlock) {
    void* a = heap.get(8);
    void* fence = heap.get(8);
    std::int64_t before = heap.available();
    heap.release(a);
    void* again = heap.get(4);  // 8 of the 12 bytes
    EXPECT_EQ(again, a);
    EXPECT_TRUE(header(again) & tarn::storage::block_has_extra);
    EXPECT_EQ(heap.available(), before);
    heap.release(again);
    EXPECT_EQ(heap.available(), before + 12);
    // A length of 0 has its 4 bytes over already, and can't own 8 more than it implies.
    EXPECT_NE(heap.get(0), a);
    EXPECT_NE(fence, nullptr);
}

TEST_F(HeapTest, ReleasesInAnyOrderMergeToOneRegion) {
    std::mt19937 random(1);
    for (int round = 0; round < 20; ++round) {
        std::int64_t before = heap.available();
        std::vector<void*> blocks;
        for (int i = 0; i < 40; ++i) {
            std::size_t alignment = std::size_t{4} << random() % 5;
            blocks.push_back(heap.get(random() % 3 * 20, alignment));
        }
        std::shuffle(blocks.begin(), blocks.end(), random);
        for (void* block : blocks) EXPECT_TRUE(heap.release(block).found);
        EXPECT_EQ(heap.available(), before);
        EXPECT_EQ(heap.largest_block(), before - 2000);
    }
}

TEST_F(HeapTest, PointersThatAreNoBlocks) {
    void* block = heap.get(64, 16);
    int local = 0;
    char* inside = static_cast<char*>(block);
    for (const void* bad :
         {static_cast<const void*>(nullptr), static_cast<const void*>(&local),
          static_cast<const void*>(inside + 4), static_cast<const void*>(inside + 1),
          reinterpret_cast<const void*>(8), reinterpret_cast<const void*>(-1)}) {
        EXPECT_FALSE(heap.find_size(bad)) << bad;
        EXPECT_FALSE(heap.release(bad).found) << bad;
        EXPECT_FALSE(heap.shrink(bad, 0)) << bad;
    }
    EXPECT_TRUE(heap.release(block).found);
    EXPECT_FALSE(heap.release(block).found);
}

TEST_F(HeapTest, Shrinking) {
    constexpr struct {
        std::size_t length, shorter, gives_back;
        bool extra;
    } table[] = {{100, 100, 0, false}, {100, 97, 0, false}, {100, 96, 0, true}, {100, 92, 8, false},
                 {100, 4, 96, false},  {8, 0, 0, true},     {20, 0, 16, false}, {0, 0, 0, true}};
    for (auto [length, shorter, gives_back, extra] : table) {
        for (std::size_t alignment : {4, 16}) {
            SCOPED_TRACE(testing::Message() << length << " to " << shorter << " at " << alignment);
            void* shift = heap.get(3);
            std::int64_t start = heap.available();
            void* block = heap.get(length, alignment);
            std::int64_t before = heap.available();
            ASSERT_TRUE(heap.shrink(block, shorter));
            EXPECT_EQ(heap.available() - before, static_cast<std::int64_t>(gives_back));
            EXPECT_EQ((header(block) & tarn::storage::block_has_extra) != 0, extra);
            EXPECT_FALSE(heap.shrink(block, length + 1));
            EXPECT_TRUE(heap.release(block).found);
            EXPECT_EQ(heap.available(), start);
            heap.release(shift);
        }
    }
}

TEST_F(HeapTest, GrowsBeyondTheFirstReservation) {
    std::vector<void*> blocks;
    for (int i = 0; i < 4; ++i) {
        auto* block = static_cast<char*>(heap.get(60 << 20));
        ASSERT_NE(block, nullptr) << i;
        block[0] = block[(60 << 20) - 1] = 'x';
        EXPECT_LT(address(block) + (60ULL << 20), tarn::storage::address_limit);
        blocks.push_back(block);
    }
    for (void* block : blocks) EXPECT_TRUE(heap.release(block).found);
    EXPECT_EQ(heap.get(std::size_t{1} << 31), nullptr);
    EXPECT_EQ(heap.get(SIZE_MAX - 3), nullptr);
    EXPECT_EQ(heap.get(1, std::size_t{1} << 40), nullptr);
    EXPECT_NE(heap.get(1000), nullptr);
}

// Every byte of a range can be handed out, the last one too.
TEST_F(HeapTest, TheLastBytesOfARangeAreThere) {
    std::int64_t all = heap.available();
    auto* block = static_cast<char*>(heap.get(static_cast<std::size_t>(all) - 4));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(heap.available(), 0);
    block[all - 5] = 'x';
    heap.release(block);
    auto* most = static_cast<char*>(heap.get(static_cast<std::size_t>(all) - 16));
    EXPECT_EQ(most, block);
    void* last = heap.get(4);
    ASSERT_NE(last, nullptr);
    std::memset(last, 1, 4);
    EXPECT_TRUE(heap.release(most).found);
    EXPECT_TRUE(heap.release(last).found);
    EXPECT_EQ(heap.available(), all);
}

// Blocks keep what is written to them, stay apart and stay aligned whatever happens around them.
TEST_F(HeapTest, RandomWorkKeepsBlocksWhole) {
    struct Block {
        std::size_t length;
        unsigned char fill;
    };
    std::mt19937 random(7);
    std::map<unsigned char*, Block> live;
    std::uint32_t lengths = 0;
    auto whole = [](unsigned char* data, Block block) {
        for (std::size_t i = 0; i < block.length; ++i) {
            if (data[i] != block.fill) return false;
        }
        return true;
    };
    for (int step = 0; step < 40000; ++step) {
        if (live.size() < 500 && random() % 5 < 3) {
            std::size_t length = random() % 8 == 0 ? random() % 5000 : random() % 60;
            std::size_t alignment = random() % 3 == 0 ? 4 : std::size_t{4} << random() % 7;
            auto* data = static_cast<unsigned char*>(heap.get(length, alignment));
            ASSERT_NE(data, nullptr);
            ASSERT_EQ(address(data) % alignment, 0U);
            Block block{length, static_cast<unsigned char>(step)};
            std::memset(data, block.fill, length);
            ASSERT_TRUE(live.emplace(data, block).second);
            lengths += static_cast<std::uint32_t>(length);
        } else if (!live.empty()) {
            auto at = live.lower_bound(reinterpret_cast<unsigned char*>(
                std::uintptr_t{address(live.begin()->first)} + random() % 200000));
            if (at == live.end()) at = live.begin();
            auto& [data, block] = *at;
            ASSERT_TRUE(whole(data, block));
            ASSERT_EQ(heap.find_size(data), block.length);
            lengths -= static_cast<std::uint32_t>(block.length);
            if (block.length > 1 && random() % 4 == 0) {
                block.length = 1 + random() % block.length;
                ASSERT_TRUE(heap.shrink(data, block.length));
                lengths += static_cast<std::uint32_t>(block.length);
            } else {
                ASSERT_TRUE(heap.release(data).found);
                live.erase(at);
            }
        }
        ASSERT_EQ(heap.total_allocated(), lengths);
    }
    for (auto& [data, block] : live) {
        EXPECT_TRUE(whole(data, block));
        EXPECT_TRUE(heap.release(data).found);
    }
    EXPECT_EQ(heap.total_allocated(), 0U);
}

// The heap in its plainest form: a free list that is walked from its start. It tells where each
// block must come to lie, spare records included.
class FirstFitModel {
  public:
    FirstFitModel(Address start, std::uint32_t size) { free_[start] = size; }

    Address get(std::uint32_t length, std::uint32_t alignment) {
        if (spare_ == 0) {
            carve(600, 4);
            spare_ = 50;
        }
        Owned block = carve((length + 7) & ~3U, alignment);
        blocks_[block.header] = block;
        if (chains_[{bucket(block.header), length}]++ == 0) --spare_;
        return block.header + 4;
    }
    void release(Address pointer, std::uint32_t length) {
        Owned block = blocks_.at(pointer - 4);
        blocks_.erase(pointer - 4);
        if (--chains_[{bucket(block.header), length}] == 0) ++spare_;
        auto at = free_.emplace(block.start, block.size).first;
        if (auto next = std::next(at);
            next != free_.end() && at->first + at->second == next->first) {
            at->second += next->second;
            free_.erase(next);
        }
        if (at != free_.begin()) {
            auto before = std::prev(at);
            if (before->first + before->second == at->first) {
                before->second += at->second;
                free_.erase(at);
            }
        }
    }

  private:
    struct Owned {
        Address start;
        std::uint32_t size;
        Address header;
    };

    static std::uint32_t bucket(Address header) { return tarn::storage::hash_bucket(header); }

    Owned carve(std::uint32_t total, std::uint32_t alignment) {
        bool extra = total == 4;
        if (extra) total = 8;
        for (auto [start, size] : free_) {
            std::uint32_t padding = (0U - (start + 4)) & (alignment - 1) & ~3U;
            if (size < total + padding) continue;
            std::uint32_t rest = size - total - padding;
            if (extra && rest == 4) continue;
            free_.erase(start);
            if (rest < 8) return {start, size, start + padding};
            free_[start + total + padding] = rest;
            return {start, total + padding, start + padding};
        }
        return {};
    }

    std::map<Address, std::uint32_t> free_;
    std::map<Address, Owned> blocks_;
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> chains_;
    std::uint32_t spare_ = 50;
};

// Whatever a program writes beside its blocks, the heap says so or goes on: it neither faults nor
// goes round for ever.
TEST_F(HeapTest, WritingBesideBlocksIsFoundOut) {
    int found = 0;
    for (unsigned seed = 1; seed <= 300; ++seed) {
        std::mt19937 random(seed);
        Heap ruined;
        ASSERT_TRUE(ruined.start());
        std::vector<std::pair<char*, std::size_t>> blocks(300);
        auto get = [&](auto& block) {
            block.second = random() % 200;
            const std::size_t alignment = random() % 2 ? 4 : 16;
            block.first = static_cast<char*>(ruined.get(block.second, alignment));
        };
        for (auto& block : blocks) get(block);
        for (int i = 0; i < 60; ++i)
            ruined.release(std::exchange(blocks[random() % 300].first, nullptr));
        for (int i = 0; i < 2; ++i) {
            const auto& block = blocks[random() % 300];
            if (block.first == nullptr) continue;
            const std::size_t count = 1 + random() % 24;
            const bool behind = random() % 2;
            std::memset(behind ? block.first + block.second : block.first - count,
                        static_cast<int>(random()), count);
        }
        for (int i = 0; i < 1000 && !ruined.corrupt(); ++i) {
            auto& block = blocks[random() % 300];
            if (block.first != nullptr) {
                const bool known = ruined.release(std::exchange(block.first, nullptr)).found;
                if (!known) break;
            } else {
                get(block);
                if (block.first != nullptr) std::memset(block.first, 1, block.second);
            }
        }
        found += ruined.corrupt();
        if (ruined.corrupt()) EXPECT_EQ(ruined.get(8), nullptr);
        ruined.stop();
    }
    EXPECT_GT(found, 200);
}

TEST_F(HeapTest, BlocksLieWhereFirstFitPutsThem) {
    void* probe = heap.get(4);
    heap.release(probe);
    FirstFitModel model(address(probe) - 4, static_cast<std::uint32_t>(heap.available()));
    std::mt19937 random(3);
    std::vector<std::pair<void*, std::uint32_t>> live;
    // Waves of requests and releases, so that the list grows long and shrinks again.
    for (int step = 0; step < 66000; ++step) {
        bool grow = step / 6000 % 2 == 0;
        if (random() % 8 < (grow ? 5U : 3U)) {
            std::uint32_t length = random() % 20 == 0 ? random() % 30000 : random() % 100;
            std::uint32_t alignment = random() % 2 == 0 ? 4 : 4U << random() % 10;
            void* block = heap.get(length, alignment);
            ASSERT_EQ(address(block), model.get(length, alignment)) << "step " << step;
            live.emplace_back(block, length);
        } else if (!live.empty()) {
            std::swap(live[random() % live.size()], live.back());
            auto [block, length] = live.back();
            live.pop_back();
            ASSERT_TRUE(heap.release(block).found);
            model.release(address(block), length);
        }
    }
    EXPECT_GT(live.size(), 500U);
}

TEST_F(HeapTest, ThreadsShareTheHeap) {
    auto work = [this](unsigned seed) {
        std::mt19937 random(seed);
        std::vector<std::pair<unsigned char*, std::size_t>> mine;
        for (int step = 0; step < 5000; ++step) {
            if (mine.size() < 50 && random() % 2) {
                std::size_t length = 1 + random() % 300;
                auto* data = static_cast<unsigned char*>(heap.get(length, 16));
                std::memset(data, static_cast<int>(seed), length);
                mine.emplace_back(data, length);
            } else if (!mine.empty()) {
                auto [data, length] = mine.back();
                mine.pop_back();
                for (std::size_t i = 0; i < length; ++i) ASSERT_EQ(data[i], seed);
                ASSERT_TRUE(heap.release(data).found);
            }
        }
        for (auto [data, length] : mine) ASSERT_TRUE(heap.release(data).found);
    };
    std::vector<std::thread> threads;
    for (unsigned seed = 1; seed <= 4; ++seed) threads.emplace_back(work, seed);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(heap.total_allocated(), 0U);
}

TEST_F(HeapTest, ListsItsChains) {
    void* block = heap.get(48);
    std::uint32_t bucket = tarn::storage::hash_bucket(address(block) - 4);
    EXPECT_EQ(bucket, ((address(block) - 4) * 0x12345678U) >> 22);
    testing::internal::CaptureStdout();
    heap.print_chains();
    heap.print_chains(bucket);
    heap.print_chain(bucket, 48);
    heap.print_chain(bucket, 47);
    heap.print_chains(5000);
    std::string text = testing::internal::GetCapturedStdout();
    char expected[200];
    std::snprintf(expected, sizeof expected, "pointer = %8.8x next data = 00000000\n",
                  address(block) - 4);
    EXPECT_TRUE(text.starts_with("hash_value = " + std::to_string(bucket) + "\n")) << text;
    EXPECT_TRUE(text.ends_with(expected)) << text;
    EXPECT_NE(text.find(", length of chain = 48\nlength of chain = 48  data of first chain = "),
              std::string::npos)
        << text;
}

// A limit on the process's data makes commits fail; the handler, called without the lock, makes
// room.
Heap* tight_heap = nullptr;
void* reserve_block = nullptr;
int handler_calls = 0;

TEST_F(HeapTest, LowMemoryHandlerMakesTheCommitGoOn) {
    auto body = [this] {
        tight_heap = &heap;
        reserve_block = heap.get(1000);
        rlimit tight{1 << 20, RLIM_INFINITY};
        heap.low_memory = [] {
            ++handler_calls;
            if (!reserve_block) return false;
            tight_heap->release(reserve_block);
            reserve_block = nullptr;
            rlimit loose{RLIM_INFINITY, RLIM_INFINITY};
            setrlimit(RLIMIT_DATA, &loose);
            return true;
        };
        setrlimit(RLIMIT_DATA, &tight);
        void* first = heap.get(8 << 20);
        bool served = first && handler_calls == 1;
        setrlimit(RLIMIT_DATA, &tight);
        bool refused = !heap.get(8 << 20) && handler_calls > 1;
        rlimit loose{RLIM_INFINITY, RLIM_INFINITY};
        setrlimit(RLIMIT_DATA, &loose);
        std::_Exit(served && refused ? 0 : 1);
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

TEST_F(HeapTest, Breakpoints) {
    void* block = heap.get(40);
    heap.release(block);
    EXPECT_EXIT(
        {
            heap.breaks.when_allocated = address(block);
            heap.get(40);
        },
        testing::KilledBySignal(SIGTRAP), "");
    EXPECT_EXIT(
        {
            heap.breaks.when_freed = address(heap.get(40));
            heap.release(block);
        },
        testing::KilledBySignal(SIGTRAP), "");
    // The byte watched is inside the block or not; either way it keeps its value.
    auto* bytes = static_cast<char*>(heap.get(40));
    bytes[20] = 'w';
    heap.breaks.data_address = address(bytes + 20);
    EXPECT_TRUE(heap.release(bytes).found);
    EXPECT_EQ(bytes[20], 'w');
}

}  // namespace
