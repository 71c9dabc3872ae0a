// OPEN.
#include <string>
#include <sys/stat.h>

#include "fio/file/names.h"
#include "fio/native/connect.h"
#include "platform/kernel/error.h"

namespace tarn::fio::native {
namespace {

enum AccessWord {
    access_direct = 1,
    access_sequential,
    access_transparent,
    access_append,
    access_stream
};
enum BlankWord { blank_zero = 1, blank_null };
enum FormWord { form_unformatted = 1, form_formatted, form_printer };
enum StatusWord {
    status_unknown = 1,
    status_modify,
    status_new,
    status_append,
    status_scratch,
    status_old,
    status_readonly,
    status_replace,
};
enum PositionWord { position_asis = 1, position_rewind, position_append };
enum ActionWord { action_read = 1, action_write, action_readwrite };
enum DelimWord { delim_apostrophe = 1, delim_quote, delim_none };
enum PadWord { pad_yes = 1, pad_no };

constexpr std::string_view access_words = "DIRECT SEQUENTIAL TRANSPARENT APPEND STREAM ";
constexpr std::string_view blank_words = "ZERO NULL ";
constexpr std::string_view form_words = "UNFORMATTED FORMATTED PRINTER ";
constexpr std::string_view status_words = "UNKNOWN MODIFY NEW APPEND SCRATCH OLD READONLY REPLACE ";
constexpr std::string_view filetype_words =
    "TTY PTR MPC SLP MT0 MT1 MT2 MT3 MT4 MT5 MT6 MT7 MLP FSC FSU SCR PTP MT10 MT11 MT12 MT13 TTYCO "
    "MT14 MT15 MT16 MT17 VERSATEC ";
constexpr std::string_view share_words = "COMPAT DENYRW DENYWR DENYRD DENYNONE ";
constexpr std::string_view position_words = "ASIS REWIND APPEND ";
constexpr std::string_view action_words = "READ WRITE READWRITE ";
constexpr std::string_view delim_words = "APOSTROPHE QUOTE NONE ";
constexpr std::string_view pad_words = "YES NO ";

// The kind of each FILETYPE= word; those behind PTP connect nothing at all.
constexpr UnitKind filetype_kinds[] = {
    UnitKind::console,  UnitKind::window,   UnitKind::device3,  UnitKind::device4,
    UnitKind::device5,  UnitKind::device5,  UnitKind::device5,  UnitKind::device5,
    UnitKind::device10, UnitKind::device10, UnitKind::device10, UnitKind::device10,
    UnitKind::device6,  UnitKind::text,     UnitKind::full,     UnitKind::printer,
    UnitKind::window,
};
constexpr auto kind_of_nothing = static_cast<UnitKind>(11);

UnitKind kind_of_filetype(std::int32_t word) {
    constexpr auto count = static_cast<std::int32_t>(std::size(filetype_kinds));
    return word <= count ? filetype_kinds[word - 1] : kind_of_nothing;
}

bool is_blank(std::string_view text) {
    return text.find_first_not_of(' ') == std::string_view::npos;
}

// A missing folder is another thing than a missing file.
int tell_missing_folder(const std::string& name, int err) {
    if (err != platform::error_file_not_found) return err;
    const std::size_t slash = name.rfind('/');
    if (slash == std::string::npos || slash == 0) return err;
    struct stat about;
    const bool there = ::stat(name.substr(0, slash).c_str(), &about) == 0;
    return there ? err : platform::error_path_not_found;
}

// The working values of one OPEN. Nothing of them reaches the unit before the last step, except
// that a connection that is to be replaced is closed on the way.
class Opening {
  public:
    Opening() : state_(state()), io_(*state_.current_io), spec_(io_.spec_block) {}

