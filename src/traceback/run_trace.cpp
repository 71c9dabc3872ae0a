#include "traceback/run_trace.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace tarn::traceback {
namespace {

constinit RunTrace the_trace;

}  // namespace

RunTrace& run_trace() {
    return the_trace;
}

void RunTrace::put(int index, char* text) {
    std::free(entries_[index]);
    entries_[index] = text;
}

void RunTrace::create(int size) {
    for (int i = 0; i < most; ++i) put(i, nullptr);
    used_ = 0;
    begun_ = true;
    size_ = std::clamp(size, 0, most);
}

void RunTrace::reached(int line, std::string_view routine, std::string_view file) {
    std::string text(routine);
    text.append(", line ").append(std::to_string(line)).append(", file ").append(file) += '\n';
    for (int i = 0; i < size_; ++i) {
        if (entries_[i] == nullptr ||
            std::strncmp(entries_[i], routine.data(), routine.size()) != 0)
            continue;
        put(i, strdup(text.c_str()));
        for (int above = i + 1; above < size_; ++above) put(above, nullptr);
        used_ = i + 1;
        if (used_ == size_) used_ = 0;
        return;
    }
    put(used_++, strdup(text.c_str()));
    if (used_ == size_) used_ = 0;
}

void RunTrace::write_to(std::string_view file) {
    if (file.empty() || size_ < 1) return;
    if (exports_ == 0) {
        std::free(file_);
        file_ = strndup(file.data(), file.size());
    }
    std::FILE* out = file_ != nullptr ? std::fopen(file_, exports_ == 0 ? "w" : "a") : nullptr;
    if (out == nullptr) return;
    ++exports_;
    const std::string heading = "Call stack " + std::to_string(exports_);
    const std::string rule(heading.size(), '=');
    std::fprintf(out, "%s\n%s\n%s\n", rule.c_str(), heading.c_str(), rule.c_str());
    for (int i = used_; i < size_ && entries_[i] != nullptr; ++i) std::fputs(entries_[i], out);
    for (int i = 0; i < used_; ++i) std::fputs(entries_[i], out);
    std::fclose(out);
}

}  // namespace tarn::traceback
