// Any bytes are an unformatted file, of either layout: statements read it, step back in it and
// write into it. What is stored lies in the items, and a statement ends with an outcome that it may
// have.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "fio/gnu/connection.h"
#include "fio/gnu/open.h"
#include "fio/gnu/position.h"
#include "fio/gnu/statement.h"
#include "fio/native/state.h"
#include "fio/native/statement.h"
#include "fio/unit.h"

using namespace tarn::fio;

namespace {

constexpr std::int32_t unit_number = 50;

// The input as a file under a name.
class Memory {
  public:
    Memory(const std::uint8_t* data, std::size_t size)
        : descriptor_(::memfd_create("unformatted", 0)) {
        if (::write(descriptor_, data, size) != static_cast<ssize_t>(size)) std::abort();
        name_ = "/proc/self/fd/" + std::to_string(descriptor_);
    }
    ~Memory() { ::close(descriptor_); }
    const std::string& name() const { return name_; }
    void cut(std::size_t length) const { (void)!::ftruncate(descriptor_, length); }

  private:
    int descriptor_;
    std::string name_;
};

// An item that fits its room exactly, so that a byte too many is seen.
struct Item {
    explicit Item(std::uint8_t choice) {
        constexpr std::size_t sizes[] = {0, 1, 3, 4, 8, 16, 250, 5000, 40000, 200000};
        size = sizes[choice % std::size(sizes)];
        room.reset(new char[size]());
    }
    std::size_t size;
    std::unique_ptr<char[]> room;
};

struct Catching : Caller {
    Catching() {
        iostat = &status;
        catches_error = catches_end = catches_eor = true;
        unit = unit_number;
    }
    Catching(const Catching&) = delete;
    Catching& operator=(const Catching&) = delete;
    std::int32_t status = 0;
};

// ---- gnu statements ----

void gnu_transfer(bool reading, std::uint8_t choice) {
    Catching caller;
    TransferSpecifiers specifiers;
    specifiers.reading = reading;
    Statement* const statement = begin_transfer(caller, specifiers);
    for (int i = 0; i < 2; ++i) {
        const Item item(choice);
        const auto kind = item.size % 4 == 0 ? 4 : 1;
        const auto count = item.size / static_cast<std::size_t>(kind);
        transfer_items(*statement, ItemType::integer, item.room.get(), kind,
                       static_cast<std::size_t>(kind), kind, count);
        choice = static_cast<std::uint8_t>(choice * 7 + 3);
    }
    end_transfer(statement);
}

void run_gnu(const Memory& file, const char* convert, const std::uint8_t* steps,
             std::size_t count) {
    Catching opening;
    OpenSpecifiers specifiers;
    specifiers.unit = unit_number;
    specifiers.file = file.name();
    specifiers.form = "UNFORMATTED";
    specifiers.convert = convert;
    open_unit(opening, specifiers);
    for (std::size_t i = 0; i < count; ++i) {
        Catching caller;
        const std::uint8_t choice = steps[i] / 8;
        switch (steps[i] % 8) {
            case 0:
                backspace_unit(caller);
                break;
            case 1:
                rewind_unit(caller);
                break;
            case 2:
                gnu_transfer(false, choice);
                break;
            case 3:
                file.cut(choice * 8U);
                break;
            default:
                gnu_transfer(true, choice);
        }
    }
    UnitList_destroy(unit_number);
}

// ---- native statements ----

std::int32_t native_status;

void begin_native(native::ActionCode action) {
    using namespace native;
    static std::int32_t number = unit_number;
    beginIO(action);
    setOption(IOCode::iostat, TypeCode::integer4, &native_status, -1);
    setOption(IOCode::unit, TypeCode::integer4, &number, -1);
}

void native_control(native::ActionCode action) {
    begin_native(action);
    native::conclude(native::doIO());
}

void native_transfer(bool reading, std::uint8_t choice) {
    using namespace native;
    begin_native(reading ? ActionCode::read_unformatted : ActionCode::write_unformatted);
    conclude(doIO());
    for (int i = 0; i < 2; ++i) {
        const Item item(choice);
        transfer_unformatted(item.room.get(), static_cast<std::int64_t>(item.size), -1, 0);
        choice = static_cast<std::uint8_t>(choice * 7 + 3);
    }
    if (reading) {
        end_unformatted_read();
    } else {
        end_unformatted_write(false);
    }
    switch (native_status) {
        case 0:
        case -1:
        case 104:
        case 110:
        case 158:
            return;
        default:
            std::fprintf(stderr, "IOSTAT %d\n", native_status);
            std::abort();
    }
}

void run_native(const Memory& file, const std::uint8_t* steps, std::size_t count) {
    using namespace native;
    IO_initialise();
    std::string form = "UNFORMATTED";
    std::string name = file.name();
    begin_native(ActionCode::open);
    setOption(IOCode::file, TypeCode::character, name.data(),
              static_cast<std::ptrdiff_t>(name.size()));
    setOption(IOCode::form, TypeCode::character, form.data(),
              static_cast<std::ptrdiff_t>(form.size()));
    conclude(doIO());
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t choice = steps[i] / 8;
        switch (steps[i] % 8) {
            case 0:
                native_control(ActionCode::backspace);
                break;
            case 1:
                native_control(ActionCode::rewind);
                break;
            case 2:
                native_transfer(false, choice);
                break;
            case 3:
                file.cut(choice * 8U);
                break;
            case 4:
                gnu_transfer(true, choice);
                break;
            default:
                native_transfer(true, choice);
        }
    }
    native_control(ActionCode::close);
}

}  // namespace

// The first byte tells the layout, the next eight what is done, the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t steps = 8;
    if (size < steps + 1) return 0;
    const Memory file(data + steps + 1, size - steps - 1);
    constexpr const char* converts[] = {"NATIVE", "BIG_ENDIAN", "TARN"};
    const unsigned way = data[0] % 4;
    if (way == 3) {
        run_native(file, data + 1, steps);
    } else {
        run_gnu(file, converts[way], data + 1, steps);
    }
    return 0;
}
