// NAMELIST groups: their variables, and text to be read into them.
#pragma once

#include <string>

// The words of a case behind its letter.
std::string namelist_write_words();
std::string namelist_read_words();