    bool run() {
        if (!spec_.unit_given && !IO_error(60)) return false;
        find_unit();
        read_words();
        if (!check_words() || !settle_access() || !settle_form() || !settle_kind()) return false;
        if (kind_ == UnitKind::console) return open_console();
        if (!settle_flags() || !settle_status() || !find_file()) return false;
        if (status_ == status_scratch && has_file_ && !IO_error(81)) return false;
        if (reconnects_) {
            if ((!has_file_ || same_file_) && status_ != status_scratch) return reconnect();
            if (!IO_quick_close(*unit_)) return false;
            Unit_initialise(*unit_, unit_->number, true);
            reconnects_ = false;
        }
        return settle_record_length() && connect() && store();
    }

    // After a failure: the unit is as if it had never been connected.
    void give_up() {
        if (unit_ == nullptr || reconnects_) return;
        if (unit_->file.descriptor >= 0) {
            int ignored = 0;
            sys_fileClose(*unit_, ignored);
        }
        unit_->status.connected = false;
        if (io_.unit == unit_) io_.unit = nullptr;
        io_.target_unit = nullptr;
        if (is_new_)
            Unit_free(unit_);
        else
            UnitList_destroy(unit_);
    }

  private:
    void find_unit() {
        reconnects_ = io_.unit != nullptr;
        unit_ = io_.unit;
        if (unit_ == nullptr) {
            // A unit that the list holds unconnected is taken, so that no number is there twice.
            unit_ = UnitList_getUnit(io_.unit_number);
            is_new_ = unit_ == nullptr;
            if (is_new_)
                unit_ = Unit_create(io_.unit_number, true);
            else
                Unit_initialise(*unit_, io_.unit_number, true);
        }
        io_.target_unit = unit_;
    }

    void read_words() {
        recl_ = spec_.recl_given ? spec_.recl : 0;
        access_ = match(spec_.access, access_words);
        blank_ = match(spec_.blank, blank_words);
        form_ = match(spec_.form, form_words);
        status_ = match(spec_.status, status_words);
        filetype_ = match(spec_.filetype, filetype_words);
        share_word_ = match(spec_.share, share_words);
        position_ = match(spec_.position, position_words);
        action_ = match(spec_.action, action_words);
        delim_ = match(spec_.delim, delim_words);
        pad_ = match(spec_.pad, pad_words);
        if (action_ == action_write && position_ == position_append) action_ = 0;
        share_ = share_word_ > 0 ? share_word_ - 1 : 0;

        has_file_ = spec_.file.given;
        std::string_view name = spec_.file.view();
        while (!name.empty() && name.front() == ' ') name.remove_prefix(1);
        while (!name.empty() && name.back() == ' ') name.remove_suffix(1);
        name_ = name;
    }

    bool check_words() {
        const struct {
            std::int32_t word;
            std::int32_t message;
        } checks[] = {
            {status_, 152},     {form_, 151},   {access_, 80},    {blank_, 153}, {filetype_, 98},
            {share_word_, 207}, {action_, 209}, {position_, 210}, {delim_, 211}, {pad_, 212},
        };
        for (const auto& check : checks)
            if (check.word < 0 && !IO_error(check.message)) return false;
        return true;
    }

    bool settle_access() {
        given_status_ = status_;
        if (access_ <= 0) access_ = access_sequential;
        if (access_ != access_append) return true;
        if (state_.ansi_mode && !IO_error(126)) return false;
        const bool excluded = status_ == status_new || status_ == status_append ||
                              status_ == status_scratch || status_ == status_readonly ||
                              status_ == status_replace;
        if (excluded && !IO_error(80)) return false;
        status_ = status_append;
        access_ = access_sequential;
        return true;
    }

    bool settle_form() {
        if (form_ <= 0) form_ = access_ == access_sequential ? form_formatted : form_unformatted;
        if (form_ == form_printer) {
            if (state_.ansi_mode && !IO_error(189)) return false;
            const bool excluded =
                access_ == access_direct || status_ == status_readonly || action_ == action_read;
            if (excluded && !IO_error(81)) return false;
        }
        flags_.formatted = form_ != form_unformatted;
        return true;
    }

