#include "fio/format/cache.h"

#include <cstring>

namespace tarn::fio {
namespace {

std::uint64_t mix(std::uint64_t hash, std::uint64_t word) {
    const unsigned __int128 product =
        static_cast<unsigned __int128>(hash ^ word) * 0x9E3779B97F4A7C15ULL;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

template <class Word>
std::uint64_t load(const char* text) {
    Word word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

// The last bytes are taken as a whole word that may overlap the one before.
std::uint64_t hash_text(const char* text, std::size_t length) {
    std::uint64_t hash = 0x2545F4914F6CDD1DULL + length;
    if (length >= 8) {
        const char* last = text + length - 8;
        for (; text < last; text += 8) hash = mix(hash, load<std::uint64_t>(text));
        return mix(hash, load<std::uint64_t>(last));
    }
    if (length >= 4) {
        const std::uint64_t tail = load<std::uint32_t>(text + length - 4);
        return mix(hash, load<std::uint32_t>(text) | tail << 32);
    }
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < length; ++i) {
        word = word << 8 | static_cast<unsigned char>(text[i]);
    }
    return mix(hash, word);
}

}  // namespace

FormatCache::~FormatCache() {
    for (CachedFormat* slot : slots_) delete slot;
}

// A slot of the set: a free one, else the one that has been idle longest; null when all are in
// use.
CachedFormat* FormatCache::place_for(std::uint64_t hash) {
    CachedFormat** set = slots_ + (hash % sets) * ways;
    CachedFormat* oldest = nullptr;
    for (std::size_t way = 0; way < ways; ++way) {
        if (set[way] == nullptr) return set[way] = new CachedFormat;
        if (set[way]->users > 0) continue;
        if (!set[way]->filled) return set[way];
        if (oldest == nullptr || set[way]->last_use < oldest->last_use) oldest = set[way];
    }
    return oldest;
}

CachedFormat* FormatCache::acquire(const char* text, std::size_t length, FormatError& error) {
    const std::uint64_t hash = hash_text(text, length);
    CachedFormat** set = slots_ + (hash % sets) * ways;
    for (std::size_t way = 0; way < ways; ++way) {
        CachedFormat* slot = set[way];
        if (slot == nullptr) break;
        if (slot->hash == hash && slot->filled && slot->text.size() == length &&
            std::memcmp(slot->text.data(), text, length) == 0) {
            slot->last_use = ++clock_;
            ++slot->users;
            return slot;
        }
    }
    CachedFormat* slot = place_for(hash);
    const bool kept = slot != nullptr;
    if (!kept) slot = new CachedFormat;
    slot->hash = hash;
    slot->text.assign(text, length);
    slot->program = FormatProgram{};
    error = parse_gnu_format(slot->text.data(), length, slot->program);
    slot->filled = kept && error.number == 0;
    if (error.number != 0) {
        if (!kept) delete slot;
        return nullptr;
    }
    slot->last_use = ++clock_;
    ++slot->users;
    return slot;
}

void FormatCache::release(CachedFormat* format) {
    if (--format->users == 0 && !format->filled) delete format;
}

}  // namespace tarn::fio
