// The records of running statements and how they follow each other: nesting, the record that
// control statements borrow, and the buffers. The records themselves are told in io_type.h.
#pragma once

#include "fio/native/io_type.h"

namespace tarn::fio::native {

// Room for statements that user code called from inside a statement (a device driver) runs on its
// own account: they find an idle record and leave the interrupted statement untouched.
class CallOut {
  public:
    CallOut();
    ~CallOut();
    CallOut(const CallOut&) = delete;
    CallOut& operator=(const CallOut&) = delete;

  private:
    IO_type* temp_io_;
    IO_type* saved_io_;
    IO_type* current_io_;
    bool in_io_;
    bool use_temp_io_;
};

void IO_reset(IO_type& io);
// Releases the unit that a statement holds.
void let_unit_go(IO_type& io);

// Makes IO_error ignore a message (1 to 452) from now on.
void inhibit_message(std::int32_t message);

// The unit of internal files and of statements without a unit; it reaches nothing.
Unit* nowhere_unit();

// __SetMaximumIOBufferSize: for records made from now on.
void set_maximum_buffer_size(std::int64_t size);

}  // namespace tarn::fio::native
