// Items of a data list: their types, and values drawn near the places where editing goes wrong.
#pragma once

#include <string>

enum Class { integers, logicals, reals, complexes, characters, wide };

struct Item {
    std::string word;  // the item in the form of a case
    Class type;
    int bytes;  // of one part; characters: the length
};

// An item with a value, and one as a READ finds it before it runs.
Item draw_item(Class type);
Item blank_item(Class type);
Class draw_class();
std::string draw_text(int length);

// A word of a case that stands for a text.
std::string quoted(const std::string& text);
