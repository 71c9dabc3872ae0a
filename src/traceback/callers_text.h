// The callers as lines of a report on the console.
#pragma once

#include "traceback/callers.h"
#include "traceback/text_buffer.h"

namespace tarn::traceback {

//   in Shapes::Area, shapes.f90:12
//   called by Main_Thing, main.f90:30
void add_callers(TextBuffer& text, const Callers& callers);
// "Shapes::Area, shapes.f90:12", or what is known of it.
void add_location(TextBuffer& text, const Location& location);

// The routine alone, as its source spells it.
void add_routine(TextBuffer& text, const Location& location);

}  // namespace tarn::traceback
