#include "fio/native/format_stream.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace tarn::fio::native {
namespace {

enum class Shape : std::uint8_t {
    none,    // no such opcode
    bare,    // the first word alone
    number,  // one operand
    back,    // one operand: words back to a group
    group,   // repeat, level
    width,   // repeat, w
    digits,  // repeat, w and, in a word more, m
    real,    // repeat, w, d
    power,   // repeat, w, d and, in a word more, e
    text,    // count, characters
};

constexpr Shape shapes[op_count] = {
    Shape::none,    // 0
    Shape::width,   // A
    Shape::bare,    // BN
    Shape::bare,    // BZ
    Shape::real,    // D
    Shape::power,   // E
    Shape::real,    // F
    Shape::power,   // G
    Shape::text,    // H
    Shape::digits,  // I
    Shape::number,  // slash
    Shape::bare,    // colon
    Shape::width,   // L
    Shape::text,    // quoted
    Shape::digits,  // B
    Shape::digits,  // O
    Shape::number,  // P
    Shape::bare,    // SS
    Shape::bare,    // SP
    Shape::bare,    // S
    Shape::number,  // T
    Shape::number,  // TL
    Shape::number,  // TR
    Shape::back,    // end
    Shape::number,  // X
    Shape::group,   // open
    Shape::back,    // close
    Shape::text,    // business
    Shape::bare,    // dollar
    Shape::digits,  // Z
    Shape::width,   // words
    Shape::width,   // words
    Shape::width,   // words
    Shape::power,   // EN
    Shape::power,   // ES
};

constexpr int max_words = 511;  // of one instruction: the length field is signed
constexpr std::size_t max_text = (max_words - 2) * 2;
constexpr std::int32_t max_word = 32767;
// A stream without a known end is given up after so many instructions.
constexpr std::size_t max_steps = std::size_t{1} << 20;

// The parser goes no deeper.
constexpr std::int32_t max_levels_told = 64;

constexpr std::int32_t not_a_format = 83;
constexpr std::int32_t bad_descriptor = 74;
constexpr std::int32_t bad_nesting = 109;

class Encoder {
  public:
    Encoder(const Format& format, std::vector<std::uint16_t>& code)
        : format_(format), code_(code) {}

    bool run() {
        places_.reserve(format_.steps.size());
        for (const FormatStep& step : format_.steps) {
            places_.push_back(code_.size());
            if (!put(step)) return false;
        }
        return true;
    }

  private:
    void first(FormatOp op, std::size_t words) {
        code_.push_back(static_cast<std::uint16_t>(words << 6 | static_cast<std::size_t>(op)));
    }
    bool word(std::int64_t value) {
        code_.push_back(static_cast<std::uint16_t>(value));
        return value >= -max_word - 1 && value <= max_word;
    }
    bool put(const FormatStep& step) {
        switch (shapes[step.op]) {
            case Shape::none:
                return false;
            case Shape::bare:
                first(step.op, 1);
                return true;
            case Shape::number:
                first(step.op, 2);
                return word(step.repeat);
            case Shape::back: {
                const std::size_t back = code_.size() - places_[step.link];
                first(step.op, 2);
                return word(static_cast<std::int64_t>(back));
            }
            case Shape::group:
                first(step.op, 3);
                return word(step.repeat) && word(step.level);
            case Shape::width:
                first(step.op, 3);
                return word(step.repeat) && word(step.w);
            case Shape::digits:
                first(step.op, step.d == absent ? 3 : 4);
                return word(step.repeat) && word(step.w) && (step.d == absent || word(step.d));
            case Shape::real:
            case Shape::power:
                first(step.op, step.e == absent ? 4 : 5);
                return word(step.repeat) && word(step.w) && word(step.d) &&
                       (step.e == absent || word(step.e));
            case Shape::text:
                return put_text(step);
        }
        return false;
    }
    bool put_text(const FormatStep& step) {
        std::string_view text = format_.text_of(step);
        // A picture is one field: it can't be told in parts.
        if (step.op == op_business && text.size() > max_text) return false;
        do {
            const std::string_view part = text.substr(0, max_text);
            text.remove_prefix(part.size());
            first(step.op, 2 + (part.size() + 1) / 2);
            word(static_cast<std::int64_t>(part.size()));
            for (std::size_t i = 0; i < part.size(); i += 2) {
                const unsigned low = static_cast<unsigned char>(part[i]);
                const unsigned high =
                    i + 1 < part.size() ? static_cast<unsigned char>(part[i + 1]) : 0;
                code_.push_back(static_cast<std::uint16_t>(low | high << 8));
            }
        } while (!text.empty());
        return true;
    }

    const Format& format_;
    std::vector<std::uint16_t>& code_;
    std::vector<std::size_t> places_;  // of each step
};

class Decoder {
  public:
    Decoder(const std::uint16_t* code, const std::uint16_t* end, Format& format)
        : code_(reinterpret_cast<const unsigned char*>(code)),
          words_(end == nullptr ? std::numeric_limits<std::size_t>::max()
                                : static_cast<std::size_t>(end > code ? end - code : 0)),
          format_(format) {}

    std::int32_t run() {
        format_.clear();
        if (at_end() || word(0) != stream_start) return not_a_format;
        while (!at_end()) {
            if (format_.steps.size() >= max_steps) return not_a_format;
            if (const std::int32_t message = instruction()) return message;
            if (format_.steps.back().op == op_end) return 0;
        }
        format_.steps.push_back({});
        return 0;
    }

