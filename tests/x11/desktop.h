// A desktop of the test's own: a server in memory, with a window manager or without, and the
// library's display on it.
#pragma once

#include <chrono>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/display/display.h"

namespace tarn::x11_test {

using namespace tarn::platform;

inline bool have(const char* program) {
    std::string path = std::getenv("PATH") ? std::getenv("PATH") : "";
    for (std::size_t at = 0; at <= path.size();) {
        std::size_t end = std::min(path.find(':', at), path.size());
        if (access((path.substr(at, end - at) + "/" + program).c_str(), X_OK) == 0) return true;
        at = end + 1;
    }
    return false;
}

// Started without a shell, so that its number is the program's own.
inline pid_t start(const std::vector<std::string>& words, int keep = -1, int output = -1) {
    std::vector<char*> argv;
    for (const std::string& word : words) argv.push_back(const_cast<char*>(word.c_str()));
    argv.push_back(nullptr);
    pid_t child = fork();
    if (child != 0) return child;
    if (keep >= 0) fcntl(keep, F_SETFD, 0);
    int nothing = open("/dev/null", O_RDWR);
    dup2(nothing, 0);
    dup2(output >= 0 ? output : nothing, 1);
    dup2(nothing, 2);
    execvp(argv[0], argv.data());
    _exit(127);
}

inline void stop(pid_t& child) {
    if (child <= 0) return;
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
    child = 0;
}

class Server {
  public:
    explicit Server(std::vector<std::string> more = {}) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) return;
        std::vector<std::string> words{"Xvfb",      "-displayfd", std::to_string(ends[1]),
                                       "-screen",   "0",          "1280x1024x24",
                                       "-nolisten", "tcp",        "-noreset"};
        words.insert(words.end(), more.begin(), more.end());
        pid = start(words, ends[1]);
        ::close(ends[1]);
        char c = 0;
        while (read(ends[0], &c, 1) == 1 && c != '\n') name.push_back(c);
        ::close(ends[0]);
        name = ":" + name;
        setenv("DISPLAY", name.c_str(), 1);
    }
    ~Server() { stop(pid); }
    std::string name;
    pid_t pid = 0;
};

class Desktop : public testing::Test {
  protected:
    void SetUp() override {
        for (const char* program : {"Xvfb", "openbox", "xdotool", "xclip", "xprop", "xrdb"}) {
            if (!have(program)) GTEST_SKIP() << program << " is missing";
        }
    }
    void TearDown() override {
        // The server goes last, or the display would end the process.
        for (pid_t& helper : helpers) stop(helper);
    }

    void manage() {
        helpers.push_back(start({"openbox", "--sm-disable", "--config-file", "/dev/null"}));
        until([&] {
            return run("xprop -root _NET_SUPPORTING_WM_CHECK").find('#') != std::string::npos;
        });
    }
    void connect(double scale = 0.0) {
        void* module = dlopen(TARN_X11_MODULE, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(module, nullptr) << dlerror();
        auto factory = reinterpret_cast<DisplayFactory>(dlsym(module, "tarn_x11_display"));
        ASSERT_NE(factory, nullptr);
        std::string why_not;
        display = factory({scale, [](const char*) { std::_Exit(3); }}, why_not);
        ASSERT_NE(display, nullptr) << why_not;
    }
    // What a shell command says.
    static std::string run(const std::string& command) {
        std::string said;
        FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
        if (!pipe) return said;
        char buffer[4096];
        while (std::size_t got = fread(buffer, 1, sizeof buffer, pipe)) said.append(buffer, got);
        pclose(pipe);
        return said;
    }
    // Starts a command beside the test, which goes on answering the server.
    void beside(const std::string& command) {
        helpers.push_back(start({"sh", "-c", "exec " + command}));
    }

    // A window with one colour, shown and presented on expose as the program would.
    void shown(TopLevel id, RECT client, TopLevel owner = 0, TopLevelOptions options = {}) {
        options.client = client;
        options.position_given = true;
        options.owner = owner;
        if (options.title.empty()) options.title = "window " + std::to_string(id);
        ASSERT_TRUE(display->open(id, options));
        display->show(id, true, true);
    }

    // Takes events until the condition holds; the machine may be busy.
    template <class Condition>
    testing::AssertionResult until(Condition condition) {
        auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (std::chrono::steady_clock::now() < end) {
            Event event;
            if (!display) {
                usleep(10000);
            } else if (display->next_event(event, 10)) {
                seen.push_back(event);
                if (event.kind == Event::Kind::configure) {
                    place[event.window % 8] = event.rect;
                    ++configures;
                }
                if (event.kind == Event::Kind::focus_in) focused = event.window;
                if (event.kind == Event::Kind::focus_out && focused == event.window) focused = 0;
                if (event.kind == Event::Kind::state) state = event.state;
                if (event.kind == Event::Kind::expose) paint(event.window);
                continue;
            }
            if (condition()) return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << "it didn't come within 20 seconds";
    }
    void paint(TopLevel id) {
        RECT at = place[id % 8];
        double scale = display->scale();
        Surface surface = display->surface(id, static_cast<int>(at.width() * scale + .5),
                                           static_cast<int>(at.height() * scale + .5));
        if (!surface.pixels) return;
        for (int i = 0; i < surface.stride * surface.height; ++i)
            surface.pixels[i] = 0xFF000000 | colour;
        RECT all{0, 0, surface.width, surface.height};
        display->present(id, std::span(&all, 1), caret);
        display->flush();
    }
    const Event* last(Event::Kind kind) const {
        for (std::size_t i = seen.size(); i-- > 0;) {
            if (seen[i].kind == kind) return &seen[i];
        }
        return nullptr;
    }
    // What has been typed since the last call.
    std::string typed() {
        std::string all;
        for (const Event& event : seen) {
            if (event.kind == Event::Kind::key_down) all += event.text;
        }
        return all;
    }
    // The colour of a pixel of the screen, by a picture of all of it.
    static std::uint32_t screen_pixel(std::size_t x, std::size_t y) {
        std::string picture = run("xwd -root -silent");
        auto number = [&](std::size_t word) {
            std::uint32_t value = 0;
            for (std::size_t i = 0; i < 4; ++i)
                value = value << 8 | static_cast<unsigned char>(picture[word * 4 + i]);
            return value;
        };
        if (picture.size() < 100) return 0xDEADBEEF;
        constexpr std::size_t head_size = 0, row_bytes = 12, colours = 19, bytes_of_a_colour = 12;
        std::size_t at =
            number(head_size) + number(colours) * bytes_of_a_colour + y * number(row_bytes) + x * 4;
        if (at + 4 > picture.size()) return 0xDEADBEEF;
        std::uint32_t pixel = 0;
        for (std::size_t i = 3; i-- > 0;)
            pixel = pixel << 8 | static_cast<unsigned char>(picture[at + i]);
        return pixel;
    }

    Display* display = nullptr;
    std::vector<Event> seen;
    RECT place[8];
    int configures = 0;
    TopLevel focused = 0;
    WindowState state = WindowState::normal;
    std::uint32_t colour = 0x336699;
    CaretOverlay caret;
    std::vector<pid_t> helpers;
};

}  // namespace tarn::x11_test
