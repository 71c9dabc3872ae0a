// Any text is a namelist group for both readers: the statement ends, and what it stores lies in
// the variables. Each has room of its own, so that a byte beside it is found.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "fio/gnu/namelist.h"
#include "fio/gnu/statement.h"
#include "fio/native/namelist.h"
#include "fio/native/namelist_table.h"
#include "fio/native/state.h"

using namespace tarn::fio;

namespace {

struct Variable {
    const char* path;
    ItemType type;
    int kind;
    std::size_t size;
    std::size_t length;
    std::vector<NamelistDimension> bounds;
    bool derived = false;
    std::size_t place = 0;  // of a component in its structure
};

constexpr std::size_t structure_size = 64;

const std::vector<Variable>& variables() {
    static const std::vector<Variable> list = {
        {"i", ItemType::integer, 4, 4, 0, {}},
        {"b", ItemType::integer, 1, 1, 0, {{1, -1, 3}}},
        {"iq", ItemType::integer, 16, 16, 0, {}},
        {"x", ItemType::real, 8, 8, 0, {{1, 1, 3}, {3, 0, 1}}},
        {"t", ItemType::logical, 4, 4, 0, {{1, 1, 4}}},
        {"z", ItemType::complex, 4, 8, 0, {{2, 1, 3}}},
        {"c", ItemType::character, 1, 5, 5, {}},
        {"cc", ItemType::character, 1, 3, 3, {{1, 1, 2}}},
        {"w", ItemType::character, 4, 12, 3, {}},
        {"none", ItemType::integer, 4, 4, 0, {{1, 1, 0}}},
        {"s", ItemType::integer, 0, structure_size, 0, {{1, 1, 2}}, true},
        {"s%k", ItemType::integer, 2, 2, 0, {{1, 1, 3}}, false, 0},
        {"s%n", ItemType::integer, 0, 32, 0, {}, true, 16},
        {"s%n%r", ItemType::real, 4, 4, 0, {}, false, 16},
        {"s%n%c", ItemType::character, 1, 4, 4, {}, false, 24},
        {"s%l", ItemType::logical, 1, 1, 0, {}, false, 60},
    };
    return list;
}

std::int64_t cells(const Variable& variable) {
    std::int64_t last = 0;
    for (const NamelistDimension& d : variable.bounds) {
        if (d.extent() == 0) return 0;
        last += (d.extent() - 1) * d.stride;
    }
    return last + 1;
}

// The storage of the variables that aren't components.
class Storage {
  public:
    char* add(const Variable& variable) {
        const auto bytes = static_cast<std::size_t>(cells(variable)) * variable.size;
        rooms_.emplace_back(new char[bytes + (bytes == 0 ? 1 : 0)]());
        return rooms_.back().get();
    }
    char* last() const { return rooms_.back().get(); }