    bool settle_kind() {
        if (filetype_ > 0) {
            kind_ = kind_of_filetype(filetype_);
            if (kind_ == UnitKind::console) return true;
        }
        if (access_ == access_direct)
            kind_ = UnitKind::full;
        else if (form_ == form_printer)
            kind_ = UnitKind::printer;
        else if (filetype_ <= 0)
            kind_ = state_.full_sequential ? UnitKind::full : UnitKind::text;
        is_file_ = is_file_kind(kind_);
        return true;
    }

    bool open_console() {
        if ((form_ == form_unformatted || access_ == access_direct) && !IO_error(80)) return false;
        if (status_ > status_unknown && !IO_error(152)) return false;
        if (reconnects_ && !IO_quick_close(*unit_)) return false;
        UnitList_insert(unit_);
        Unit_clear(*unit_);
        unit_->kind = UnitKind::console;
        unit_->dialect = &native_dialect;
        unit_->status.blank_null = true;
        unit_->status.formatted = true;
        unit_->status.may_read = true;
        unit_->status.may_write = true;
        unit_->status.writing = true;
        unit_->recl = interrupted().buffer_size;
        unit_->current_record = 0;
        describe_to_gnu(*unit_);
        return true;
    }

    bool settle_flags() {
        const bool named_text =
            access_ == access_sequential && form_ == form_formatted && has_file_;
        if (named_text && !is_file_ && !IO_error(81)) return false;
        flags_.transparent = access_ == access_transparent || access_ == access_stream;
        flags_.stream = access_ == access_stream;
        if (access_ == access_direct) {
            if (!is_file_ && !IO_error(81)) return false;
            flags_.direct = true;
        }
        if (blank_ > 0 && !flags_.formatted && !IO_error(153)) return false;
        flags_.blank_null = blank_ != blank_zero;
        return true;
    }

    bool settle_status() {
        if (status_ <= status_unknown) status_ = has_file_ ? status_modify : status_scratch;
        if (state_.ansi_mode) {
            const bool extended =
                given_status_ == status_modify || given_status_ == status_append ||
                given_status_ == status_readonly || given_status_ == status_replace;
            const bool newer = action_ > 0 || position_ > 0 || delim_ > 0 || pad_ > 0;
            if ((extended || newer) && !IO_error(126)) return false;
        }
        flags_.delim_apostrophe = delim_ == delim_apostrophe;
        flags_.delim_quote = delim_ == delim_quote;
        flags_.pad_no = pad_ == pad_no;
        append_ = status_ == status_append || position_ == position_append;
        if (status_ != status_modify && !append_) return true;
        if (!is_file_ && !IO_error(81)) return false;
        if (!has_file_ && !IO_error(103)) return false;
        if (!append_) return true;
        if (access_ == access_direct && !IO_error(81)) return false;
        flags_.positioned_by_append = true;
        return true;
    }

    // What the file system has under the name, before anything is opened. A look is enough:
    // opening a pipe, say, would wait for its other end.
    bool find_file() {
        const bool needs_file = status_ == status_modify || status_ == status_old ||
                                status_ == status_new || status_ == status_readonly ||
                                status_ == status_replace;
        if (!has_file_) {
            const bool missing = needs_file && !reconnects_ && is_file_;
            return !missing || IO_error(103);
        }
        if (!needs_file && !append_) return true;
        if (name_.empty()) return true;
        Unit* const holder = sys_findUnitFromFilename(name_);
        same_file_ = reconnects_ && holder == unit_;
        if (status_ == status_replace) {
            int ignored = 0;
            if (holder == nullptr) sys_deleteFile(name_, ignored);
            status_ = status_old;
            return holder == nullptr || same_file_ || may_share(*holder) || IO_error(134);
        }
        struct stat about;
        const bool exists = ::stat(name_.c_str(), &about) == 0;
        if (exists && S_ISDIR(about.st_mode))
            return IO_system_error(platform::error_access_denied, "IO_open");
        if (status_ == status_new && exists) return IO_error(107);
        if (holder != nullptr && !same_file_ && !may_share(*holder) && !IO_error(134)) return false;
        const bool may_be_missing =
            exists || status_ == status_modify || status_ == status_append || status_ == status_new;
        if (may_be_missing) return true;
        return tell_missing_folder(name_, platform::error_file_not_found) ==
                       platform::error_path_not_found
                   ? IO_error(146)
                   : IO_error(128);
    }

