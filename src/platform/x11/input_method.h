// Input methods (XIM): keys go to a program that makes text of them, as for Chinese, Japanese and
// Korean, and come back as that text or as they were. The library that speaks the protocol is
// loaded when the environment names an input method and the first text caret is shown; without any
// of these, keys are what the keyboard says.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <xcb/xcb.h>

#include "platform/base/types.h"
#include "platform/x11/connection.h"

namespace tarn::x11 {

// What an input method gives back.
struct MethodAnswer {
    xcb_window_t window = 0;
    bool is_key = false;        // it didn't want this key; otherwise it made `text`
    xcb_key_press_event_t key;  // press or release
    std::string text;           // UTF-8
};

class InputMethod {
  public:
    InputMethod();
    ~InputMethod();

    // Where text that is typed into `window` appears, in its real pixels; the method shows what it
    // composes there.
    void place(const Connection& connection, xcb_window_t window, platform::POINT spot);
    // Nothing in the window takes text now.
    void leave(xcb_window_t window);
    void focus(xcb_window_t window, bool in);
    void forget(xcb_window_t window);
    // True: the event was the protocol's own.
    bool filter(xcb_generic_event_t& event);
    // True: the method has the key, and an answer may come.
    bool take_key(const xcb_key_press_event_t& key);
    bool next_answer(MethodAnswer& answer);

  private:
    struct Session;
    std::unique_ptr<Session> session_;
    bool tried_ = false;
};

}  // namespace tarn::x11
