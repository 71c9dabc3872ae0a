#include "fio/gnu/real_words.h"

#include <string_view>

#include "fio/gnu/item.h"
#include "fio/gnu/list_scan.h"

namespace tarn::fio {
namespace {

bool may_stand_inside(char c, NanText inside) {
    if (inside == NanText::no_separators) return c != ')' && !is_list_separator(c);
    return is_word_character(c) || (c == ' ' && inside == NanText::words_and_blanks);
}

bool begins_with(const char* at, const char* end, std::string_view word) {
    if (static_cast<std::size_t>(end - at) < word.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (lower_case(at[i]) != word[i]) return false;
    }
    return true;
}

template <class Real>
void store(Real value, bool negative, void* item, std::size_t size) {
    if (negative) value = -value;
    std::memcpy(item, &value, size);
}

template <class Real>
void store_word(RealWord word, bool negative, void* item, std::size_t size) {
    if (word == RealWord::nan) {
        store(static_cast<Real>(__builtin_nanf("")), negative, item, size);
    } else {
        store(static_cast<Real>(__builtin_inff()), negative, item, size);
    }
}

}  // namespace

const char* scan_real_word(const char* at, const char* end, NanText inside, RealWord& word) {
    if (begins_with(at, end, "inf")) {
        word = RealWord::infinity;
        return at + (begins_with(at, end, "infinity") ? 8 : 3);
    }
    if (!begins_with(at, end, "nan")) return nullptr;
    word = RealWord::nan;
    at += 3;
    if (at == end || *at != '(') return at;
    do {
        ++at;
    } while (at < end && may_stand_inside(*at, inside));
    return at < end && *at == ')' ? at + 1 : nullptr;
}

void store_real_word(RealWord word, bool negative, void* item, int kind) {
    switch (kind) {
        case 4:
            store_word<float>(word, negative, item, 4);
            break;
        case 8:
            store_word<double>(word, negative, item, 8);
            break;
        case 10:
            store_word<long double>(word, negative, item, 10);
            break;
        // gfortran's REAL(16) keeps no sign of a NaN.
        default:
            store_word<Quad>(word, negative && word == RealWord::infinity, item, 16);
            break;
    }
}

}  // namespace tarn::fio
