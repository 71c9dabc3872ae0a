// Where controls come to stand: the map of cells, the pen, boxes, lines, and what a window's new
// size does to them.
#include "winio/layout.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "platform/gdi/gdi.h"
#include "winio/form.h"
#include "winio/layout_map.h"

namespace tarn::winio {
namespace {

using test::form;
using test::w;

std::int32_t window_variable;

// A window that stays open, laid out from `format`; closed again at the end of the test.
class Layout : public testing::Test {
  protected:
    ~Layout() override { test::close_all(); }
    static fancy_window* open(const std::string& format, const char* types = "",
                              std::initializer_list<word> words = {}) {
        std::vector<word> all{w(&window_variable)};
        all.insert(all.end(), words.begin(), words.end());
        const std::string described = std::string("*I") + types;
        const std::string whole = "%lw" + format;
        setenv("TARN_DISPLAY", "memory", 1);
        internal_winio(whole.c_str(), described.c_str(), all.data(),
                       static_cast<std::int32_t>(all.size()));
        return test::newest();
    }
};

// A text piece's corner, less the margins of the window.
std::string place_of(const fancy_window* window, const std::string& text) {
    for (const window_control* c = window->first_control; c; c = c->next) {
        if (!c->text || text != c->text || c->type == control_type::box_frame) continue;
        return std::to_string(c->x - window->margin_left) + "," +
               std::to_string(c->y - window->margin_top);
    }
    return "missing";
}

// ---- The map -----------------------------------------------------------------------------------
TEST(OccupancyMap, AgreesWithOneFlagACell) {
    constexpr std::int64_t cells = 1000;
    std::vector<unsigned char> map(occupancy_bytes(50, 20));
    std::vector<bool> flags(cells);
    std::mt19937 draw(7);
    for (int round = 0; round < 4000; ++round) {
        const std::int64_t first = draw() % cells;
        const std::int64_t count = draw() % (cells - first) % (round % 3 ? 9 : 200);
        if (round % 20 == 0) {
            set_bits(map.data(), first, count);
            for (std::int64_t i = first; i < first + count; ++i) flags[i] = true;
        }
        std::int64_t found = -1;
        for (std::int64_t i = first; i < first + count && found < 0; ++i)
            if (flags[i]) found = i;
        ASSERT_EQ(find_set_bit(map.data(), first, count), found) << first << " " << count;
        std::int64_t run = 0;
        while (run < count && flags[first + run]) ++run;
        ASSERT_EQ(count_set_run(map.data(), first, count), run) << first << " " << count;
    }
}

// ---- The pen -----------------------------------------------------------------------------------
struct pen_case {
    const char* format;
    const char* text;
    const char* place;
};
class PenTest : public Layout, public testing::WithParamInterface<pen_case> {};

TEST_P(PenTest, PlacesTheText) {
    EXPECT_EQ(place_of(open(GetParam().format), GetParam().text), GetParam().place)
        << GetParam().format;
}

INSTANTIATE_TEST_SUITE_P(
    Formats, PenTest,
    testing::Values(pen_case{"one", "one", "0,0"}, pen_case{"one\ntwo", "two", "0,8"},
                    pen_case{"one%nltwo", "two", "0,8"}, pen_case{"one%3nltwo", "two", "0,24"},
                    pen_case{"\ttwo", "two", "32,0"}, pen_case{"%2tatwo", "two", "64,0"},
                    // A pen on a stop moves to the next one.
                    pen_case{"\t\ttwo", "two", "64,0"},
                    pen_case{"%ob[no_border]a\nb%cbx%ffend", "end", "0,16"},
                    pen_case{"one\ftwo", "two", "0,8"},
                    // A closed box leaves the pen beside it, at the box's own height.
                    pen_case{"%ob[no_border]a\nb\nc%cb%cn", "c", "0,16"},
                    pen_case{"%ob[bottom_exit]a%cbend", "end", "0,20"},
                    pen_case{"%ob[named_l][x]a%cb", "a", "4,10"},
                    pen_case{"%ob[panelled]a%cb", "a", "10,8"},
                    pen_case{"%ob[thin_panelled]a%cb", "a", "8,4"},
                    pen_case{"%ob[no_border,space]a%cb", "a", "4,2"}));

TEST_F(Layout, CodesWithNumbersMoveThePen) {
    struct {
        const char* format;
        const char* types;
        std::vector<word> words;
        const char* place;
    } const cases[] = {
        {"%apend", "II", {5, 3}, "20,24"},       {"first%rpend", "II", {2, 1}, "8,16"},
        {"%2tl\tend", "II", {3, 9}, "12,0"},     {"%2tl\t\tend", "II", {3, 9}, "36,0"},
        {"%2tl\t\t\tend", "II", {3, 9}, "64,0"}, {"%xw%xdfirst\nend", "II", {20, 6}, "0,24"},
    };
    for (const auto& each : cases) {
        std::vector<word> all{w(&window_variable)};
        all.insert(all.end(), each.words.begin(), each.words.end());
        internal_winio((std::string("%lw") + each.format).c_str(),
                       (std::string("*I") + each.types).c_str(), all.data(),
                       static_cast<std::int32_t>(all.size()));
        EXPECT_EQ(place_of(test::newest(), "end"), each.place) << each.format;
        test::close_all();
    }
}

TEST_F(Layout, FractionsOfCellsAreCutToUnits) {
    setenv("TARN_DISPLAY", "memory", 1);
    for (const auto& [x, col] : {std::pair{2.5, 10}, {2.6, 10}, {2.75, 11}}) {
        word words[3] = {w(&window_variable)};
        const double y = 0.0;
        std::memcpy(&words[1], &x, sizeof x);
        std::memcpy(&words[2], &y, sizeof y);
        internal_winio("%lw%`apend", "*IFF", words, 3);
        EXPECT_EQ(place_of(test::newest(), "end"), std::to_string(col) + ",0") << x;
        test::close_all();
    }
}

// Frames and bars of a deep box belong to its line: the next one begins below them, at the left.
TEST_F(Layout, LinesAreAsDeepAsFramesAndBars) {
    static char text[100];
    static std::int32_t page = 10, range = 100, at = 0, number = 0;
    const auto below = [](const fancy_window* window) {
        const window_control* deep = window->first_control;
        while (deep->type != control_type::buffer_box) deep = deep->next;
        const window_control* next = deep->next;
        while (next->type != control_type::integer_box) next = next->next;
        return std::pair(next->x - deep->x, next->y >= deep->y + deep->height);
    };
    const std::pair in_column(0, true);
    EXPECT_EQ(below(open("%sy[3d]%20.3re%nl%10rd", "*CI*I", {w(text), 100, w(&number)})),
              in_column);
    EXPECT_EQ(below(open("%hx%20.3re%nl%10rd", "*I*I*I*CI*I",
                         {w(&page), w(&range), w(&at), w(text), 100, w(&number)})),
              in_column);
}

// A string that is a control of its own stands on the base of the text beside it.
TEST_F(Layout, StringControlsStandOnTheirLine) {
    const char* text = "control";
    const fancy_window* window =
        open("above\n%fn[user_default]%ts[1.5]large%ts[1]%ws[left]small", "*C", {w(text)});
    const auto line_of = [&](const char* piece) {
        const std::string place = place_of(window, piece);
        return place.substr(place.find(',') + 1);
    };
    EXPECT_EQ(line_of(text), line_of("small"));
    EXPECT_LT(std::stoi(line_of("large")), std::stoi(line_of(text)));
}

// ---- Placing -----------------------------------------------------------------------------------
// The records of a window under construction, without a format.
class Placing : public testing::Test {
  protected:
    Placing() {
        setenv("TARN_DISPLAY", "memory", 1);
        initialise_quillpan_plus();
        builder() = {};
        current_window() = new_fancy_window();
        begin_layout();
    }
    ~Placing() override {
        end_layout();
        destroy_fancy_window(current_window());
        current_window() = nullptr;
    }
    static window_control* place(std::int32_t width, std::int32_t height) {
        window_control* control = new_window_control(control_type::owner_draw);
        control->width = width;
        control->height = height;
        locate(control, 0);
        return control;
    }
};

bool overlap(const window_control& a, const window_control& b) {
    return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height &&
           b.y < a.y + a.height;
}

TEST_F(Placing, ControlsNeverOverlap) {
    std::mt19937 draw(11);
    std::vector<window_control*> placed;
    for (int i = 0; i < 300; ++i) {
        switch (draw() % 6) {
            case 0:
                next_line();
                break;
            case 1:
                tabulate();
                break;
            case 2:
                builder().row = static_cast<std::int32_t>(draw() % 200);
                break;
            default:
                break;
        }
        window_control* fresh = place(1 + draw() % 90, 1 + draw() % 30);
        for (const window_control* other : placed)
            ASSERT_FALSE(overlap(*fresh, *other)) << i << ": " << fresh->x << "," << fresh->y << " "
                                                  << fresh->width << "x" << fresh->height;
        placed.push_back(fresh);
    }
}

TEST_F(Placing, WrapsAtTheEdgeAndReportsOnceWhatIsTooBig) {
    place(1000, 8);
    const window_control* wrapped = place(500, 8);
    EXPECT_EQ(wrapped->x, 0);
    EXPECT_EQ(wrapped->y, 8);
    testing::internal::CaptureStderr();
    const window_control* whole = place(records().occupancy_width, records().occupancy_height);
    const std::string said = testing::internal::GetCapturedStderr();
    const std::size_t first = said.find("Control is too big for window");
    EXPECT_NE(first, std::string::npos) << said;
    EXPECT_EQ(said.find("Control is too big", first + 1), std::string::npos);
    EXPECT_EQ(whole->x, 0);
}

// What a window used is what the next one must find empty.
TEST_F(Placing, TheNextWindowFindsAnEmptyMap) {
    place(300, 300);
    end_layout();
    begin_layout();
    EXPECT_FALSE(block_is_occupied(0, 0, 400, 400));
    EXPECT_EQ(the_bottom(), 300) << "the extent is the window's, not the map's";
}

TEST_F(Placing, AMillionLinesEndSoon) {
    for (int i = 0; i < 1'000'000; ++i) next_line();
    EXPECT_LT(current_window()->control_count, 1000);
    EXPECT_GE(builder().row, records().occupancy_height);
}

TEST_F(Placing, ATinyTextScaleEndsTheSearch) {
    current_window()->text_scale = 0.01;
    testing::internal::CaptureStderr();
    place(records().occupancy_width + 40, 8);
    place(records().occupancy_width + 40, 8);
    testing::internal::GetCapturedStderr();
}

// ---- Lines -------------------------------------------------------------------------------------
const window_control* piece(const fancy_window* window, const std::string& text) {
    for (const window_control* c = window->first_control; c; c = c->next)
        if (c->text && text == c->text && c->type != control_type::box_frame) return c;
    ADD_FAILURE() << text << " is missing";
    return window->first_control;
}

TEST_F(Layout, LinesEndCentredAndJustifiedAgainstTheWholeWindow) {
    const fancy_window* window =
        open("%cnshort\n%rjright\nthe widest line of this window\n%`cnone\nand all after");
    const window_control* widest = piece(window, "the widest line of this window");
    const auto middle = [](const window_control* c) { return 2 * c->x + c->width; };
    EXPECT_NEAR(middle(piece(window, "short")), middle(widest), 1);
    EXPECT_NEAR(middle(piece(window, "one")), middle(widest), 1);
    EXPECT_NEAR(middle(piece(window, "and all after")), middle(widest), 1);
    const window_control* right = piece(window, "right");
    EXPECT_EQ(right->x + right->width, widest->x + widest->width);
}

TEST_F(Layout, LinesOfACellKeepToTheCell) {
    const fancy_window* window = open(
        "%ob%`cntiny\nthe cell's widest\ntiny too\n%rjat the right%cb\n"
        "a line of the window that is much wider than the cell");
    const window_control* frame =
        test::nth(const_cast<fancy_window*>(window), control_type::box_frame);
    const auto middle = [](const window_control* c) { return 2 * c->x + c->width; };
    for (const char* text : {"tiny", "the cell's widest", "tiny too"})
        EXPECT_NEAR(middle(piece(window, text)), middle(frame), 2) << text;
    const window_control* right = piece(window, "at the right");
    EXPECT_EQ(right->x + right->width, frame->x + frame->width - 4);
}

TEST_F(Layout, AMixedLineStandsOnOneBase) {
    const fancy_window* window = open("%fn[Liberation Sans]small%ts[2.0]BIG%ts[1.0] small again");
    const auto base = [&](const char* text) { return piece(window, text)->base_line; };
    EXPECT_EQ(base("small"), base("BIG"));
    EXPECT_EQ(base(" small again"), base("BIG"));
    EXPECT_GT(piece(window, "small")->y, piece(window, "BIG")->y);
}

TEST_F(Layout, LabelsStandInTheMiddleOfTheirLine) {
    static std::int32_t number = 5;
    const fancy_window* window = open("Label: %rd%bt[Go]", "*I", {w(&number)});
    const auto middle = [](const window_control* c) { return c->top + c->bottom; };
    const window_control* button =
        test::nth(const_cast<fancy_window*>(window), control_type::button);
    const window_control* field =
        test::nth(const_cast<fancy_window*>(window), control_type::integer_box);
    EXPECT_NEAR(middle(piece(window, "Label: ")), middle(button), 2);
    EXPECT_NEAR(middle(field), middle(button), 2);
}

// ---- Boxes -------------------------------------------------------------------------------------
std::vector<const window_control*> frames_of(const fancy_window* window) {
    std::vector<const window_control*> frames;
    for (const window_control* c = window->first_control; c; c = c->next)
        if (c->type == control_type::box_frame) frames.insert(frames.begin(), c);
    return frames;
}

TEST_F(Layout, CellsOfABoxFormAGrid) {
    const fancy_window* window =
        open("%3.2obA%cbthe widest of its column%cbC%cbfirst\nsecond\nthird%cbE%cb%cnmiddle%cb");
    const auto frames = frames_of(window);
    ASSERT_EQ(frames.size(), 6u);
    for (std::size_t i = 0; i < 6; ++i) {
        const window_control& frame = *frames[i];
        EXPECT_EQ(frame.width, frames[i % 3]->width) << i;
        EXPECT_EQ(frame.height, frames[i / 3 * 3]->height) << i;
        if (i % 3) EXPECT_EQ(frame.x, frames[i - 1]->x + frames[i - 1]->width) << i;
        if (i > 2) EXPECT_EQ(frame.y, frames[i - 3]->y + frames[i - 3]->height) << i;
    }
    const window_control* centred = piece(window, "middle");
    EXPECT_NEAR(2 * centred->x + centred->width, 2 * frames[5]->x + frames[5]->width, 3);
    // Everything stays in its own cell.
    const char* const texts[] = {"A", "the widest of its column", "C", "third", "E", "middle"};
    for (std::size_t i = 0; i < 6; ++i) {
        const window_control* text = piece(window, texts[i]);
        EXPECT_GE(text->x, frames[i]->x) << texts[i];
        EXPECT_LE(text->x + text->width, frames[i]->x + frames[i]->width) << texts[i];
        EXPECT_GE(text->y, frames[i]->y) << texts[i];
        EXPECT_LE(text->y + text->height, frames[i]->y + frames[i]->height) << texts[i];
    }
}

TEST_F(Layout, NestedBoxesLieInsideEachOther) {
    const fancy_window* window =
        open("%ob[named_l][outer]%ob%ob[scored]deep%cb beside%cb%nlbelow%cb");
    const auto frames = frames_of(window);
    ASSERT_EQ(frames.size(), 3u);
    for (std::size_t i = 0; i + 1 < frames.size(); ++i) {
        const window_control &inner = *frames[i], &outer = *frames[i + 1];
        EXPECT_GT(inner.x, outer.x);
        EXPECT_GT(inner.y, outer.y);
        EXPECT_LE(inner.x + inner.width, outer.x + outer.width);
        EXPECT_LE(inner.y + inner.height, outer.y + outer.height);
    }
}

TEST_F(Layout, AStatusBoxReachesFromEdgeToEdge) {
    const fancy_window* window = open("a window\n%2ob[status]left%cbright%cb");
    const auto frames = frames_of(window);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[0]->x, 0);
    EXPECT_EQ(frames[1]->x + frames[1]->width, builder().max_x);
    EXPECT_EQ(window->margin_bottom, 0);
}

struct message_case {
    const char* format;
    const char* message;
};
class LayoutMessages : public Layout, public testing::WithParamInterface<message_case> {};

TEST_P(LayoutMessages, IsSaidAndTheWindowOpens) {
    testing::internal::CaptureStderr();
    const fancy_window* window = open(GetParam().format);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find(GetParam().message), std::string::npos) << said;
    EXPECT_NE(window, nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Survivable, LayoutMessages,
    testing::Values(message_case{"x%cb", "Attempt to close non-existent box - invalid use of %CB"},
                    message_case{"%cn%cnx", "More than one centre format on one line"},
                    message_case{"%rj%rjx", "More than one right justify format on one line"},
                    message_case{"%obx%cnx%cnx%cb", "More than one centre format on one line"},
                    message_case{"%pv%obx%cb", "A pivot must not be placed on a box"},
                    message_case{"%1.2ob[status]x%cb", "A status bar may not have multiple rows"},
                    message_case{"%obx", "Unclosed box"},
                    message_case{"%tlx", "%TL requires numeric parameter"},
                    message_case{"%ob%ln%cb", "%ln must not be within a %ob."}));

TEST_F(Layout, ThePenStaysInTheWindow) {
    testing::internal::CaptureStderr();
    const fancy_window* window = open("%apend", "II", {-3, -1});
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("Attempt to position off window left"), std::string::npos) << said;
    EXPECT_NE(said.find("Attempt to position off window top"), std::string::npos) << said;
    EXPECT_EQ(place_of(window, "end"), "0,0");
}

