// An input method of a few lines for the tests: `a` becomes a letter of another script, what is
// composed by `q` is committed by the next key, and all else goes back. It says on standard output
// what it is told.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>
#include <xcb-imdkit/encoding.h>
#include <xcb-imdkit/imdkit.h>
#include <xcb-imdkit/ximproto.h>
#include <xcb/xcb.h>

namespace {

constexpr int key_a = 38, key_q = 24;  // by place, on a US keyboard
bool composing = false;

void commit(xcb_im_t* method, xcb_im_input_context_t* context, const char* utf8) {
    std::size_t length = 0;
    char* text = xcb_utf8_to_compound_text(utf8, std::strlen(utf8), &length);
    if (text)
        xcb_im_commit_string(method, context, XCB_XIM_LOOKUP_CHARS, text,
                             static_cast<std::uint32_t>(length), 0);
    std::free(text);
}

void take_key(xcb_im_t* method, xcb_im_input_context_t* context, xcb_key_press_event_t* key) {
    bool press = (key->response_type & 0x7F) == XCB_KEY_PRESS;
    if (press && composing) {
        composing = false;
        commit(method, context, "\xE6\xBC\xA2\xE5\xAD\x97");
    } else if (press && key->detail == key_q) {
        composing = true;
    } else if (press && key->detail == key_a) {
        commit(method, context, "\xE3\x81\x82");
    } else {
        xcb_im_forward_event(method, context, key);
    }
}

void called(xcb_im_t* method, xcb_im_client_t*, xcb_im_input_context_t* context,
            const xcb_im_packet_header_fr_t* header, void*, void* argument, void*) {
    switch (header->major_opcode) {
        case XCB_XIM_FORWARD_EVENT:
            take_key(method, context, static_cast<xcb_key_press_event_t*>(argument));
            break;
        case XCB_XIM_CREATE_IC:
            std::printf("context\n");
            break;
        case XCB_XIM_SET_IC_VALUES: {
            const xcb_im_preedit_attr_t* place = xcb_im_input_context_get_preedit_attr(context);
            std::printf("spot %d,%d\n", place->spot_location.x, place->spot_location.y);
            break;
        }
        case XCB_XIM_SET_IC_FOCUS:
            std::printf("focus\n");
            break;
        case XCB_XIM_UNSET_IC_FOCUS:
            std::printf("no focus\n");
            break;
        case XCB_XIM_DESTROY_IC:
            std::printf("gone\n");
            break;
        default:
            break;
    }
    std::fflush(stdout);
}

}  // namespace

int main() {
    int screen = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &screen);
    if (xcb_connection_has_error(connection)) return 1;
    xcb_compound_text_init();
    xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, 0, window, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0,
                      nullptr);
    std::uint32_t style_list[] = {XCB_IM_PreeditPosition | XCB_IM_StatusNothing,
                                  XCB_IM_PreeditNothing | XCB_IM_StatusNothing};
    const xcb_im_styles_t styles{2, style_list};
    char compound_text[] = "COMPOUND_TEXT";
    char* encoding_list[] = {compound_text};
    const xcb_im_encodings_t encodings{1, encoding_list};
    xcb_im_t* method = xcb_im_create(
        connection, screen, window, "tarntest", XCB_IM_ALL_LOCALES, &styles, nullptr, nullptr,
        &encodings, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE, called, nullptr);
    if (!xcb_im_open_im(method)) return 2;
    xcb_flush(connection);
    std::printf("ready\n");
    std::fflush(stdout);
    while (xcb_generic_event_t* event = xcb_wait_for_event(connection)) {
        xcb_im_filter_event(method, event);
        std::free(event);
        xcb_flush(connection);
    }
    return 0;
}