    // Two units on one file: only both for reading, or where SHARE= says how.
    bool may_share(const Unit& holder) const {
        if (share_word_ > 0 || holder.share > 0) return true;
        return !holder.status.may_write && (status_ == status_readonly || action_ == action_read);
    }

    // A connection goes on. Only BLANK= and the modes of list-directed and short records change.
    bool reconnect() {
        const IOStatus& old = unit_->status;
        const bool fixed = recl_ != 0 && kind_ == UnitKind::text;
        const bool same_kind = kind_ == unit_->kind || unit_->dialect != &native_dialect ||
                               (unit_->kind == UnitKind::full && fixed) ||
                               (old.fixed_record_length && kind_ == UnitKind::text);
        const bool same =
            flags_.formatted == old.formatted && flags_.direct == old.direct && !old.end_of_file &&
            !old.scratch && flags_.positioned_by_append == old.positioned_by_append &&
            flags_.transparent == old.transparent && same_kind && share_ == unit_->share &&
            (recl_ == 0 || !flags_.direct || recl_ == unit_->recl);
        if (!same && !IO_error(84)) return false;
        unit_->status.blank_null = flags_.blank_null;
        if (delim_ > 0) {
            unit_->status.delim_apostrophe = flags_.delim_apostrophe;
            unit_->status.delim_quote = flags_.delim_quote;
        }
        if (pad_ > 0) unit_->status.pad_no = flags_.pad_no;
        if (unit_->dialect == &native_dialect) describe_to_gnu(*unit_);
        return true;
    }

    IO_type& interrupted() const { return state_.saved_io != nullptr ? *state_.saved_io : io_; }

    bool settle_record_length() {
        flags_.connected = true;
        flags_.scratch = status_ == status_scratch;
        if (access_ == access_direct) {
            if (recl_ <= 0 && !IO_error(106)) return false;
        } else if (spec_.recl_given) {
            if (state_.ansi_mode && !IO_error(82)) return false;
            if (recl_ < 1 && !IO_error(69)) return false;
            flags_.fixed_record_length = true;
            if (is_file_ && kind_ != UnitKind::printer) kind_ = UnitKind::full;
        }
        constexpr std::int64_t longest = std::int64_t{1} << 40;
        if (recl_ > longest && !IO_error(69)) return false;
        if (recl_ <= 0) recl_ = interrupted().buffer_size;
        grow_buffer();
        return pad_ <= 0 || flags_.formatted || IO_error(81);
    }

    // The record of the next formatted statement must fit. What borrows the buffer follows it.
    void grow_buffer() {
        IO_type& owner = interrupted();
        if (owner.buffer_size >= recl_ || !flags_.formatted) return;
        IO_allocate_buffer(owner, recl_);
        io_.buffer = owner.buffer;
        io_.buffer_start = owner.buffer_start;
        io_.buffer_size = owner.buffer_size;
    }

    bool connect() {
        if (spec_.user_driver != nullptr) return connect_driver();
        return settle_rights() && open_file() && measure_file();
    }

    bool connect_driver() {
        kind_ = UnitKind::driver;
        flags_.may_read = true;
        flags_.may_write = true;
        unit_->driver = spec_.user_driver;
        auto length = static_cast<std::int32_t>(name_.size());
        name_.resize(name_.size() + 1);
        const auto capacity = static_cast<std::int32_t>(name_.size());
        return call_driver(*unit_, ActionCode::open, name_.data(), capacity, length);
    }

    bool settle_rights() {
        if (status_ == status_readonly || action_ == action_read) {
            if (action_ > 0 && action_ != action_read && !IO_error(81)) return false;
            allow_reading_only();
        } else if (action_ == action_write) {
            flags_.writing = true;
            flags_.may_write = true;
        } else {
            flags_.may_read = true;
            flags_.may_write = true;
        }
        return true;
    }

