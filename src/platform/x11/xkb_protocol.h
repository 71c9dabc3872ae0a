// The X keyboard extension. Its header names a member with a word that C++ keeps for itself.
#pragma once

#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
