#include "intrinsics/random/xoshiro.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iterator>
#include <mutex>
#include <utility>

#include "intrinsics/random/xoshiro_lanes.h"
#include "platform/kernel/cpu.h"

namespace tarn::intrinsics {
namespace {

// ---- The tables of steps ----

constexpr std::size_t lane_kinds = std::size(lane_lengths);
// How many numbers must have been asked for, in arrays, before the tables are worth being made.
constexpr std::size_t worth_making = 50000;

struct Tables {
    std::atomic<bool> ready{false};
    std::atomic<std::size_t> asked{0};
    std::mutex making;
    JumpTable jumps[lane_kinds]{};
};
constinit Tables tables;

void add(std::uint64_t (&sum)[4], const std::uint64_t (&term)[4]) {
    for (int i = 0; i < 4; ++i) sum[i] ^= term[i];
}

Xoshiro apply(const JumpTable& table, const Xoshiro& state) {
    Xoshiro result{};
    for (int group = 0; group < JumpTable::groups; ++group)
        add(result.s, table.ahead[group][state.s[group / 16] >> (4 * (group % 16)) & 15]);
    return result;
}

// A table from what becomes of each single bit.
void fill_table(JumpTable& table, const Xoshiro (&of_bit)[256]) {
    for (int group = 0; group < JumpTable::groups; ++group) {
        for (unsigned value = 1; value < 16; ++value) {
            auto& entry = table.ahead[group][value];
            std::copy_n(table.ahead[group][value & (value - 1)], 4, entry);
            add(entry, of_bit[4 * group + std::countr_zero(value)].s);
        }
    }
}

void make_tables() {
    const std::lock_guard lock(tables.making);
    if (tables.ready.load(std::memory_order_relaxed)) return;
    Xoshiro of_bit[256]{};
    for (int bit = 0; bit < 256; ++bit) {
        of_bit[bit].s[bit / 64] = std::uint64_t{1} << (bit % 64);
        of_bit[bit].step();
    }
    // Twice the steps each time; the longest lane's table is what the others are copied from.
    JumpTable& table = tables.jumps[0];
    fill_table(table, of_bit);
    for (std::size_t steps = 1; steps < lane_lengths[0];) {
        for (Xoshiro& image : of_bit) image = apply(table, image);
        fill_table(table, of_bit);
        steps *= 2;
        for (std::size_t kind = 1; kind < lane_kinds; ++kind)
            if (steps == lane_lengths[kind]) tables.jumps[kind] = table;
    }
    tables.ready.store(true, std::memory_order_release);
}

bool lanes_pay(std::size_t count) {
    if (platform::vector_level() < platform::VectorLevel::avx2) return false;
    if (tables.ready.load(std::memory_order_acquire)) return true;
    if (tables.asked.fetch_add(count, std::memory_order_relaxed) + count < worth_making)
        return false;
    make_tables();
    return true;
}

template <class Real>
std::size_t fill_in_lanes(Xoshiro& generator, Real* values, std::size_t count) {
    std::size_t done = 0;
    for (std::size_t kind = 0; kind < lane_kinds; ++kind) {
        const std::size_t lane = lane_lengths[kind];
        for (; count - done >= lane_count * lane; done += lane_count * lane)
            fill_lanes(generator, tables.jumps[kind], lane, values + done);
    }
    return done;
}

}  // namespace

void Xoshiro::jump() {
    constexpr std::uint64_t polynomial[] = {0x180EC6D33CFD0ABA, 0xD5A61266F0C9392C,
                                            0xA9582618E03FC9AA, 0x39ABDC4529B1661C};
    Xoshiro ahead{};
    for (const std::uint64_t word : polynomial) {
        for (int bit = 0; bit < 64; ++bit) {
            if ((word >> bit & 1) != 0)
                for (int i = 0; i < 4; ++i) ahead.s[i] ^= s[i];
            step();
        }
    }
    *this = ahead;
}

Xoshiro Stream::position() const {
    if (ahead_ == nullptr || ahead_->used == Ahead::size) return generator_;
    Xoshiro here = ahead_->start;
    for (std::size_t i = 0; i < ahead_->used; ++i) here.step();
    return here;
}

void Stream::restart(const Xoshiro& generator) {
    generator_ = generator;
    if (ahead_ != nullptr) ahead_->used = Ahead::size;
}

void* Stream::give_up_storage() {
    generator_ = position();
    return std::exchange(ahead_, nullptr);
}

bool Stream::make_ahead() {
    static_assert(Ahead::size == lane_count * lane_lengths[1]);
    if (ahead_ == nullptr) {
        ahead_ = static_cast<Ahead*>(std::malloc(sizeof(Ahead)));
        if (ahead_ == nullptr) return false;
        keep_for_thread(ahead_);
    }
    ahead_->start = generator_;
    ahead_->used = 0;
    fill_lanes(generator_, tables.jumps[1], lane_lengths[1], ahead_->numbers);
    return true;
}

// The values that can be made of what there is.
template <class Real>
std::size_t Stream::take_ahead(Real* values, std::size_t count) {
    if (ahead_ == nullptr) return 0;
    const std::size_t some = std::min(count, Ahead::size - ahead_->used);
    reals_of(ahead_->numbers + ahead_->used, values, some);
    ahead_->used += some;
    return some;
}

template <class Real>
void Stream::fill(Real* values, std::size_t count) {
    constexpr std::size_t few = 8;
    std::size_t at = 0;
    if constexpr (sizeof(Real) <= 8) {
        if (count >= few && lanes_pay(count)) {
            at = take_ahead(values, count);
            at += fill_in_lanes(generator_, values + at, count - at);
            if (count - at >= few && make_ahead()) at += take_ahead(values + at, count - at);
        }
    }
    for (; at < count && ahead_ != nullptr && ahead_->used < Ahead::size; ++at)
        values[at] = random_real<Real>(*this);
    if (at == count) return;
    Xoshiro local = generator_;  // in registers, whatever the values may share storage with
    for (; at < count; ++at) values[at] = random_real<Real>(local);
    generator_ = local;
}

template void Stream::fill(float*, std::size_t);
template void Stream::fill(double*, std::size_t);
template void Stream::fill(long double*, std::size_t);
template void Stream::fill(__float128*, std::size_t);

}  // namespace tarn::intrinsics
