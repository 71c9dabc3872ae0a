#include "intrinsics/system/file_mode.h"

#include <sys/stat.h>

namespace tarn::intrinsics {
namespace {

constexpr mode_t all_bits = 07777;
constexpr mode_t for_all = 0777;

// Bits for everybody, 0111 times a digit.
constexpr mode_t everybody(mode_t digit) {
    return digit * 0111;
}

// One text from left to right: clauses with commas between them, each of people and then changes.
class Reader {
  public:
    Reader(std::string_view text, const ModeBefore& before)
        : text_(text), before_(before), mode_(before.mode & all_bits) {}

    std::optional<mode_t> run() {
        do {
            if (!clause()) return std::nullopt;
        } while (take(',') && at_ < text_.size());
        if (at_ < text_.size()) return std::nullopt;
        return mode_;
    }

  private:
    char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    bool take(char wanted) {
        if (peek() != wanted) return false;
        ++at_;
        return true;
    }
    bool at_operator() const { return peek() == '+' || peek() == '-' || peek() == '='; }
    bool is_folder() const { return S_ISDIR(before_.mode); }

    bool clause() {
        people();
        if (!at_operator()) return false;
        while (at_operator()) {
            if (!change()) return false;
        }
        return true;
    }

    void people() {
        who_ = 0;
        for (;; ++at_) {
            switch (peek()) {
                case 'u':
                    who_ |= S_ISUID | S_IRWXU;
                    break;
                case 'g':
                    who_ |= S_ISGID | S_IRWXG;
                    break;
                case 'o':
                    who_ |= S_IRWXO;
                    break;
                case 'a':
                    who_ |= S_ISUID | S_ISGID | for_all;
                    break;
                default:
                    return;
            }
        }
    }

    // What stands behind an operator: letters of permissions, or one that copies another's.
    mode_t permissions() {
        if (take('u')) return everybody(mode_ >> 6 & 7);
        if (take('g')) return everybody(mode_ >> 3 & 7);
        if (take('o')) return everybody(mode_ & 7);
        mode_t bits = 0;
        for (;; ++at_) {
            switch (peek()) {
                case 'r':
                    bits |= everybody(4);
                    break;
                case 'w':
                    bits |= everybody(2);
                    break;
                case 'x':
                    bits |= everybody(1);
                    break;
                case 'X':
                    if (is_folder() || (before_.mode & everybody(1)) != 0) bits |= everybody(1);
                    break;
                case 's':
                    bits |= S_ISUID | S_ISGID;
                    break;
                case 't':
                    // Only a folder has a use for it.
                    if (is_folder()) bits |= S_ISVTX;
                    break;
                default:
                    return bits;
            }
        }
    }

    bool change() {
        const char operation = text_[at_++];
        mode_t bits = permissions();
        if (at_ < text_.size() && peek() != ',' && !at_operator()) return false;
        // Nobody named: everybody, as far as the process's mask lets them.
        const mode_t all = S_ISUID | S_ISGID | for_all;
        const mode_t who = who_ != 0 ? who_ : all & ~before_.mask;
        bits &= who | S_ISVTX;
        if (operation == '+') {
            mode_ |= bits;
        } else if (operation == '-') {
            mode_ &= ~bits;
        } else {
            mode_ = (mode_ & ~(who_ != 0 ? who_ : all)) | bits;
        }
        return true;
    }

    std::string_view text_;
    ModeBefore before_;
    mode_t mode_;
    mode_t who_ = 0;
    std::size_t at_ = 0;
};

}  // namespace

bool is_octal_mode(std::string_view text) {
    return !text.empty() && text.find_first_not_of("01234567") == text.npos;
}

std::optional<mode_t> changed_mode(std::string_view text, const ModeBefore& before) {
    if (!is_octal_mode(text)) return Reader(text, before).run();
    mode_t mode = 0;
    for (const char digit : text) mode = (mode << 3 | static_cast<mode_t>(digit - '0')) & all_bits;
    return mode;
}

}  // namespace tarn::intrinsics
