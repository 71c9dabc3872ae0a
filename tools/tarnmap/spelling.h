// Names of routines as their source has them. A Fortran compiler keeps them in lower case, and
// hides a module in a symbol; where the source can be read, it tells how the programmer wrote them.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

namespace tarn::map {

class Spelling {
  public:
    // A name as it stands in a line of a file, or near behind it; unchanged where it doesn't.
    std::string in_line(const std::string& file, int line, const std::string& name);
    // A module's name, as the file that holds it declares it.
    std::string of_module(const std::string& file, const std::string& name);
    // The name in a PROGRAM statement, which begins at that line; empty where it is none.
    std::string of_program(const std::string& file, int line);
    // The line of the CONTAINS that stands before an internal procedure; 0 where none is found.
    int contains_before(const std::string& file, int line);

  private:
    const std::vector<std::string>& lines_of(const std::string& file);

    std::unordered_map<std::string, std::vector<std::string>> files_;
};

// The module in a symbol that gfortran made of a module procedure's name; empty where there is
// none.
std::string module_in_symbol(const std::string& symbol);

// Any symbol as the source would have it, as far as it tells that.
std::string readable(const std::string& symbol);

// A C++ symbol as the source would write it; other names unchanged.
std::string demangled(const std::string& symbol);

}  // namespace tarn::map