    void allow_reading_only() {
        flags_.reading = true;
        flags_.may_read = true;
        flags_.may_write = false;
        flags_.read_only = true;
    }

    void open_by_name(int mode, bool create, int& err) {
        sys_fileOpen(*unit_, name_, mode, err, create);
        err = tell_missing_folder(name_, err);
    }

    bool open_file() {
        unit_->file.position_state = place_asis;
        if (!is_file_) return true;
        if (!has_file_) return open_scratch_file();
        if (is_blank(name_)) return IO_error(144);
        int err = 0;
        const bool shares = share_word_ > 0;
        const int sharing = shares ? share_ * 16 | mode_share_given : 0;
        const int read_mode = shares ? sharing : 0x20;
        if (!flags_.may_write) {
            open_by_name(read_mode, status_ == status_new, err);
        } else if (!flags_.may_read) {
            open_by_name(shares ? sharing + 1 : 0x41, !shares, err);
        } else {
            open_by_name(shares ? sharing + 2 : 0x22, false, err);
            if (err == platform::error_file_not_found) return IO_error(144);
            if (is_write_protected(err)) {
                const int first = err;
                open_by_name(read_mode, false, err);
                if (err == 0)
                    allow_reading_only();
                else
                    err = first;
            }
        }
        return err == 0 || report_open_error(err);
    }

    bool open_scratch_file() {
        int err = 0;
        name_ = sys_createTempFilename(err);
        if (err == 0) sys_fileOpen(*unit_, name_, 0x22, err, false);
        return err == 0 || report_open_error(err);
    }

    bool report_open_error(int err) {
        switch (err) {
            case platform::error_sharing_violation:
                return IO_error(134);
            case platform::error_path_not_found:
                return IO_error(146);
            default:
                return IO_system_error(err, "IO_open");
        }
    }

    bool measure_file() {
        if (!is_file_ || unit_->file.descriptor < 0 || (!flags_.direct && !append_)) return true;
        std::int64_t size = 0;
        int err = 0;
        sys_fileSeekToEOF(*unit_, size, err);
        if (err != 0) return IO_system_error(err, "IO_open");
        if (!flags_.direct) return true;
        const std::int64_t record_size = recl_ + (flags_.formatted ? 2 : 0);
        if (size % record_size != 0 && !IO_error(108)) return false;
        records_ = size / record_size;
        if (flags_.formatted) {
            std::int64_t position = 0;
            sys_fileSeek(*unit_, 0, position, err);
            if (err != 0) return IO_system_error(err, "IO_open");
        }
        return true;
    }

    bool store() {
        UnitList_insert(unit_);
        unit_->status = flags_;
        unit_->kind = kind_;
        unit_->driver = spec_.user_driver;
        unit_->share = share_;
        unit_->recl = recl_;
        unit_->highest_record = records_;
        unit_->current_record = 0;
        unit_->saved_length = 0;
        unit_->native_console = false;
        unit_->dialect = &native_dialect;
        unit_->closer = close_connection;
        unit_->file.position_state = position_ > 0 ? position_ - 1 : 0;
        describe_to_gnu(*unit_);
        return true;
    }

    State& state_;
    IO_type& io_;
    SpecBlock& spec_;
    Unit* unit_ = nullptr;
    bool is_new_ = false;      // not in the list
    bool reconnects_ = false;  // the unit has a connection that is still open
    IOStatus flags_;
    UnitKind kind_ = UnitKind::text;
    bool is_file_ = false;
    bool append_ = false;
    bool same_file_ = false;
    bool has_file_ = false;
    std::string name_;
    std::int64_t recl_ = 0;
    std::int64_t records_ = 0;
    std::int32_t share_ = 0;
    std::int32_t access_ = 0, blank_ = 0, form_ = 0, status_ = 0, given_status_ = 0;
    std::int32_t filetype_ = 0, share_word_ = 0, position_ = 0, action_ = 0, delim_ = 0, pad_ = 0;
};

}  // namespace

bool IO_open() {
    Opening opening;
    if (opening.run()) return true;
    opening.give_up();
    return false;
}

}  // namespace tarn::fio::native
