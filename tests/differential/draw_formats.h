// Formats that fit a list of items, or just don't.
#pragma once

#include <string>
#include <vector>

#include "draw_items.h"

std::string draw_format(const std::vector<Item>& items, bool structured);
// One data edit descriptor for an item; now and then for an item of another type.
std::string draw_descriptor(const Item& item);
// One slip in a format: a letter less, one more, another.
std::string spoiled(std::string text);
std::string mixed_case(std::string text);
// The modes of a statement, one letter each.
std::string draw_modes();
std::string join(const std::vector<Item>& items);
