// How the library comes up, and how compiled images come up on it.
#pragma once

#include <cstdint>

namespace tarn::frame {

void initialise_library();       // __initialise_cpplib
void set_image_type(int type);   // __init_WindowsType
void mark_streams_for_window();  // the three standard streams go to the text window
void run_preamble(void (*const* first)(), void (*const* last)());  // both ends included

}  // namespace tarn::frame
