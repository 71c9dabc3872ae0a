#include "fio/gnu/internal_file.h"

namespace tarn::fio {

void copy_internal_file(const InternalFile& from, InternalFile& to) {
    to.base = from.base;
    to.length = from.length;
    to.count = from.count;
    to.char_kind = from.char_kind;
    to.rank = from.rank;
    for (int i = 0; i < from.rank; ++i) to.dimension[i] = from.dimension[i];
}

void first_internal_record(InternalFile& file) {
    file.next = 1;
    file.record = file.count > 0 ? file.base : nullptr;
    for (int i = 0; i < file.rank; ++i) file.dimension[i].index = 0;
}

void next_internal_record(InternalFile& file) {
    if (file.record == nullptr) return;
    if (file.next++ >= file.count) {
        file.record = nullptr;
        return;
    }
    for (int i = 0; i < file.rank; ++i) {
        InternalFile::Dimension& dimension = file.dimension[i];
        file.record += dimension.stride;
        if (++dimension.index < dimension.extent) return;
        file.record -= dimension.stride * dimension.extent;
        dimension.index = 0;
    }
}

}  // namespace tarn::fio
