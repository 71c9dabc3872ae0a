#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <unordered_map>

#include "program_map.h"
#include "traceback/map_format.h"

namespace tarn::map {
namespace {

using namespace tarn::traceback;

// Each text once, the empty one first.
class Names {
  public:
    Names() { offset_of(""); }
    std::uint32_t offset_of(const std::string& name) {
        auto [place, is_new] = places_.try_emplace(name, static_cast<std::uint32_t>(text_.size()));
        if (is_new) {
            if (text_.size() + name.size() + 1 > std::numeric_limits<std::uint32_t>::max() / 2)
                throw std::runtime_error("the program's names are too long for a map");
            text_.append(name).push_back('\0');
        }
        return place->second;
    }
    const std::string& text() const { return text_; }

  private:
    std::unordered_map<std::string, std::uint32_t> places_;
    std::string text_;
};

class Packer {
  public:
    explicit Packer(const ProgramMap& map) : map_(map) {
        low_ = std::numeric_limits<std::uint64_t>::max();
        for (const Routine& each : map.routines) low_ = std::min(low_, each.start);
        for (const Line& each : map.lines) low_ = std::min(low_, each.start);
        if (map.routines.empty() && map.lines.empty()) low_ = 0;
    }
    std::string section();

  private:
    std::uint32_t relative(std::uint64_t address) const {
        if (address < low_ || address - low_ > std::numeric_limits<std::uint32_t>::max())
            throw std::runtime_error("the program's code takes up more than 4 GiB");
        return static_cast<std::uint32_t>(address - low_);
    }
    std::uint32_t file_index(const std::string& file) {
        auto [place, is_new] =
            file_places_.try_emplace(file, static_cast<std::uint32_t>(files_.size()));
        if (is_new) files_.push_back(names_.offset_of(file));
        return place->second;
    }

    const ProgramMap& map_;
    std::uint64_t low_;
    Names names_;
    std::unordered_map<std::string, std::uint32_t> file_places_;
    std::vector<std::uint32_t> files_;
};

std::string Packer::section() {
    std::vector<MapRoutine> routines;
    for (const Routine& each : map_.routines) {
        routines.push_back({relative(each.start), relative(each.end) - relative(each.start),
                            names_.offset_of(each.name), each.flags});
    }
    std::vector<MapInline> inlined;
    for (const InlinedCall& each : map_.inlined) {
        inlined.push_back({relative(each.start), relative(each.end), names_.offset_of(each.name),
                           file_index(each.call_file), each.call_line, each.depth});
    }
    std::vector<MapLine> lines;
    for (const Line& each : map_.lines)
        lines.push_back({relative(each.start), file_index(map_.files[each.file]), each.line});
    MapHeader header{};
    std::memcpy(header.magic, map_magic, sizeof map_magic);
    header.version = map_version;
    header.low = low_;
    header.routine_count = static_cast<std::uint32_t>(routines.size());
    header.inline_count = static_cast<std::uint32_t>(inlined.size());
    header.line_count = static_cast<std::uint32_t>(lines.size());
    header.file_count = static_cast<std::uint32_t>(files_.size());
    std::string section(sizeof header, '\0');
    auto append = [&](const auto& entries) {
        const auto offset = static_cast<std::uint32_t>(section.size());
        section.append(reinterpret_cast<const char*>(entries.data()),
                       entries.size() * sizeof entries[0]);
        return offset;
    };
    header.routines = append(routines);
    header.inlines = append(inlined);
    header.lines = append(lines);
    header.files = append(files_);
    header.names = static_cast<std::uint32_t>(section.size());
    section.append(names_.text());
    header.size = static_cast<std::uint32_t>(section.size());
    std::memcpy(section.data(), &header, sizeof header);
    return section;
}

void order_routines(std::vector<Routine>& routines) {
    std::erase_if(routines, [](const Routine& each) { return each.start >= each.end; });
    std::stable_sort(routines.begin(), routines.end(),
                     [](const Routine& a, const Routine& b) { return a.start < b.start; });
    // Names for one piece of code: the first counts, which the debug information gave.
    std::vector<Routine> kept;
    for (Routine& each : routines) {
        if (!kept.empty() && each.start < kept.back().end) {
            if (each.end <= kept.back().end) continue;
            each.start = kept.back().end;
        }
        kept.push_back(std::move(each));
    }
    routines = std::move(kept);
}

void order_lines(std::vector<Line>& lines) {
    // At one address the end of one unit's code comes before the start of the next one's.
    std::stable_sort(lines.begin(), lines.end(), [](const Line& a, const Line& b) {
        return a.start != b.start ? a.start < b.start : (a.line == 0) > (b.line == 0);
    });
    std::vector<Line> kept;
    for (const Line& each : lines) {
        if (!kept.empty() && kept.back().start == each.start) {
            kept.back() = each;
            if (kept.size() < 2) continue;
            const Line& before = kept[kept.size() - 2];
            if (before.file == each.file && before.line == each.line) kept.pop_back();
            continue;
        }
        if (!kept.empty() && kept.back().line == each.line && kept.back().file == each.file)
            continue;
        kept.push_back(each);
    }
    lines = std::move(kept);
}

}  // namespace

void put_in_order(ProgramMap& map) {
    order_routines(map.routines);
    order_lines(map.lines);
    std::erase_if(map.inlined, [](const InlinedCall& each) { return each.start >= each.end; });
    std::stable_sort(map.inlined.begin(), map.inlined.end(),
                     [](const InlinedCall& a, const InlinedCall& b) {
                         return a.start != b.start ? a.start < b.start : a.depth < b.depth;
                     });
}

std::string packed(const ProgramMap& map) {
    return Packer(map).section();
}

}  // namespace tarn::map
