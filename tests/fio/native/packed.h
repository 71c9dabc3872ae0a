// Builds and runs packed statements the way compiled code does: constant descriptors, addresses of
// values, lengths behind the pairs, and landing records for the labels.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <setjmp.h>
#include <sstream>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "fio/native/io_type.h"
#include "frame/link_name.h"

namespace tarn::fio::native::test {

using Opening = void (*)(const std::int16_t* count, ...);

extern "C" {
void RSF1_hh(const std::int16_t*, ...) LINK_NAME("RSF1##");
void WSF1_hh(const std::int16_t*, ...) LINK_NAME("WSF1##");
void RDF1_hh(const std::int16_t*, ...) LINK_NAME("RDF1##");
void WDF1_hh(const std::int16_t*, ...) LINK_NAME("WDF1##");
void WSU1_hh(const std::int16_t*, ...) LINK_NAME("WSU1##");
void OPEN_hh(const std::int16_t*, ...) LINK_NAME("OPEN##");
void CLOS_hh(const std::int16_t*, ...) LINK_NAME("CLOS##");
void FLUSH_hh(const std::int16_t*, ...) LINK_NAME("FLUSH##");
void INQR_hh(const std::int16_t*, ...) LINK_NAME("INQR##");
void ENDF_hh(const std::int16_t*, ...) LINK_NAME("ENDF##");
void RWIN_hh(const std::int16_t*, ...) LINK_NAME("RWIN##");
void BACK_hh(const std::int16_t*, ...) LINK_NAME("BACK##");
void WSF2_h() LINK_NAME("WSF2#");
void I4_h_WSF(void*, const std::int32_t*) LINK_NAME("I4#WSF");
void I4_h_RSF(void*, const std::int32_t*) LINK_NAME("I4#RSF");
void CH_h_WSF(const char*, const std::int32_t*, std::ptrdiff_t) LINK_NAME("CH#WSF");
void R4_h_WSF(const void*, const std::int32_t*) LINK_NAME("R4#WSF");
void CH_h_RSF(char*, const std::int32_t*, std::ptrdiff_t) LINK_NAME("CH#RSF");
void ENABLE_REENTRANT_IO_h(const std::int32_t*) LINK_NAME("ENABLE_REENTRANT_IO#");
std::int32_t GET_LAST_IO_ERROR_h() LINK_NAME("GET_LAST_IO_ERROR#");
void __inhibit_iostat(std::int32_t);
void __fsu();
}

// The specifiers of one statement.
class Packed {
  public:
    Packed& add(IOCode code, TypeCode type, const void* value, std::ptrdiff_t length = -1) {
        descriptors_.push_back(
            static_cast<std::uint16_t>(static_cast<int>(code) | static_cast<int>(type) << 8));
        pairs_.push_back(reinterpret_cast<std::intptr_t>(&descriptors_.back()));
        pairs_.push_back(reinterpret_cast<std::intptr_t>(value));
        if (type == TypeCode::character) lengths_.push_back(length);
        return *this;
    }
    Packed& unit(std::int32_t number) { return integer(IOCode::unit, number); }
    Packed& integer(IOCode code, std::int32_t value) {
        values_.push_back(value);
        return add(code, TypeCode::integer4, &values_.back());
    }
    Packed& text(IOCode code, std::string_view text) {
        texts_.emplace_back(text);
        return add(code, TypeCode::character, texts_.back().data(),
                   static_cast<std::ptrdiff_t>(text.size()));
    }
    Packed& fill(IOCode code, std::string& result) {
        return add(code, TypeCode::character, result.data(),
                   static_cast<std::ptrdiff_t>(result.size()));
    }
    Packed& result(IOCode code, std::int32_t& result) {
        return add(code, TypeCode::integer4, &result);
    }
    // FMT= as text.
    Packed& format(std::string_view text) { return this->text(IOCode::format_text, text); }

    // Calls the opening entry: the words are those of a compiled call, with some more behind them.
    void call(Opening entry) {
        // A failing statement jumps over this frame: it must own nothing.
        std::intptr_t w[64] = {};
        if (pairs_.size() + lengths_.size() > std::size(w)) std::abort();
        std::copy(lengths_.begin(), lengths_.end(), std::copy(pairs_.begin(), pairs_.end(), w));
        const auto count = static_cast<std::int16_t>(pairs_.size());
        entry(&count, w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7], w[8], w[9], w[10], w[11],
              w[12], w[13], w[14], w[15], w[16], w[17], w[18], w[19], w[20], w[21], w[22], w[23],
              w[24], w[25], w[26], w[27], w[28], w[29], w[30], w[31], w[32], w[33], w[34], w[35],
              w[36], w[37], w[38], w[39], w[40], w[41], w[42], w[43], w[44], w[45], w[46], w[47],
              w[48], w[49], w[50], w[51], w[52], w[53], w[54], w[55], w[56], w[57], w[58], w[59],
              w[60], w[61], w[62], w[63]);
    }

    // Runs a statement without items under IOSTAT= and all labels; what it left in IOSTAT=.
    std::int32_t run(Opening entry) {
        std::int32_t iostat = -99;
        jmp_buf landing;
        result(IOCode::iostat, iostat);
        add(IOCode::err_of_iostat, TypeCode::none, &landing);
        if (setjmp(landing) == 0) call(entry);
        return iostat;
    }

  private:
    std::deque<std::uint16_t> descriptors_;
    std::deque<std::int32_t> values_;
    std::deque<std::string> texts_;
    std::vector<std::intptr_t> pairs_;
    std::vector<std::intptr_t> lengths_;
};

// A folder of the test's own, entered for its duration.
class Folder {
  public:
    Folder() {
        char name[] = "/tmp/tarn_native_XXXXXX";
        if (mkdtemp(name) == nullptr || getcwd(before_, sizeof before_) == nullptr) std::abort();
        path_ = name;
        if (chdir(name) != 0) std::abort();
    }
    ~Folder() {
        if (chdir(before_) != 0) std::abort();
        (void)!std::system(("rm -rf " + path_).c_str());
    }
    const std::string& path() const { return path_; }

  private:
    std::string path_;
    char before_[4096];
};

inline void put_file(const std::string& name, std::string_view bytes) {
    std::ofstream(name, std::ios::binary) << bytes;
}

inline std::string get_file(const std::string& name) {
    std::ostringstream bytes;
    bytes << std::ifstream(name, std::ios::binary).rdbuf();
    return bytes.str();
}

inline bool exists(const std::string& name) {
    return access(name.c_str(), F_OK) == 0;
}

inline std::int32_t close_unit(std::int32_t unit) {
    return Packed().unit(unit).run(CLOS_hh);
}

}  // namespace tarn::fio::native::test
