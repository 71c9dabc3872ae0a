// Fields for a READ.
#pragma once

#include <string>

#include "draw_items.h"

std::string integer_field();
std::string real_field(bool comma);
// A descriptor for an item to read and the field that it meets.
std::string read_edit(const Item& item, std::string& field, bool comma);
// Now and then a record ends too early.
void cut_short(std::string& record);
