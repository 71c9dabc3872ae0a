#include "intrinsics/characters/sorting.h"

#include <bit>
#include <cstring>
#include <numeric>
#include <utility>

#include "intrinsics/characters/assignment.h"

namespace tarn::intrinsics {
namespace {

// Segments below this many steps from end to end are sorted by insertion.
constexpr std::int64_t insertion_limit = 11;

struct Segment {
    std::int64_t first;
    std::int64_t last;
};

// R. C. Singleton's quicksort (Algorithm 347 of the CACM, 1969) on an array of indices: median of
// three, the larger part waits. Halving bounds what waits to the logarithm of the count.
template <class Less>
class IndexSort {
  public:
    IndexSort(std::int32_t* index, std::int64_t count, Less less)
        : index_(index), count_(count), less_(less) {}

    void run() {
        std::iota(index_, index_ + count_, 1);
        if (count_ < 2) return;
        Segment segment{0, count_ - 1};
        for (;;) {
            // Insertion needs something before the segment that isn't above it.
            const bool partition = segment.last - segment.first >= insertion_limit ||
                                   (segment.first == 0 && segment.last > 0);
            if (partition) {
                segment = split(segment);
                continue;
            }
            if (segment.first > 0) insert(segment);
            if (waiting_count_ == 0) return;
            segment = waiting_[--waiting_count_];
        }
    }

  private:
    void order_middle(std::int64_t first, std::int64_t middle, std::int64_t last) {
        if (less_(index_[middle], index_[first])) std::swap(index_[first], index_[middle]);
        if (!less_(index_[last], index_[middle])) return;
        std::swap(index_[last], index_[middle]);
        if (less_(index_[middle], index_[first])) std::swap(index_[first], index_[middle]);
    }

    // Leaves the larger part for later and gives the smaller.
    Segment split(Segment segment) {
        // Middle in the count from 1 that the published form has.
        const std::int64_t middle = (segment.first + segment.last + 2) / 2 - 1;
        order_middle(segment.first, middle, segment.last);
        const std::int32_t pivot = index_[middle];
        std::int64_t low = segment.first;
        std::int64_t high = segment.last;
        for (;;) {
            do --high;
            while (high > segment.first && less_(pivot, index_[high]));
            do ++low;
            while (low < segment.last && less_(index_[low], pivot));
            if (low > high) break;
            std::swap(index_[low], index_[high]);
        }
        const Segment lower{segment.first, high};
        const Segment upper{low, segment.last};
        const bool lower_waits = high - segment.first > segment.last - low;
        waiting_[waiting_count_++] = lower_waits ? lower : upper;
        return lower_waits ? upper : lower;
    }

    void insert(Segment segment) {
        for (std::int64_t i = segment.first; i < segment.last; ++i) {
            const std::int32_t moved = index_[i + 1];
            std::int64_t at = i;
            // Values without an order could let it run past the beginning of everything.
            while (at >= 0 && less_(moved, index_[at])) {
                index_[at + 1] = index_[at];
                --at;
            }
            index_[at + 1] = moved;
        }
    }

    std::int32_t* index_;
    std::int64_t count_;
    Less less_;
    Segment waiting_[64];
    int waiting_count_ = 0;
};

template <class Less>
void run_sort(std::int32_t* index, std::int32_t count, Less less) {
    if (count < 1) return;
    IndexSort<Less>(index, count, less).run();
}

}  // namespace

template <class Value>
void sort_index(std::int32_t* index, const Value* values, std::int32_t count) {
    run_sort(index, count,
             [values](std::int32_t a, std::int32_t b) { return values[a - 1] < values[b - 1]; });
}
template void sort_index(std::int32_t*, const std::int32_t*, std::int32_t);
template void sort_index(std::int32_t*, const float*, std::int32_t);
template void sort_index(std::int32_t*, const double*, std::int32_t);

void sort_characters(std::int32_t* index, const char* values, std::int32_t count,
                     std::size_t length) {
    const auto element = [=](std::int32_t i) {
        return values + static_cast<std::size_t>(i - 1) * length;
    };
    run_sort(index, count, [=](std::int32_t a, std::int32_t b) {
        return length != 0 && std::memcmp(element(a), element(b), length) < 0;
    });
}

std::int32_t find_sorted(const char* key, std::intptr_t key_length, const char* array,
                         std::int32_t count, std::intptr_t length) {
    if (count < 1) return 0;
    const std::uint64_t power = std::bit_floor(static_cast<std::uint64_t>(count)) * 2;
    auto place = static_cast<std::int64_t>(power / 2);
    for (auto step = static_cast<std::int64_t>(power / 4);; step /= 2) {
        bool down = true;
        if (place <= count) {
            const int order = order_of(key, key_length, array + (place - 1) * length, length);
            if (order == 0) return static_cast<std::int32_t>(place);
            down = order < 0;
        }
        if (step == 0) return 0;
        place += down ? -step : step;
    }
}

}  // namespace tarn::intrinsics
