#include "fio/native/namelist_table.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace tarn::fio::native {
namespace {

constexpr std::size_t word_at = 1;
constexpr std::size_t structure_distance_at = 3;
constexpr std::size_t length_at = 1 + sizeof(char*);
constexpr std::size_t rank_at = length_at + 4;
constexpr std::size_t entry_bounds_at = rank_at + 1;
constexpr std::size_t component_distance_at = rank_at + 1;
constexpr std::size_t component_bounds_at = component_distance_at + 2;
static_assert(length_at == 9 && rank_at == 13 && component_bounds_at == 16);

template <typename T>
T load(const char* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

// An entry keeps its bounds right behind its rank, a component two bytes farther on.
NamelistEntry read(const char* at, std::size_t bounds_at) {
    NamelistEntry entry;
    entry.type = static_cast<NamelistType>(load<std::uint8_t>(at));
    if (entry.type == NamelistType::structure) {
        entry.components = load<std::int16_t>(at + word_at);
    } else {
        entry.address = load<char*>(at + word_at);
    }
    entry.length = load<std::uint32_t>(at + length_at);
    entry.rank = std::clamp<int>(load<std::int8_t>(at + rank_at), 0, namelist_table_rank);
    const char* bounds = at + bounds_at;
    for (int i = 0; i < entry.rank; ++i, bounds += 8) {
        entry.lower[i] = load<std::int32_t>(bounds);
        entry.upper[i] = load<std::int32_t>(bounds + 4);
    }
    entry.behind = bounds;
    return entry;
}

}  // namespace

std::int64_t namelist_type_size(NamelistType type) {
    switch (type) {
        case NamelistType::integer1:
        case NamelistType::logical1:
            return 1;
        case NamelistType::integer2:
        case NamelistType::logical2:
            return 2;
        case NamelistType::integer4:
        case NamelistType::logical4:
        case NamelistType::real4:
            return 4;
        case NamelistType::integer8:
        case NamelistType::real8:
        case NamelistType::complex8:
            return 8;
        case NamelistType::complex16:
            return 16;
        case NamelistType::real10:
            return sizeof(long double);
        case NamelistType::complex20:
            return 2 * sizeof(long double);
        default:
            return 0;
    }
}

std::int64_t NamelistEntry::element_size() const {
    const bool own = type == NamelistType::character || type == NamelistType::structure;
    return own ? length : namelist_type_size(type);
}

std::int64_t NamelistEntry::element_count() const {
    std::int64_t count = 1;
    for (int i = 0; i < rank; ++i) count *= extent(i);
    return count;
}

NamelistEntry read_namelist_entry(const char* at) {
    NamelistEntry entry = read(at, entry_bounds_at);
    if (entry.type == NamelistType::structure) {
        entry.distance = load<std::int16_t>(at + structure_distance_at);
    }
    return entry;
}

NamelistEntry read_namelist_component(const char* at) {
    NamelistEntry entry = read(at, component_bounds_at);
    entry.distance = load<std::int16_t>(at + component_distance_at);
    return entry;
}

NamelistItem read_namelist_item(const char* at) {
    NamelistItem item;
    item.at = at;
    const auto name_length = load<std::uint8_t>(at + 1);
    if (name_length > 0) item.name = {at + 2, static_cast<std::size_t>(name_length - 1)};
    item.entry = read_namelist_entry(at + 1 + name_length);
    const std::int32_t distance = item.entry.distance;
    item.next = at + (distance != 0 ? distance : load<std::uint8_t>(at));
    return item;
}

NamelistTable read_namelist_table(const void* at) {
    const auto* const bytes = static_cast<const char*>(at);
    NamelistTable table;
    table.count = load<std::int32_t>(bytes);
    const auto name_length = load<std::uint8_t>(bytes + 4);
    if (name_length > 0) table.name = {bytes + 5, static_cast<std::size_t>(name_length - 1)};
    table.first = bytes + 4 + name_length;
    return table;
}

// ---- Making one ----

template <typename T>
void NamelistTableBuilder::put(T value) {
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <typename T>
void NamelistTableBuilder::store(std::size_t at, std::int64_t value) {
    const auto stored = static_cast<T>(value);
    fits_ = fits_ && stored == value;
    std::memcpy(bytes_.data() + at, &stored, sizeof stored);
}

NamelistTableBuilder::NamelistTableBuilder(std::string_view group) {
    put(std::int32_t{0});
    put(std::uint8_t{0});
    store<std::uint8_t>(4, static_cast<std::int64_t>(group.size()) + 1);
    bytes_.append(group);
}

void NamelistTableBuilder::close_item(std::size_t start) {
    store<std::uint8_t>(start, static_cast<std::int64_t>(bytes_.size() - start));
}

void NamelistTableBuilder::add(std::string_view name, NamelistType type, void* address,
                               std::int64_t length, int rank, const std::int64_t* bounds) {
    const bool component = depth_ > 0;
    const bool structure = type == NamelistType::structure;
    const std::size_t start = bytes_.size();
    if (component) {
        ++open_[depth_ - 1].components;
    } else {
        store<std::int32_t>(0, std::int64_t{read_namelist_table(bytes_.data()).count} + 1);
        put(std::uint8_t{0});
        put(std::uint8_t{0});
        store<std::uint8_t>(start + 1, static_cast<std::int64_t>(name.size()) + 1);
        bytes_.append(name);
    }
    const std::size_t entry = bytes_.size();
    put(type);
    put(structure ? nullptr : address);
    put(std::uint32_t{0});
    store<std::uint32_t>(entry + length_at, length);
    put(static_cast<std::int8_t>(rank));
    if (component) put(std::int16_t{0});
    for (int i = 0; i < 2 * rank; ++i) {
        const std::size_t at = bytes_.size();
        put(std::int32_t{0});
        store<std::int32_t>(at, bounds[i]);
    }
    if (!structure) {
        const auto size = static_cast<std::int64_t>(bytes_.size() - start);
        if (component) {
            store<std::int16_t>(start + component_distance_at, size);
        } else {
            close_item(start);
        }
        return;
    }
    fits_ = fits_ && depth_ < deepest;
    if (!fits_) return;
    open_[depth_++] = {start, entry + word_at,
                       entry + (component ? component_distance_at : structure_distance_at)};
}

void NamelistTableBuilder::end_structure() {
    if (depth_ == 0) return;
    const Open& open = open_[--depth_];
    store<std::int16_t>(open.count_at, open.components);
    store<std::int16_t>(open.distance_at, static_cast<std::int64_t>(bytes_.size() - open.start));
}

}  // namespace tarn::fio::native
