// Text that one window sends to another by its class, and the answer that comes back.
//
// Windows of this process are reached. The platform knows no others: a class that isn't found here
// is reported as not found, as a program that isn't running is.
#include <cstring>

#include "winio/callbacks.h"
#include "winio/report.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

struct text_exchange {
    static constexpr std::size_t size = 256;
    char text[size];
    char reply[size];
};

namespace {

void keep(char (&target)[text_exchange::size], const char* text) {
    std::size_t length = text ? strnlen(text, text_exchange::size - 1) : 0;
    std::memcpy(target, text, length);
    target[length] = 0;
}

}  // namespace

bool send_text_message(const char* class_name, const char* text, char* reply) {
    HWND hwnd = FindWindowA(class_name, nullptr);
    if (!hwnd) return false;
    text_exchange exchange{};
    keep(exchange.text, text);
    text_exchange* before = procedures().sending;
    procedures().sending = &exchange;
    SendMessageA(hwnd, msg_text_message, 0, reinterpret_cast<LPARAM>(&exchange));
    procedures().sending = before;
    if (reply) std::memcpy(reply, exchange.reply, text_exchange::size);
    return true;
}

void text_message_arrived(fancy_window* window, LPARAM lparam) {
    auto* exchange = reinterpret_cast<text_exchange*>(lparam);
    procedures_state& state = procedures();
    // The number of this message is no secret: only what is being sent is believed.
    if (!exchange || exchange != state.sending || !window->receiver_callback) return;
    text_exchange* before = state.exchange;
    state.exchange = exchange;
    set_quillpan_string("MESSAGE_TEXT", exchange->text);
    HWND hwnd = window->hwnd;
    std::int32_t result =
        call_function(window->receiver_callback, "USER_MESSAGE", hwnd, false, false);
    state.exchange = before;
    act_on_result(hwnd, result);
}

void reply_to_text_message(const char* text) {
    text_exchange* exchange = procedures().exchange;
    if (!exchange) {
        quillpan_error("?No message is currently awaiting a reply");
        return;
    }
    keep(exchange->reply, text);
}

}  // namespace tarn::winio
