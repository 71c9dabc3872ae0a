// What other programs and managers say to our windows, said by a client of the test's own.
#include <cstring>
#include <thread>
#include <xcb/xcb.h>

#include "desktop.h"
#include "platform/x11/connection.h"

namespace tarn::x11_test {
namespace {

using x11::Reply;
using Kind = Event::Kind;

class PeerTest : public Desktop {
  protected:
    void SetUp() override {
        Desktop::SetUp();
        if (IsSkipped()) return;
        server = std::make_unique<Server>();
        peer = xcb_connect(nullptr, nullptr);
        root = xcb_setup_roots_iterator(xcb_get_setup(peer)).data->root;
        window = xcb_generate_id(peer);
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(peer, XCB_COPY_FROM_PARENT, window, root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                          &events);
    }
    void TearDown() override {
        if (peer) xcb_disconnect(peer);
        Desktop::TearDown();
    }
    xcb_atom_t atom(const char* name) {
        Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            peer, xcb_intern_atom(peer, 0, static_cast<std::uint16_t>(strlen(name)), name),
            nullptr));
        return reply->atom;
    }
    xcb_window_t window_of(const std::string& title) {
        return static_cast<xcb_window_t>(
            std::strtoul(run("xdotool search --name '^" + title + "$'").c_str(), nullptr, 10));
    }
    void say(xcb_window_t to, const char* type, const std::uint32_t (&words)[5]) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = to;
        message.type = atom(type);
        std::memcpy(message.data.data32, words, sizeof words);
        xcb_send_event(peer, 0, to, 0, reinterpret_cast<const char*>(&message));
        xcb_flush(peer);
    }
    // The next event of that kind that the peer gets; the display goes on meanwhile.
    template <class T>
    Reply<T> heard(std::uint8_t kind) {
        T* found = nullptr;
        until([&] {
            while (!found) {
                xcb_generic_event_t* event = xcb_poll_for_event(peer);
                if (!event) break;
                if ((event->response_type & 0x7F) == kind)
                    found = reinterpret_cast<T*>(event);
                else
                    free(event);
            }
            return found != nullptr;
        });
        return Reply<T>(found);
    }
    void own(const char* selection) {
        xcb_set_selection_owner(peer, window, atom(selection), XCB_CURRENT_TIME);
        xcb_flush(peer);
    }
    void answer(const xcb_selection_request_event_t& request, const char* type,
                const std::string& bytes) {
        if (type)
            xcb_change_property(peer, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                                atom(type), 8, static_cast<std::uint32_t>(bytes.size()),
                                bytes.data());
        xcb_selection_notify_event_t notice{};
        notice.response_type = XCB_SELECTION_NOTIFY;
        notice.requestor = request.requestor;
        notice.selection = request.selection;
        notice.target = request.target;
        notice.property = type ? request.property : xcb_atom_t{XCB_NONE};
        xcb_send_event(peer, 0, request.requestor, 0, reinterpret_cast<const char*>(&notice));
        xcb_flush(peer);
    }

    std::unique_ptr<Server> server;
    xcb_connection_t* peer = nullptr;
    xcb_window_t root = 0, window = 0;
    std::uint32_t finished = 0;
};

TEST_F(PeerTest, ManagersAskToCloseAndWhetherWeLive) {
    connect();
    shown(1, {100, 100, 300, 200});
    ASSERT_TRUE(until([&] { return focused == 1; }));
    xcb_window_t ours = window_of("window 1");
    say(ours, "WM_PROTOCOLS", {atom("WM_DELETE_WINDOW"), 0});
    ASSERT_TRUE(until([&] { return last(Kind::close) != nullptr; }));
    EXPECT_EQ(last(Kind::close)->window, 1);
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(peer, root, XCB_CW_EVENT_MASK, &events);
    say(ours, "WM_PROTOCOLS", {atom("_NET_WM_PING"), 77, ours});
    auto pong = heard<xcb_client_message_event_t>(XCB_CLIENT_MESSAGE);
    ASSERT_NE(pong, nullptr);
    EXPECT_EQ(pong->window, root);
    EXPECT_EQ(pong->data.data32[1], 77u);
    // Messages that make no sense change nothing.
    say(ours, "WM_PROTOCOLS", {12345, 0});
    say(ours, "XdndDrop", {window});
    say(ours, "XdndPosition", {window});
    ASSERT_TRUE(until([] { return true; }));
}

