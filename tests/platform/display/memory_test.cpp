// The memory display as a window system: what its manager answers, in order.
#include "platform/display/memory.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/display/environment.h"

namespace tarn::platform {
namespace {

using Kind = Event::Kind;

class MemoryDisplayTest : public testing::Test {
  protected:
    // A display lives as long as its process.
    static std::vector<Display*>& made() {
        static auto* all = new std::vector<Display*>;
        return *all;
    }
    Display& screen = *made().emplace_back(make_memory_display(1.5, {{0, 0, 1280, 1024}}));

    TopLevelOptions options(RECT client, TopLevel owner = 0) {
        TopLevelOptions wanted;
        wanted.client = client;
        wanted.position_given = true;
        wanted.owner = owner;
        return wanted;
    }
    void shown(TopLevel id, RECT client, TopLevel owner = 0) {
        ASSERT_TRUE(screen.open(id, options(client, owner)));
        screen.show(id, true, true);
    }
    // Everything that waits, like "1:configure 10,30,110,80 1:expose".
    std::string events() {
        static const std::pair<Kind, const char*> names[] = {
            {Kind::expose, "expose"},       {Kind::configure, "configure"},
            {Kind::state, "state"},         {Kind::focus_in, "focus_in"},
            {Kind::focus_out, "focus_out"}, {Kind::pointer_move, "pointer_move"},
            {Kind::text, "text"},           {Kind::button_down, "button_down"},
            {Kind::close, "close"},
        };
        std::string all;
        Event event;
        while (screen.next_event(event, 0)) {
            all += (all.empty() ? "" : " ") + std::to_string(event.window) + ":";
            for (auto& [kind, name] : names) {
                if (kind == event.kind) all += name;
            }
            if (event.kind == Kind::state) all += std::to_string(static_cast<int>(event.state));
            if (event.kind == Kind::configure) all += " " + text(event.rect);
            if (event.kind == Kind::pointer_move)
                all += " " + std::to_string(event.point.x) + "," + std::to_string(event.point.y);
        }
        return all;
    }
    static std::string text(const RECT& r) {
        return std::to_string(r.left) + "," + std::to_string(r.top) + "," +
               std::to_string(r.right) + "," + std::to_string(r.bottom);
    }
};

TEST_F(MemoryDisplayTest, AnswersARequestOnceAndWithWhereItCameToRest) {
    shown(1, {10, 40, 110, 90});
    EXPECT_EQ(events(), "1:configure 10,40,110,90 1:expose 1:focus_in");
    screen.place(1, {20, 50, 220, 150});
    screen.place(1, {30, 60, 230, 160});
    EXPECT_EQ(events(), "1:configure 30,60,230,160 1:expose");
    TopLevelOptions bounded = options({});
    bounded.minimum = {150, 100};
    screen.set_options(1, bounded);
    screen.place(1, {30, 60, 40, 70});
    EXPECT_EQ(events(), "1:configure 30,60,180,160 1:expose");
}

TEST_F(MemoryDisplayTest, PlacesANewWindowWithItsFrameOnTheScreen) {
    shown(1, {-50, -50, 50, 50});
    EXPECT_EQ(events(), "1:configure 1,28,101,128 1:expose 1:focus_in");
    shown(2, {1250, 1000, 1350, 1100});
    EXPECT_EQ(events().substr(0, 31), "2:configure 1179,923,1279,1023 ");
    TopLevelOptions anywhere;
    anywhere.client = {0, 0, 200, 100};
    screen.open(3, anywhere);
    screen.show(3, true, false);
    EXPECT_EQ(events(), "3:configure 540,462,740,562 3:expose");
    anywhere.owner = 1;
    anywhere.client = {0, 0, 50, 50};
    screen.open(4, anywhere);
    screen.show(4, true, false);
    EXPECT_EQ(events(), "4:configure 26,53,76,103 4:expose");
    TopLevelOptions popup = options({1270, -10, 1300, 10});
    popup.role = Role::popup;
    screen.open(5, popup);
    screen.show(5, true, true);
    EXPECT_EQ(events(), "5:configure 1270,-10,1300,10 5:expose");
}

TEST_F(MemoryDisplayTest, WindowsKeepToTheMonitorThatTheyAreOn) {
    Display& wide =
        *made().emplace_back(make_memory_display(1.0, {{0, 0, 800, 600}, {-1000, 100, 0, 900}}));
    EXPECT_EQ(wide.screen_size(), (SIZE{800, 600}));
    EXPECT_EQ(wide.work_area({-1, 200}), (RECT{-1000, 100, 0, 900}));
    EXPECT_EQ(wide.work_area({700, 5000}), (RECT{0, 0, 800, 600}));
    auto place = [&](TopLevel id) {
        RECT at;
        Event event;
        while (wide.next_event(event, 0)) {
            if (event.kind == Kind::configure && event.window == id) at = event.rect;
        }
        return at;
    };
    wide.open(1, options({-150, 200, 50, 300}));
    wide.show(1, true, true);
    EXPECT_EQ(place(1), (RECT{-201, 200, -1, 300}));
    TopLevelOptions owned;
    owned.owner = 1;
    owned.client = {0, 0, 100, 50};
    wide.open(2, owned);
    wide.show(2, true, true);
    EXPECT_EQ(place(2), (RECT{-151, 225, -51, 275}));
    wide.set_state(1, WindowState::maximized);
    EXPECT_EQ(place(1), (RECT{-999, 128, -1, 899}));
    wide.set_state(1, WindowState::full_screen);
    EXPECT_EQ(place(1), (RECT{-1000, 100, 0, 900}));
    wide.warp_pointer({-5000, 5000});
    EXPECT_EQ(wide.pointer(), (POINT{-1000, 899}));
}

TEST_F(MemoryDisplayTest, FocusFollowsModalWindowsAndOwners) {
    shown(1, {10, 40, 110, 90});
    shown(2, {50, 60, 110, 90}, 1);
    events();
    screen.set_modal(1, 2);
    screen.focus(1);
    EXPECT_EQ(events(), "");  // it stays with the modal window
    shown(3, {200, 200, 300, 300});
    EXPECT_EQ(events(), "3:configure 200,200,300,300 3:expose 2:focus_out 3:focus_in");
    screen.focus(1);
    EXPECT_EQ(events(), "3:focus_out 2:focus_in");
    screen.set_modal(1, 0);
    screen.close(2);
    EXPECT_EQ(events(), "1:focus_in");
    screen.show(1, false, false);
    EXPECT_EQ(events(), "1:focus_out 3:focus_in");
    screen.close(3);
    EXPECT_EQ(events(), "");  // a hidden window gets none
}

TEST_F(MemoryDisplayTest, ComesBackFromEachStateToTheOneBefore) {
    shown(1, {10, 40, 110, 90});
    shown(2, {20, 50, 110, 90});
    events();
    screen.set_state(2, WindowState::maximized);
    EXPECT_EQ(events(), "2:state2 2:configure 1,28,1279,1023 2:expose");
    screen.set_state(2, WindowState::minimized);
    EXPECT_EQ(events(), "2:state1 2:focus_out 1:focus_in");
    screen.focus(2);  // the user asks for it in a task bar
    EXPECT_EQ(events(), "2:state2 2:expose 1:focus_out 2:focus_in");
    screen.place(2, {30, 60, 130, 160});  // not now, but when it is restored
    EXPECT_EQ(events(), "2:configure 1,28,1279,1023");
    screen.set_state(2, WindowState::full_screen);
    EXPECT_EQ(events(), "2:state3 2:configure 0,0,1280,1024 2:expose");
    screen.set_state(2, WindowState::minimized);
    screen.set_state(2, WindowState::normal);
    EXPECT_EQ(events(),
              "2:state1 2:focus_out 1:focus_in 2:state0 2:configure 30,60,130,160 2:expose "
              "1:focus_out 2:focus_in");
}

TEST_F(MemoryDisplayTest, InjectedEventsBehaveAsAUsersOwn) {
    shown(1, {10, 40, 110, 90});
    shown(2, {200, 200, 300, 300});
    events();
    EXPECT_FALSE(screen.injected_waiting());
    Event click;
    click.kind = Kind::button_down;
    click.window = 1;
    click.screen = {15, 50};
    screen.inject(click);
    EXPECT_TRUE(screen.injected_waiting());
    EXPECT_EQ(screen.pointer(), (POINT{15, 50}));
    EXPECT_EQ(events(), "2:focus_out 1:focus_in 1:button_down");
    EXPECT_FALSE(screen.injected_waiting());
    screen.inject(click);
    screen.close(1);  // takes what waits for it along
    EXPECT_FALSE(screen.injected_waiting());
    EXPECT_EQ(events(), "2:focus_in");
}

TEST_F(MemoryDisplayTest, PointerGoesToTheTopmostWindowUnderItOrTheGrab) {
    shown(1, {100, 100, 300, 300});
    shown(2, {150, 150, 250, 250});
    events();
    screen.warp_pointer({200, 200});
    EXPECT_EQ(events(), "2:pointer_move 50,50");
    screen.raise(1);
    screen.warp_pointer({200, 200});
    EXPECT_EQ(events(), "1:pointer_move 100,100");
    screen.grab_pointer(2);
    screen.warp_pointer({99999, -7});
    EXPECT_EQ(screen.pointer(), (POINT{1279, 0}));
    EXPECT_EQ(events(), "2:pointer_move 1129,-150");
}

TEST_F(MemoryDisplayTest, SurfacesAreLargeEnoughOrHaveNoPixels) {
    shown(1, {0, 0, 10, 10});
    for (SIZE size : {SIZE{15, 15}, SIZE{300, 200}, SIZE{310, 210}, SIZE{20, 4}}) {
        Surface surface = screen.surface(1, size.cx, size.cy);
        ASSERT_NE(surface.pixels, nullptr);
        EXPECT_GE(surface.stride, size.cx);
        EXPECT_EQ(surface.scale, 1.5);
        std::memset(surface.pixels, 0xAB, sizeof(std::uint32_t) * surface.stride * size.cy);
    }
    for (SIZE size : {SIZE{0, 5}, SIZE{5, -1}, SIZE{100000, 5}, SIZE{INT32_MAX, INT32_MAX}})
        EXPECT_EQ(screen.surface(1, size.cx, size.cy).pixels, nullptr);
    EXPECT_EQ(screen.surface(7, 5, 5).pixels, nullptr);
}

TEST_F(MemoryDisplayTest, SelectionsAreApart) {
    std::string text = "x";
    EXPECT_FALSE(screen.has_text(false));
    EXPECT_FALSE(screen.request_text(true, text));
    EXPECT_EQ(text, "x");
    screen.offer_text(false, "cut");
    screen.offer_text(true, "");
    EXPECT_TRUE(screen.request_text(false, text));
    EXPECT_EQ(text, "cut");
    EXPECT_TRUE(screen.request_text(true, text));
    EXPECT_EQ(text, "");
    screen.offer_image("a picture");
    EXPECT_FALSE(screen.has_text(false));
}

TEST_F(MemoryDisplayTest, SleepsOutATimeout) {
    Event event;
    auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(screen.next_event(event, 30));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
}

// ---- The environment ------------------------------------------------------------------------

class EnvironmentTest : public testing::Test {
  protected:
    ~EnvironmentTest() override {
        for (const char* name : {"TARN_SCALE", "TARN_SCREEN", "TARN_DISPLAY", "TARN_RESOURCES"})
            unsetenv(name);
    }
    template <class Read>
    auto with(const char* name, const char* value, Read read) {
        setenv(name, value, 1);
        testing::internal::CaptureStderr();
        auto result = read();
        said = testing::internal::GetCapturedStderr();
        return result;
    }
    std::string said;
};

TEST_F(EnvironmentTest, ScaleIsAFactorOrIsNamed) {
    struct {
        const char* value;
        double scale;
        bool complaint;
    } cases[] = {
        {"", 0, false},   {"1", 1, false},     {"1.25", 1.25, false}, {"0.5", .5, false},
        {"4", 4, false},  {".75", .75, false}, {"0.49", 1, true},     {"4.01", 1, true},
        {"two", 1, true}, {"1,5", 1, true},    {"1.5x", 1, true},     {".", 1, true},
        {"-1", 1, true},  {"nan", 1, true},    {"1..5", 1, true},     {"1e0", 1, true},
    };
    for (auto& c : cases) {
        EXPECT_DOUBLE_EQ(with("TARN_SCALE", c.value, wanted_scale), c.scale) << c.value;
        EXPECT_EQ(!said.empty(), c.complaint) << c.value << said;
    }
    EXPECT_EQ(said,
              "Warning: TARN_SCALE=1e0 is ignored: a factor from 0.5 to 4 is expected there.\n");
}

TEST_F(EnvironmentTest, ScreenIsASizeOrSeveralOrIsNamed) {
    const std::vector<RECT> usual{{0, 0, 1280, 1024}};
    for (const char* wrong :
         {"800", "800x", "x600", "800x600x2", "1x1", "800x99999999999", "-800x600", "800 x 600",
          "99999x600", "800x600,", ",800x600", "800x600+0", "800x600+5+0", "800x600+-5+0",
          "800x600,800x600+99999+0"}) {
        EXPECT_EQ(with("TARN_SCREEN", wrong, wanted_monitors), usual) << wrong;
        EXPECT_NE(said, "") << wrong;
    }
    EXPECT_EQ(with("TARN_SCREEN", "800x600", wanted_monitors),
              (std::vector<RECT>{{0, 0, 800, 600}}));
    EXPECT_EQ(with("TARN_SCREEN", "800x600,1024x768,640x480-640+20", wanted_monitors),
              (std::vector<RECT>{{0, 0, 800, 600}, {800, 0, 1824, 768}, {-640, 20, 0, 500}}));
    EXPECT_EQ(said, "");
}

TEST_F(EnvironmentTest, AnUnknownDisplayIsNamedAndTheChoiceIsOurs) {
    EXPECT_EQ(with("TARN_DISPLAY", "memory", wanted_display), DisplayChoice::memory);
    EXPECT_EQ(with("TARN_DISPLAY", "x11", wanted_display), DisplayChoice::x11);
    EXPECT_EQ(said, "");
    EXPECT_EQ(with("TARN_DISPLAY", "wayland", wanted_display), DisplayChoice::automatic);
    EXPECT_NE(said.find("memory or x11"), std::string::npos) << said;
    EXPECT_EQ(with("TARN_RESOURCES", "/some/where//", resource_folder), "/some/where");
}

}  // namespace
}  // namespace tarn::platform
