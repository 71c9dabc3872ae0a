// gfortran's intrinsics that run other programs, wait, and deal with signals.
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

#include "failure/failure.h"
#include "frame/link_name.h"
#include "frame/state.h"
#include "intrinsics/system/processes.h"
#include "pairing/gcc/system_arguments.h"

namespace tarn::gcc {
namespace {

constexpr int run_time_error = 381;

// CMDSTAT= of EXECUTE_COMMAND_LINE.
enum CommandStatus : std::int8_t { done = 0, not_started = 1, invalid_command = 3 };

std::string_view sentence(CommandStatus status) {
    return status == invalid_command ? "Invalid command line"
                                     : "Termination status of the command-language "
                                       "interpreter cannot be obtained";
}

// The shell says with these that it couldn't run what it was given.
bool is_invalid_command(int exit_code) {
    return exit_code == 126 || exit_code == 127;
}

template <class Integer>
CommandStatus run_and_wait(std::string_view command, Integer* exit_status) {
    const int status = intrinsics::run_by_shell(command);
    if (status == -1) return not_started;
    // One that a signal ended gives what wait() says of it.
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : status;
    store(exit_status, code);
    return WIFEXITED(status) && is_invalid_command(code) ? invalid_command : done;
}

template <class Integer>
void execute_command_line(const char* text, const std::int32_t* wait, Integer* exit_status,
                          Integer* command_status, char* message, std::size_t length,
                          std::size_t message_length) {
    const std::string command = c_text(text, length);
    CommandStatus status = done;
    if (wait != nullptr && *wait == 0) {
        if (!intrinsics::start_by_shell(command)) status = not_started;
    } else {
        status = run_and_wait(command, exit_status);
    }
    store(command_status, status);
    if (status == done) return;
    store_text(sentence(status), message, message_length);
    if (command_status != nullptr) return;
    std::string said = "EXECUTE_COMMAND_LINE: ";
    failure::fail_sentence(run_time_error, said.append(sentence(status)), {});
}

using Handler = void (*)(int);

// The handler before, as the number that gfortran's programs know: 0 and 1 are the default and
// "ignore"; -1: there is no such signal.
std::int64_t set_handler(int number, Handler handler) {
    return reinterpret_cast<std::intptr_t>(std::signal(number, handler));
}

Handler handler_of(const int* number) {
    return reinterpret_cast<Handler>(static_cast<std::intptr_t>(*number));
}

// Seconds that were left of the alarm before; -1: the handler can't be set.
template <class Integer>
void set_alarm(const std::int32_t* seconds, Handler handler, Integer* left) {
    if (std::signal(SIGALRM, handler) == SIG_ERR) return store(left, -1);
    store(left, ::alarm(static_cast<unsigned>(*seconds)));
}

// A time in the past has come already.
template <class Integer>
void wait_seconds(const Integer* seconds) {
    if (*seconds > 0) ::sleep(static_cast<unsigned>(*seconds));
}

int send_signal(int process, int number) {
    return ::kill(process, number) == 0 ? 0 : errno;
}

}  // namespace
}  // namespace tarn::gcc

using namespace tarn::gcc;

extern "C" {

TARN_EXPORT void _gfortran_execute_command_line_i4(const char* command, const std::int32_t* wait,
                                                   std::int32_t* exit_status,
                                                   std::int32_t* command_status, char* message,
                                                   std::size_t length, std::size_t message_length) {
    execute_command_line(command, wait, exit_status, command_status, message, length,
                         message_length);
}
TARN_EXPORT void _gfortran_execute_command_line_i8(const char* command, const std::int32_t* wait,
                                                   std::int64_t* exit_status,
                                                   std::int64_t* command_status, char* message,
                                                   std::size_t length, std::size_t message_length) {
    execute_command_line(command, wait, exit_status, command_status, message, length,
                         message_length);
}

// SYSTEM gives the status as wait() does.
TARN_EXPORT int _gfortran_system(const char* command, std::size_t length) {
    return tarn::intrinsics::run_by_shell(c_text(command, length));
}
TARN_EXPORT void _gfortran_system_sub(const char* command, int* status, std::size_t length) {
    store(status, tarn::intrinsics::run_by_shell(c_text(command, length)));
}

TARN_EXPORT int _gfortran_kill(int process, int number) {
    return send_signal(process, number);
}
TARN_EXPORT void _gfortran_kill_sub(int process, int number, int* status) {
    store(status, send_signal(process, number));
}

TARN_EXPORT int _gfortran_signal_func(const int* number, Handler handler) {
    return static_cast<int>(set_handler(*number, handler));
}
TARN_EXPORT int _gfortran_signal_func_int(const int* number, const int* handler) {
    return static_cast<int>(set_handler(*number, handler_of(handler)));
}
TARN_EXPORT void _gfortran_signal_sub(const int* number, Handler handler, int* before) {
    store(before, set_handler(*number, handler));
}
TARN_EXPORT void _gfortran_signal_sub_int(const int* number, const int* handler, int* before) {
    store(before, set_handler(*number, handler_of(handler)));
}

TARN_EXPORT void _gfortran_alarm_sub_i4(const std::int32_t* seconds, Handler handler,
                                        std::int32_t* left) {
    set_alarm(seconds, handler, left);
}
// The kind is that of the third argument; the compiler makes the others INTEGER(4).
TARN_EXPORT void _gfortran_alarm_sub_i8(const std::int32_t* seconds, Handler handler,
                                        std::int64_t* left) {
    set_alarm(seconds, handler, left);
}
TARN_EXPORT void _gfortran_alarm_sub_int_i4(const std::int32_t* seconds,
                                            const std::int32_t* handler, std::int32_t* left) {
    set_alarm(seconds, handler_of(handler), left);
}
TARN_EXPORT void _gfortran_alarm_sub_int_i8(const std::int32_t* seconds,
                                            const std::int32_t* handler, std::int64_t* left) {
    set_alarm(seconds, handler_of(handler), left);
}

TARN_EXPORT void _gfortran_sleep_i4_sub(const std::int32_t* seconds) {
    wait_seconds(seconds);
}
TARN_EXPORT void _gfortran_sleep_i8_sub(const std::int64_t* seconds) {
    wait_seconds(seconds);
}

}  // extern "C"