  private:
    bool at_end() const { return place_ >= words_; }
    // A stream may begin at an odd address: behind a jump of 5 bytes.
    unsigned word(std::size_t index) const {
        const unsigned char* const byte = code_ + (place_ + index) * 2;
        return byte[0] | static_cast<unsigned>(byte[1]) << 8;
    }
    std::int32_t operand(std::size_t index) const { return static_cast<std::int16_t>(word(index)); }

    std::int32_t instruction() {
        const unsigned first = word(0);
        const unsigned op = first & 63U;
        const std::size_t length = first >> 6;
        if (op >= op_count || shapes[op] == Shape::none) return bad_descriptor;
        if (length < 1 || length > max_words) return not_a_format;
        if (length > words_ - place_) return not_a_format;
        FormatStep step;
        step.op = static_cast<FormatOp>(op);
        step.place = static_cast<std::uint32_t>(place_);
        if (const std::int32_t message = operands(step, length)) return message;
        format_.steps.push_back(step);
        place_ += length;
        return 0;
    }

    std::int32_t operands(FormatStep& step, std::size_t length) {
        const Shape shape = shapes[step.op];
        switch (shape) {
            case Shape::none:
                return bad_descriptor;
            case Shape::bare:
                return length == 1 ? 0 : not_a_format;
            case Shape::number:
                if (length != 2) return not_a_format;
                step.repeat = operand(1);
                return 0;
            case Shape::back:
                return length == 2 ? back(step) : not_a_format;
            case Shape::group:
                return length == 3 ? group(step) : not_a_format;
            case Shape::width:
            case Shape::digits:
            case Shape::real:
            case Shape::power:
                return data(step, shape, length);
            case Shape::text:
                return literal(step, length);
        }
        return bad_descriptor;
    }

    std::int32_t data(FormatStep& step, Shape shape, std::size_t length) {
        const bool has_d = shape == Shape::real || shape == Shape::power;
        const std::size_t least = has_d ? 4 : 3;
        const bool may_have_more = shape == Shape::digits || shape == Shape::power;
        if (length != least && !(may_have_more && length == least + 1)) return not_a_format;
        step.repeat = operand(1);
        step.w = operand(2);
        if (length > 3) step.d = operand(3);
        if (length > 4) step.e = operand(4);
        const bool negative =
            step.w < 0 || (length > 3 && step.d < 0) || (length > 4 && step.e < 0);
        return negative ? not_a_format : 0;
    }

    std::int32_t literal(FormatStep& step, std::size_t length) {
        if (length < 2) return not_a_format;
        const std::int32_t count = operand(1);
        if (count < 0 || (static_cast<std::size_t>(count) + 1) / 2 > length - 2) {
            return not_a_format;
        }
        step.text = static_cast<std::uint32_t>(format_.text.size());
        step.length = static_cast<std::uint32_t>(count);
        for (std::int32_t i = 0; i < count; ++i) {
            const unsigned pair = word(2 + static_cast<std::size_t>(i) / 2);
            format_.text.push_back(static_cast<char>(i % 2 == 0 ? pair & 255U : pair >> 8));
        }
        return 0;
    }

    std::int32_t group(FormatStep& step) {
        step.repeat = operand(1);
        step.level = operand(2);
        if (depth_ == max_levels_told || step.level != depth_ + 1) return bad_nesting;
        open_[depth_++] = static_cast<std::uint32_t>(format_.steps.size());
        return 0;
    }

    // The step that an offset leads back to; the number of steps when it leads to none.
    std::size_t step_at(std::int32_t back) const {
        const auto& steps = format_.steps;
        if (back <= 0 || static_cast<std::size_t>(back) > place_) return steps.size();
        const std::size_t target = place_ - static_cast<std::size_t>(back);
        const auto found = std::lower_bound(
            steps.begin(), steps.end(), target,
            [](const FormatStep& step, std::size_t place) { return step.place < place; });
        if (found == steps.end() || found->place != target) return steps.size();
        return static_cast<std::size_t>(found - steps.begin());
    }

    // An inner group closes against the group that is open, and the format reverts to a group of
    // level 2 or to its start: with anything else the engine could go round for ever.
    std::int32_t back(FormatStep& step) {
        const std::size_t target = step_at(operand(1));
        if (target == format_.steps.size()) return not_a_format;
        step.link = static_cast<std::uint32_t>(target);
        if (step.op == op_close) {
            if (depth_ < 2 || open_[depth_ - 1] != target) return bad_nesting;
            step.level = depth_--;
            return 0;
        }
        if (depth_ != 1) return bad_nesting;
        const FormatStep& group = format_.steps[target];
        return group.op == op_open && group.level <= 2 ? 0 : not_a_format;
    }

    const unsigned char* code_;
    std::size_t words_;
    Format& format_;
    std::size_t place_ = 0;
    std::uint32_t open_[max_levels_told] = {};  // the groups that are open
    std::int32_t depth_ = 0;
};

}  // namespace

bool encode_format(const Format& format, std::vector<std::uint16_t>& code) {
    return Encoder(format, code).run();
}

std::int32_t decode_format(const std::uint16_t* code, const std::uint16_t* end, Format& format) {
    if (code == nullptr) return not_a_format;
    return Decoder(code, end, format).run();
}

}  // namespace tarn::fio::native
