// The random numbers of a run, and choices made by them.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

inline std::uint64_t random_state;

inline std::uint64_t draw64() {
    std::uint64_t z = random_state += 0x9e3779b97f4a7c15u;
    z = (z ^ z >> 30) * 0xbf58476d1ce4e5b9u;
    z = (z ^ z >> 27) * 0x94d049bb133111ebu;
    return z ^ z >> 31;
}
inline int below(int n) {
    return static_cast<int>(draw64() % static_cast<unsigned>(n));
}
inline int between(int low, int high) {
    return low + below(high - low + 1);
}
inline bool chance(int percent) {
    return below(100) < percent;
}
template <class T>
T one_of(std::initializer_list<T> list) {
    return list.begin()[below(static_cast<int>(list.size()))];
}
inline const char* pick(std::initializer_list<const char*> list) {
    return one_of(list);
}
inline std::string digits(int n) {
    std::string text;
    while (n-- > 0) text += static_cast<char>('0' + below(10));
    return text;
}
inline std::string num(long long n) {
    return std::to_string(n);
}