  private:
    std::vector<std::unique_ptr<char[]>> rooms_;
};

void read_gnu(const std::string& text, std::size_t length, bool comma) {
    Storage storage;
    NamelistGroup& group = *take_namelist_group();
    group.name = "g";
    for (const Variable& v : variables()) {
        NamelistVariable told;
        const bool component = std::strchr(v.path, '%') != nullptr;
        told.address = component ? storage.last() + v.place : storage.add(v);
        told.path = v.path;
        told.type = v.type;
        told.derived = v.derived;
        told.kind = v.kind;
        told.size = v.size;
        told.length = v.length;
        told.rank = static_cast<int>(v.bounds.size());
        group.add(told);
        for (int i = 0; i < told.rank; ++i) {
            group.set_dimension(i, v.bounds[static_cast<std::size_t>(i)]);
        }
    }
    std::int32_t iostat = 0;
    char message[200];
    Caller caller;
    caller.iostat = &iostat;
    caller.iomsg = message;
    caller.iomsg_length = sizeof message;
    caller.catches_error = caller.catches_end = true;
    const std::size_t count = text.size() / length;
    const std::unique_ptr<char[]> records(new char[count * length]);
    std::memcpy(records.get(), text.data(), count * length);
    InternalFile file;
    file.base = records.get();
    file.length = length;
    file.count = static_cast<std::int64_t>(count);
    file.rank = 1;
    file.dimension[0] = {file.count, static_cast<std::int64_t>(length), 0};
    ModeSpecifiers modes;
    modes.decimal = "COMMA";
    TransferSpecifiers specifiers;
    specifiers.reading = true;
    specifiers.namelist = &group;
    specifiers.internal = &file;
    if (comma) specifiers.modes = &modes;
    end_transfer(begin_transfer(caller, specifiers));
    give_back(&group);
}

native::NamelistType native_type(const Variable& v) {
    if (v.derived) return native::NamelistType::structure;
    switch (v.type) {
        case ItemType::integer:
            return v.kind == 1   ? native::NamelistType::integer1
                   : v.kind == 2 ? native::NamelistType::integer2
                                 : native::NamelistType::integer4;
        case ItemType::logical:
            return v.kind == 1 ? native::NamelistType::logical1 : native::NamelistType::logical4;
        case ItemType::real:
            return v.kind == 4 ? native::NamelistType::real4 : native::NamelistType::real8;
        case ItemType::complex:
            return native::NamelistType::complex8;
        default:
            return native::NamelistType::character;
    }
}

// The native reader takes no internal file, so its record is put where RSF3__ would read it.
void read_native(const std::string& text) {
    Storage storage;
    native::NamelistTableBuilder builder("G");
    int depth = 0;
    for (const Variable& v : variables()) {
        std::string name(v.path);
        for (char& c : name) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
        const int level = static_cast<int>(std::count(name.begin(), name.end(), '%'));
        for (; depth > level; --depth) builder.end_structure();
        char* const address = level > 0 ? storage.last() + v.place : storage.add(v);
        std::vector<std::int64_t> bounds;
        for (const NamelistDimension& d : v.bounds) {
            bounds.push_back(d.lower);
            bounds.push_back(d.upper);
        }
        builder.add(name.substr(name.rfind('%') + 1), native_type(v), address,
                    static_cast<std::int64_t>(v.size), static_cast<int>(v.bounds.size()),
                    bounds.data());
        if (v.derived) ++depth;
    }
    for (; depth > 0; --depth) builder.end_structure();

    using namespace native;
    static std::int32_t iostat;
    IO_initialise();
    beginIO(ActionCode::read_namelist);
    IO_type& io = current();
    Unit unit;
    unit.kind = UnitKind::text;
    unit.recl = 1000;
    unit.status.connected = unit.status.formatted = unit.status.may_read = true;
    // What stands in the buffer is the file.
    std::string file(text);
    file += '\n';
    unit.file.buffer = file.data();
    unit.file.capacity = unit.file.data_count = file.size();
    io.unit = io.target_unit = &unit;
    io.unit_number = 1;
    io.iostat = {&iostat, TypeCode::integer4};
    io.iostat_given = true;
    setOption(IOCode::namelist, TypeCode::none, const_cast<void*>(builder.table()), -1);
    (void)RNML__();
    unit.file.buffer = nullptr;
    unit.file.capacity = unit.file.data_count = 0;
    io.unit = io.target_unit = nowhere_unit();
    io.busy = false;
    io.statement_aborted = false;
    state().in_io = false;
}

}  // namespace

// The first bytes tell the reader, the decimal mark and the length of the records.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t head = 2;
    if (size < head + 1) return 0;
    const std::string text(reinterpret_cast<const char*>(data) + head, size - head);
    const std::size_t length = data[1] < 128 ? text.size() : 1 + data[1] % text.size();
    read_gnu(text, length, (data[0] & 1) != 0);
    read_native(text);
    return 0;
}
