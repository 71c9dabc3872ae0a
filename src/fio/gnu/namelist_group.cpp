#include "fio/gnu/namelist.h"
#include "fio/gnu/thread_state.h"

namespace tarn::fio {
namespace {

constinit NamelistProcedures procedures;

// Where the last name of a path begins.
std::size_t last_name(std::string_view path) {
    const std::size_t mark = path.find_last_of("%+");
    return mark == std::string_view::npos ? 0 : mark + 1;
}

// The item that the newest one is a component of: itself one of those that the items before it are
// in.
std::uint32_t find_parent(const std::vector<NamelistItem>& items, std::string_view path) {
    if (items.empty()) return NamelistItem::no_parent;
    auto at = static_cast<std::uint32_t>(items.size() - 1);
    while (at != NamelistItem::no_parent && items[at].path != path) at = items[at].parent;
    return at;
}

}  // namespace

void NamelistGroup::clear() {
    name = {};
    items.clear();
    dimensions.clear();
}

void NamelistGroup::add(const NamelistVariable& variable) {
    NamelistItem item;
    item.path = variable.path;
    const std::size_t own = last_name(item.path);
    item.name = item.path.substr(own);
    item.address = static_cast<char*>(variable.address);
    item.type = variable.type;
    item.derived = variable.derived;
    item.kind = variable.kind;
    item.size = variable.size;
    item.length = variable.length;
    item.procedure = variable.procedure;
    item.type_table = variable.type_table;
    const int rank = variable.rank;
    item.rank = rank < 0 ? 0 : rank > namelist_max_rank ? namelist_max_rank : rank;
    item.dimension = static_cast<std::uint32_t>(dimensions.size());
    dimensions.resize(dimensions.size() + static_cast<std::size_t>(item.rank));
    if (own != 0) {
        item.parent = find_parent(items, item.path.substr(0, own - 1));
        // The first component of an extended type is the part that it has from its parent.
        item.inherited =
            item.path[own - 1] == '+' && variable.derived && item.parent + 1 == items.size();
    }
    items.push_back(item);
    const auto end = static_cast<std::uint32_t>(items.size());
    items.back().end = end;
    if (item.parent == NamelistItem::no_parent) return;
    // The address of a component is that of the first element's. Of what isn't allocated only the
    // difference means something.
    items.back().place = reinterpret_cast<std::intptr_t>(item.address) -
                         reinterpret_cast<std::intptr_t>(items[item.parent].address);
    for (std::uint32_t at = item.parent; at != NamelistItem::no_parent; at = items[at].parent) {
        items[at].end = end;
    }
}

void NamelistGroup::set_dimension(int index, const NamelistDimension& dimension) {
    if (items.empty() || index < 0 || index >= items.back().rank) return;
    dimensions[items.back().dimension + static_cast<std::uint32_t>(index)] = dimension;
}

NamelistGroup* take_namelist_group() {
    ThreadState& state = thread_state();
    NamelistGroup* group = state.groups;
    if (group == nullptr) return new NamelistGroup;
    state.groups = group->below;
    group->clear();
    return group;
}

void give_back(NamelistGroup* group) {
    ThreadState& state = thread_state();
    group->below = state.groups;
    state.groups = group;
}

NamelistProcedures& namelist_procedures() {
    return procedures;
}

}  // namespace tarn::fio