TEST_F(PeerTest, FilesAreDropped) {
    connect();
    TopLevelOptions options;
    options.accepts_files = true;
    shown(1, {100, 100, 300, 200}, 0, options);
    shown(2, {400, 100, 600, 200});
    ASSERT_TRUE(until([&] { return focused == 2; }));
    xcb_window_t ours = window_of("window 1");
    EXPECT_NE(run("xprop -id " + std::to_string(ours) + " XdndAware").find("= "),
              std::string::npos);
    EXPECT_EQ(run("xprop -name 'window 2' XdndAware").find("= "), std::string::npos);
    own("XdndSelection");
    constexpr std::uint32_t version = 5u << 24;
    say(ours, "XdndEnter", {window, version, atom("text/plain"), atom("text/uri-list"), 0});
    say(ours, "XdndPosition", {window, 0, 150u << 16 | 130u, 0, atom("XdndActionCopy")});
    auto status = heard<xcb_client_message_event_t>(XCB_CLIENT_MESSAGE);
    ASSERT_NE(status, nullptr);
    EXPECT_EQ(status->type, atom("XdndStatus"));
    EXPECT_EQ(status->data.data32[1] & 1, 1u);
    say(ours, "XdndDrop", {window, 0, 0});
    // The request comes while the display waits for the answer, so both ends take turns here.
    std::thread source([&] {
        for (;;) {
            Reply<xcb_generic_event_t> event(xcb_wait_for_event(peer));
            if (!event) return;
            if ((event->response_type & 0x7F) == XCB_SELECTION_REQUEST) {
                answer(reinterpret_cast<xcb_selection_request_event_t&>(*event), "text/uri-list",
                       "file:///tmp/a%20b\r\nhttp://x/y\r\nfile:///c\r\n");
            } else if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE) {
                const auto& done = reinterpret_cast<xcb_client_message_event_t&>(*event);
                finished = done.data.data32[1];
                return;
            }
        }
    });
    ASSERT_TRUE(until([&] { return last(Kind::drop_files) != nullptr; }));
    source.join();
    EXPECT_EQ(last(Kind::drop_files)->text, "/tmp/a b\n/c");
    EXPECT_EQ(last(Kind::drop_files)->point, (POINT{50, 30}));
    EXPECT_EQ(finished, 1u);
}

TEST_F(PeerTest, OwnersThatDontAnswerAreLeft) {
    connect();
    own("CLIPBOARD");
    std::string text = "old";
    EXPECT_FALSE(display->has_text(false));
    EXPECT_FALSE(display->request_text(false, text));
    EXPECT_EQ(text, "old");
    EXPECT_GE(display->screen_size().cx, 1280);  // all else goes on
}

TEST_F(PeerTest, AManagerKeepsTheClipboardWhenTheProgramEnds) {
    own("CLIPBOARD_MANAGER");
    pid_t child = fork();
    if (child == 0) {
        connect();
        display->offer_text(false, "kept");
        std::exit(0);
    }
    // Asked to save, the manager fetches the text while the program still waits.
    std::string saved;
    xcb_selection_request_event_t save{};
    xcb_atom_t property = atom("SAVED");
    auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (saved.empty() && std::chrono::steady_clock::now() < end) {
        Reply<xcb_generic_event_t> event(xcb_poll_for_event(peer));
        if (!event) {
            usleep(5000);
            continue;
        }
        int kind = event->response_type & 0x7F;
        if (kind == XCB_SELECTION_REQUEST) {
            save = reinterpret_cast<xcb_selection_request_event_t&>(*event);
            EXPECT_EQ(save.target, atom("SAVE_TARGETS"));
            xcb_convert_selection(peer, window, atom("CLIPBOARD"), atom("UTF8_STRING"), property,
                                  XCB_CURRENT_TIME);
            xcb_flush(peer);
        } else if (kind == XCB_SELECTION_NOTIFY) {
            Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
                peer, xcb_get_property(peer, 0, window, property, XCB_ATOM_ANY, 0, 100), nullptr));
            saved.assign(static_cast<const char*>(xcb_get_property_value(reply.get())),
                         static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
        }
    }
    EXPECT_EQ(saved, "kept");
    answer(save, "NULL", "");
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace
}  // namespace tarn::x11_test