// ---- Another size ------------------------------------------------------------------------------
TEST_F(Layout, ScaledWindowsComeBackToTheirPlaces) {
    fancy_window* window = open("first%cnmiddle%rjlast\nnext line of some length");
    std::vector<std::array<std::int32_t, 4>> before;
    for (window_control* c = window->first_control; c; c = c->next)
        before.push_back({c->left, c->top, c->right, c->bottom});
    const std::int32_t width = window->base_width, height = window->base_height;
    re_scale_window(window, width + 100, height + 60);
    const window_control* middle = piece(window, "middle");
    const window_control* last = piece(window, "last");
    EXPECT_EQ(last->left, creation_rectangle(last).left + 100);
    EXPECT_EQ(middle->left, creation_rectangle(middle).left + 50);
    EXPECT_EQ(piece(window, "first")->left, creation_rectangle(piece(window, "first")).left);
    re_scale_window(window, width, height);
    std::size_t i = 0;
    for (window_control* c = window->first_control; c; c = c->next, ++i)
        EXPECT_EQ((std::array<std::int32_t, 4>{c->left, c->top, c->right, c->bottom}), before[i]);
}

// ---- Measuring ---------------------------------------------------------------------------------
TEST_F(Placing, TextsAreMeasured) {
    std::int32_t columns, lines;
    text_size("ab\r\nabcd\n", columns, lines);
    EXPECT_EQ(columns, 4);
    EXPECT_EQ(lines, 3);
    text_size("", columns, lines);
    EXPECT_EQ(columns, 0);
    EXPECT_EQ(lines, 1);
    for (const auto& [label, length] :
         {std::pair{"&Open", 4}, {"A && B", 5}, {"", 0}, {"end&", 3}, {"&&&x", 2}})
        EXPECT_EQ(strlena(label), length) << label;
    EXPECT_EQ(dpiScale(16), 32);
    const std::int32_t one = string_width(nullptr, "word");
    EXPECT_GT(one, 0);
    EXPECT_EQ(one, pixels_to_units_x(last_string_pixels()));
    EXPECT_GE(string_width(nullptr, "word word"), 2 * one - 1);
    std::int32_t width, depth;
    get_text_dimensions(current_window()->font, "", width, depth);
    EXPECT_EQ(width, 0);
    EXPECT_GT(depth, 0);
}

