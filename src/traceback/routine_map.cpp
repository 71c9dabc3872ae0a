#include "traceback/routine_map.h"

#include <cstring>

namespace tarn::traceback {
namespace {

// The last of `count` entries that doesn't start behind the place, or null.
template <class Entry>
const Entry* last_not_behind(const Entry* entries, std::uint32_t count, std::uint32_t place) {
    const Entry* first = entries;
    while (count > 0) {
        const std::uint32_t half = count / 2;
        if (entries[half].start <= place) {
            entries += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return entries == first ? nullptr : entries - 1;
}

template <class Entry>
const Entry* part_of(Bytes section, std::uint32_t offset, std::uint32_t count) {
    return reinterpret_cast<const Entry*>(
        section.part(offset, std::uint64_t{count} * sizeof(Entry)));
}

}  // namespace

std::string_view Bytes::text(std::uint64_t offset) const {
    if (offset >= size) return {};
    const void* zero = std::memchr(data + offset, 0, size - offset);
    if (zero == nullptr) return {};
    return {data + offset,
            static_cast<std::size_t>(static_cast<const char*>(zero) - data) - offset};
}

bool RoutineMap::open(Bytes section) {
    header_ = nullptr;
    if (section.size < sizeof(MapHeader)) return false;
    const auto* header = reinterpret_cast<const MapHeader*>(section.data);
    if (std::memcmp(header->magic, map_magic, sizeof map_magic) != 0 ||
        header->version != map_version || header->size > section.size)
        return false;
    section.size = header->size;
    routines_ = part_of<MapRoutine>(section, header->routines, header->routine_count);
    inlines_ = part_of<MapInline>(section, header->inlines, header->inline_count);
    lines_ = part_of<MapLine>(section, header->lines, header->line_count);
    files_ = part_of<MapFile>(section, header->files, header->file_count);
    if (!routines_ || !inlines_ || !lines_ || !files_ || header->names > section.size) return false;
    names_ = {section.data + header->names, section.size - header->names};
    header_ = header;
    return true;
}

bool RoutineMap::relative(std::uint64_t address, std::uint32_t& place) const {
    if (header_ == nullptr || address < header_->low || address - header_->low > UINT32_MAX)
        return false;
    place = static_cast<std::uint32_t>(address - header_->low);
    return true;
}

const MapRoutine* RoutineMap::routine_at(std::uint64_t address) const {
    std::uint32_t place = 0;
    if (!relative(address, place)) return nullptr;
    const MapRoutine* found = last_not_behind(routines_, header_->routine_count, place);
    return found != nullptr && place - found->start < found->size ? found : nullptr;
}

MapLine RoutineMap::line_at(std::uint64_t address) const {
    std::uint32_t place = 0;
    if (!relative(address, place)) return {};
    const MapLine* found = last_not_behind(lines_, header_->line_count, place);
    return found != nullptr ? *found : MapLine{};
}

std::size_t RoutineMap::inlines_at(const MapRoutine& routine, std::uint64_t address,
                                   const MapInline** found, std::size_t most) const {
    std::uint32_t place = 0;
    if (!relative(address, place)) return 0;
    std::size_t count = 0;
    const MapInline* last = last_not_behind(inlines_, header_->inline_count, place);
    for (const MapInline* each = last; each != nullptr && each >= inlines_; --each) {
        if (each->start < routine.start) break;
        if (place >= each->end) continue;
        if (count == most) break;
        found[count++] = each;
    }
    for (std::size_t i = 0; i < count / 2; ++i) {  // outermost first
        const MapInline* kept = found[i];
        found[i] = found[count - 1 - i];
        found[count - 1 - i] = kept;
    }
    return count;
}

std::string_view RoutineMap::file(std::uint32_t index) const {
    if (header_ == nullptr || index >= header_->file_count) return {};
    return names_.text(files_[index].name);
}

}  // namespace tarn::traceback
