// The one spelling of a link name that C++ can't write (`STOP#`, `WSF1##`, `XSIND$`).
//
// The macro stands on the declaration of an entry. For g++ the assembler wants the name in quotes
// of its own, for clang++ it doesn't. In C++ such an entry is called with `_h` for `#`, `_hh` for
// `##` and `_d` for `$`.
#pragma once

#ifdef __clang__
#define LINK_NAME(name) __asm__(name)
#else
#define LINK_NAME(name) __asm__("\"" name "\"")
#endif

// Everything else of the library is hidden: exactly the entries are exported.
#define TARN_EXPORT __attribute__((visibility("default")))

// A second link name of the same routine, in the same object file:
//     extern "C" TARN_EXPORT void CINIT_(int) TARN_ALIAS(cinit_);
#define TARN_ALIAS(target) __attribute__((alias(#target)))