// The frame that the look promises stands around the field, unless it was declined.
TEST(LayoutPaint, FieldsOfTheThreeDimensionalLookHaveFrames) {
    static std::int32_t variable, number;
    for (const char* kind : {"3d", "3d_depressed", "3d_raised", "3d_thin"}) {
        const std::string format = std::string("%sy[") + kind + "]%rd%co[no_data_border]%rd%lw";
        test::form(format.c_str(), "*I*I*I",
                   {test::w(&number), test::w(&number), test::w(&variable)});
        fancy_window* window = test::newest();
        ASSERT_NE(window, nullptr);
        const platform::HDC dc = platform::CreateCompatibleDC(platform::HDC{});
        const platform::HBITMAP bitmap = platform::CreateCompatibleBitmap(dc, 400, 100);
        platform::SelectObject(dc, bitmap);
        fill_main_window(window, dc, {0, 0, 400, 100});
        const auto beside = [&](const window_control* field) {
            return platform::GetPixel(dc, field->left - 1, field->top + 5);
        };
        const COLORREF ground = platform::GetPixel(dc, 1, 1);
        EXPECT_NE(beside(test::nth(window, control_type::integer_box)), ground) << kind;
        EXPECT_EQ(beside(test::nth(window, control_type::integer_box, 1)), ground) << kind;
        platform::DeleteDC(dc);
        platform::DeleteObject(bitmap);
        test::close_all();
    }
}

}  // namespace
}  // namespace tarn::winio
