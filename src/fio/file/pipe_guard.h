// Writing into a pipe whose reader has gone.
//
// The system answers with a signal that ends the program before IOSTAT= could hear of it. Inside a
// guard the signal is caught and the write fails with EPIPE instead; a write of the program's own
// (C code beside Fortran) still dies of it as ever. A handler, unlike an ignored signal, isn't
// inherited by the programs that this one starts.
#pragma once

namespace tarn::fio {

class PipeGuard {
  public:
    explicit PipeGuard(bool wanted);
    ~PipeGuard();
    PipeGuard(const PipeGuard&) = delete;
    PipeGuard& operator=(const PipeGuard&) = delete;

  private:
    bool wanted_;
};

// Ends the process as an unguarded write into the pipe would have.
[[noreturn]] void die_of_closed_pipe();

}  // namespace tarn::fio
