/* The link name of an entry whose name C can't write (`STOP#`, `WSF1##`): it stands behind the
 * declaration. In C and C++ such an entry is called with `_h` for `#`, `_hh` for `##` and `_d`
 * for `$`. */
#ifndef TARN_LINK_NAME_H
#define TARN_LINK_NAME_H

#ifdef __clang__
#define TARN_LINK_NAME(name) __asm__(name)
#else
#define TARN_LINK_NAME(name) __asm__("\"" name "\"")
#endif

#endif
