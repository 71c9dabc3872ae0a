// The run trace: the routines that compiled code says it has reached, kept for a file.
#pragma once

#include <string_view>

namespace tarn::traceback {

class RunTrace {
  public:
    static constexpr int most = 80;

    // -1 until `create`.
    int size() const { return size_; }
    // True for the first event of a program that made no call stack: it only begins the trace.
    bool begins() {
        const bool first = !begun_;
        begun_ = true;
        return first;
    }
    void create(int size);
    // A routine that is there already has been reached again: what it called is gone.
    void reached(int line, std::string_view routine, std::string_view file);
    void write_to(std::string_view file);

  private:
    void put(int index, char* text);

    bool begun_ = false;
    int size_ = -1;
    int used_ = 0;
    int exports_ = 0;
    char* entries_[most] = {};
    char* file_ = nullptr;
};

RunTrace& run_trace();

}  // namespace tarn::traceback
