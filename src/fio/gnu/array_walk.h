// Elements of an array or section, one after another in array order.
#pragma once

#include <cstdint>

namespace tarn::fio {

struct ArrayWalk {
    struct Dimension {
        std::int64_t extent;
        std::int64_t stride;  // in bytes
        std::int64_t index;
    };
    char* element = nullptr;
    int rank = 0;
    Dimension dimension[15];  // the first `rank` of them are filled

    void add(std::int64_t extent, std::int64_t stride) { dimension[rank++] = {extent, stride, 0}; }
    std::int64_t count() const {
        std::int64_t elements = 1;
        for (int i = 0; i < rank; ++i) elements *= dimension[i].extent;
        return elements;
    }
    // False: the element at hand was the last one.
    bool next() {
        for (int i = 0; i < rank; ++i) {
            Dimension& at = dimension[i];
            element += at.stride;
            if (++at.index < at.extent) return true;
            element -= at.stride * at.extent;
            at.index = 0;
        }
        return false;
    }
};

}  // namespace tarn::fio
