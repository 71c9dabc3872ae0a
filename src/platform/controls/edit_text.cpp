#include "platform/controls/edit_text.h"

#include <algorithm>

namespace tarn::platform {

void GapText::assign(std::string_view text) {
    bytes_.assign(text.begin(), text.end());
    gap_ = bytes_.size();
    gap_size_ = 0;
}

void GapText::move_gap(std::size_t at) {
    char* const base = bytes_.data();
    if (at < gap_) {
        std::memmove(base + at + gap_size_, base + at, gap_ - at);
    } else if (at > gap_) {
        std::memmove(base + gap_, base + gap_ + gap_size_, at - gap_);
    }
    gap_ = at;
}

void GapText::ensure_gap(std::size_t bytes) {
    if (gap_size_ >= bytes) return;
    const std::size_t tail = bytes_.size() - gap_ - gap_size_;
    const std::size_t wanted = bytes + std::max<std::size_t>(64, size() / 8);
    bytes_.resize(bytes_.size() + wanted - gap_size_);
    char* const base = bytes_.data();
    std::memmove(base + gap_ + wanted, base + gap_ + gap_size_, tail);
    gap_size_ = wanted;
}

void GapText::replace(std::size_t at, std::size_t removed, std::string_view with) {
    move_gap(at);
    gap_size_ += removed;
    if (with.empty()) return;
    ensure_gap(with.size());
    std::memcpy(bytes_.data() + gap_, with.data(), with.size());
    gap_ += with.size();
    gap_size_ -= with.size();
}

void GapText::append_to(std::string& out, std::size_t from, std::size_t to) const {
    to = std::min(to, size());
    if (from >= to) return;
    const char* const base = bytes_.data();
    const std::size_t split = std::clamp(gap_, from, to);
    out.append(base + from, split - from);
    out.append(base + split + gap_size_, to - split);
}

std::string GapText::part(std::size_t from, std::size_t to) const {
    std::string out;
    append_to(out, from, to);
    return out;
}

std::size_t GapText::find(char byte, std::size_t from) const {
    const char* const base = bytes_.data();
    if (from < gap_) {
        if (const void* hit = std::memchr(base + from, byte, gap_ - from)) {
            return static_cast<std::size_t>(static_cast<const char*>(hit) - base);
        }
        from = gap_;
    }
    if (from >= size()) return size();
    if (const void* hit = std::memchr(base + from + gap_size_, byte, size() - from)) {
        return static_cast<std::size_t>(static_cast<const char*>(hit) - base) - gap_size_;
    }
    return size();
}

void LineStarts::reset(std::vector<std::size_t> starts, std::size_t text_size) {
    slots_ = std::move(starts);
    slots_.insert(slots_.begin(), 0);
    gap_ = slots_.size();
    gap_size_ = 0;
    text_size_ = text_size;
}

std::size_t LineStarts::line_of(std::size_t offset) const {
    std::size_t low = 0;
    std::size_t high = count();
    while (high - low > 1) {
        const std::size_t middle = low + (high - low) / 2;
        if (start(middle) <= offset) {
            low = middle;
        } else {
            high = middle;
        }
    }
    return low;
}

void LineStarts::move_gap(std::size_t line) {
    while (gap_ > line) {
        --gap_;
        slots_[gap_ + gap_size_] = text_size_ - slots_[gap_];
    }
    while (gap_ < line) {
        slots_[gap_] = text_size_ - slots_[gap_ + gap_size_];
        ++gap_;
    }
}

void LineStarts::replace(std::size_t first, std::size_t last, std::span<const std::size_t> fresh,
                         std::size_t text_size) {
    move_gap(last);
    gap_size_ += last - first;
    gap_ = first;
    text_size_ = text_size;
    if (gap_size_ < fresh.size()) {
        const std::size_t more = fresh.size() - gap_size_ + count() / 8 + 16;
        slots_.insert(slots_.begin() + static_cast<std::ptrdiff_t>(gap_), more, 0);
        gap_size_ += more;
    }
    std::copy(fresh.begin(), fresh.end(), slots_.begin() + static_cast<std::ptrdiff_t>(gap_));
    gap_ += fresh.size();
    gap_size_ -= fresh.size();
}

}  // namespace tarn::platform
