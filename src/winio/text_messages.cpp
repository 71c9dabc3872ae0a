// Text that one window sends to another by its class, and the answer that comes back.
//
// Windows of this process are reached directly, those of the same user's other programs through a
// socket (text_channel.h).
#include <cstring>

#include "winio/callbacks.h"
#include "winio/report.h"
#include "winio/text_channel.h"
#include "winio/winproc.h"

namespace tarn::winio {

using namespace platform;

struct text_exchange {
    text_message text;
    text_message reply;
};

namespace {

void keep(text_message& target, const char* text) {
    std::size_t length = text ? strnlen(text, text_message_size - 1) : 0;
    std::memcpy(target, text, length);
    target[length] = 0;
}

void deliver(HWND hwnd, text_exchange& exchange) {
    text_exchange* before = procedures().sending;
    procedures().sending = &exchange;
    SendMessageA(hwnd, msg_text_message, 0, reinterpret_cast<LPARAM>(&exchange));
    procedures().sending = before;
}

}  // namespace

bool send_text_message(const char* class_name, const char* text, char* reply) {
    text_exchange exchange{};
    keep(exchange.text, text);
    HWND hwnd = FindWindowA(class_name, nullptr);
    if (!hwnd) {
        if (!send_through_channel(class_name, exchange.text, exchange.reply)) return false;
    } else {
        deliver(hwnd, exchange);
    }
    if (reply) std::memcpy(reply, exchange.reply, text_message_size);
    return true;
}

void listen_for_texts(fancy_window* window) {
    if (window->receiver_callback)
        open_text_channel(window->hwnd, class_of(window), msg_text_channel);
}

void texts_from_outside(HWND hwnd) {
    serve_text_channel(hwnd, [](HWND to, const text_message& text, text_message& reply) {
        text_exchange exchange{};
        keep(exchange.text, text);
        deliver(to, exchange);
        std::memcpy(reply, exchange.reply, text_message_size);
    });
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
