#include "pairing/gcc/native_namelist.h"

namespace tarn::gcc {
namespace {

using fio::ItemType;
using fio::NamelistDimension;
using fio::NamelistGroup;
using fio::NamelistItem;
using fio::native::NamelistTableBuilder;
using fio::native::NamelistType;

struct KnownType {
    int kind;
    ItemType type;
    NamelistType code;
};
constexpr KnownType known_types[] = {
    {1, ItemType::integer, NamelistType::integer1},
    {2, ItemType::integer, NamelistType::integer2},
    {4, ItemType::integer, NamelistType::integer4},
    {8, ItemType::integer, NamelistType::integer8},
    {1, ItemType::logical, NamelistType::logical1},
    {2, ItemType::logical, NamelistType::logical2},
    {4, ItemType::logical, NamelistType::logical4},
    {4, ItemType::real, NamelistType::real4},
    {8, ItemType::real, NamelistType::real8},
    {10, ItemType::real, NamelistType::real10},
    {4, ItemType::complex, NamelistType::complex8},
    {8, ItemType::complex, NamelistType::complex16},
    {10, ItemType::complex, NamelistType::complex20},
    {1, ItemType::character, NamelistType::character},
};

bool find_type(const NamelistItem& item, NamelistType& code) {
    if (item.derived) {
        code = NamelistType::structure;
        return true;
    }
    for (const KnownType& known : known_types) {
        if (known.type != item.type || known.kind != item.kind) continue;
        code = known.code;
        return true;
    }
    return false;
}

// A table knows no strides: the elements must lie one behind the other.
bool is_contiguous(const NamelistDimension* dimension, int rank) {
    std::int64_t stride = 1;
    for (int i = 0; i < rank; ++i) {
        if (dimension[i].extent() > 1 && dimension[i].stride != stride) return false;
        stride *= dimension[i].extent();
    }
    return true;
}

std::string sentence(const NamelistItem& item, std::string_view what) {
    return upper_name(item.path).append(what).append(" in the native dialect");
}

std::string describe(const NamelistGroup& group, std::uint32_t index,
                     NamelistTableBuilder& builder) {
    const NamelistItem& item = group.items[index];
    NamelistType type{};
    if (item.procedure != nullptr) return sentence(item, ": a procedure of the type isn't called");
    if (!find_type(item, type)) return sentence(item, " has a type that isn't available");
    if (item.address == nullptr) return sentence(item, " isn't allocated: it can't be in a group");
    const NamelistDimension* dimension = group.dimensions_of(item);
    if (!is_contiguous(dimension, item.rank)) return sentence(item, " must be contiguous");
    std::int64_t bounds[2 * fio::namelist_max_rank];
    for (int i = 0; i < item.rank; ++i) {
        bounds[2 * i] = dimension[i].lower;
        bounds[2 * i + 1] = dimension[i].upper;
    }
    const auto length = static_cast<std::int64_t>(item.size);
    builder.add(upper_name(item.name), type, item.address, length, item.rank, bounds);
    if (!item.derived) return {};
    for (std::uint32_t i = index + 1; i < item.end; i = group.items[i].end) {
        std::string missing = describe(group, i, builder);
        if (!missing.empty()) return missing;
    }
    builder.end_structure();
    return {};
}

}  // namespace

std::string upper_name(std::string_view name) {
    std::string result(name);
    for (char& c : result) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return result;
}

std::string describe_group(const NamelistGroup& group, NamelistTableBuilder& builder) {
    for (std::uint32_t i = 0; i < group.items.size(); i = group.items[i].end) {
        std::string missing = describe(group, i, builder);
        if (!missing.empty()) return missing;
        if (!builder.fits()) return sentence(group.items[i], " is too large for a group");
    }
    return {};
}

}  // namespace tarn::gcc
