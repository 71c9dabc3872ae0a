// Keywords of specifiers, told apart by their beginnings.
#include <cstring>

#include "fio/native/connect.h"

namespace tarn::fio::native {
namespace {

constexpr std::size_t longest_value = 19;

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool begins(std::string_view word, std::string_view value) {
    if (value.size() > word.size()) return false;
    for (std::size_t i = 0; i < value.size(); ++i)
        if (upper(value[i]) != word[i]) return false;
    return true;
}

}  // namespace

std::int32_t IO_find_list_entry(std::string_view value, std::string_view word_list) {
    while (!value.empty() && value.back() == ' ') value.remove_suffix(1);
    if (value.size() > longest_value) return -1;
    for (std::int32_t place = 1; !word_list.empty(); ++place) {
        const std::size_t end = word_list.find(' ');
        if (end == std::string_view::npos) break;
        if (begins(word_list.substr(0, end), value)) return place;
        word_list.remove_prefix(end + 1);
    }
    return -1;
}

std::int32_t match(const TextWord& word, std::string_view word_list) {
    return word.given ? IO_find_list_entry(word.view(), word_list) : 0;
}

}  // namespace tarn::fio::native
