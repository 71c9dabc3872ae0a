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

// The last 1 to 8 bytes of a text of `length` bytes as one word, which may overlap the one before.
std::uint64_t last_word(const char* text, std::size_t length) {
    if (length >= 8) return load<std::uint64_t>(text + length - 8);
    if (length >= 4) {
        return load<std::uint32_t>(text) | load<std::uint32_t>(text + length - 4) << 32;
    }
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < length; ++i) {
        word = word << 8 | static_cast<unsigned char>(text[i]);
    }
    return word;
}

std::uint64_t hash_text(const char* text, std::size_t length) {
    std::uint64_t hash = 0x2545F4914F6CDD1DULL + length;
    std::size_t at = 0;
    for (; at + 8 < length; at += 8) hash = mix(hash, load<std::uint64_t>(text + at));
    return mix(hash, last_word(text, length));
}

// Formats are short: a call of the library's routine would take longer.
bool same_text(const char* one, const char* other, std::size_t length) {
    std::size_t at = 0;
    for (; at + 8 < length; at += 8) {
        if (load<std::uint64_t>(one + at) != load<std::uint64_t>(other + at)) return false;
    }
    return last_word(one, length) == last_word(other, length);
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

CachedFormat* FormatCache::parse(const char* text, std::size_t length, FormatRules rules,
                                 std::uint64_t hash) {
    CachedFormat* slot = place_for(hash);
    const bool kept = slot != nullptr;
    if (!kept) slot = new CachedFormat;
    slot->hash = hash;
    slot->text.assign(text, length);
    slot->rules = rules;
    slot->program = FormatProgram{};
    error_ = parse_gnu_format(slot->text.data(), length, rules, slot->program);
    slot->filled = kept && error_.number == 0;
    if (error_.number != 0) {
        if (!kept) delete slot;
        return nullptr;
    }
    slot->last_use = ++clock_;
    ++slot->users;
    return slot;
}

CachedFormat* FormatCache::acquire(const char* text, std::size_t length, FormatRules rules) {
    const std::uint64_t hash = hash_text(text, length);
    CachedFormat** const set = slots_ + (hash % sets) * ways;
    for (CachedFormat** way = set; way != set + ways && *way != nullptr; ++way) {
        CachedFormat& slot = **way;
        if (slot.hash != hash || !slot.filled || slot.text.size() != length) continue;
        if (!same_text(slot.text.data(), text, length) || slot.rules != rules) continue;
        slot.last_use = ++clock_;
        ++slot.users;
        return &slot;
    }
    return parse(text, length, rules, hash);
}

void FormatCache::drop(CachedFormat* format) {
    delete format;
}

}  // namespace tarn::fio
