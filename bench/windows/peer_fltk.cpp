// The windows of windows.c in FLTK: peer_fltk open|resize|open-close|updates|lines|frames COUNT
#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Double_Window.H>
#include <FL/Fl_Input.H>
#include <FL/Fl_Multiline_Input.H>
#include <FL/Fl_Text_Display.H>
#include <FL/x.H>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

double now() {
    using namespace std::chrono;
    return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

double median(std::vector<double> values) {
    if (values.empty()) return -1;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// The picture is there when the server has done what it was asked, not only been asked.
void draw_all() {
    Fl::check();
    Fl::flush();
    XSync(fl_display, False);
}

Fl_Double_Window* two_hundred() {
    auto* window = new Fl_Double_Window(800, 800, "Two hundred");
    auto* notes = new Fl_Multiline_Input(20, 20, 580, 36);
    for (int i = 0; i < 100; ++i) {
        auto* box = new Fl_Input(80 + i % 5 * 145, 62 + i / 5 * 24, 64, 20);
        box->copy_label(("Field " + std::to_string(i)).c_str());
        if (i % 3 != 2) box->value("0");
    }
    for (int i = 0; i < 50; ++i) {
        auto* button = new Fl_Button(20 + i % 10 * 60, 542 + i / 10 * 30, 56, 26);
        button->copy_label(("Do " + std::to_string(i)).c_str());
    }
    for (int i = 0; i < 50; ++i) {
        auto* mark = new Fl_Check_Button(20 + i % 10 * 76, 692 + i / 10 * 18, 74, 18);
        mark->copy_label(("Mark " + std::to_string(i)).c_str());
    }
    window->end();
    window->resizable(notes);
    return window;
}

void show(Fl_Double_Window* window) {
    window->show();
    window->wait_for_expose();
    draw_all();
}

void open_windows(int count) {
    std::vector<double> times;
    double first = 0;
    for (int i = 0; i < count; ++i) {
        const double begin = now();
        Fl_Double_Window* window = two_hundred();
        show(window);
        if (i == 0)
            first = now() - begin;
        else
            times.push_back(now() - begin);
        delete window;
        draw_all();
    }
    std::printf("first %.4f\nlater %.4f\n", first, median(times));
}

void resize(int count) {
    Fl_Double_Window* window = two_hundred();
    show(window);
    std::vector<double> times;
    for (int i = 0; i < count; ++i) {
        const double begin = now();
        window->size(1000 + (i % 2 ? i : -i), 800 + i);
        draw_all();
        times.push_back(now() - begin);
    }
    std::printf("resize %.4f\n", median(times));
}

void open_close(int count) {
    std::vector<double> times;
    for (int i = 0; i < count; ++i) {
        const double begin = now();
        auto* window = new Fl_Double_Window(200, 80, "Area");
        new Fl_Input(60, 10, 80, 24, "Area");
        new Fl_Button(60, 44, 60, 26, "OK");
        window->end();
        show(window);
        delete window;
        draw_all();
        times.push_back(now() - begin);
    }
    std::printf("open-close %.4f\n", median(times));
}

void updates(int count) {
    auto* window = new Fl_Double_Window(500, 120);
    std::vector<Fl_Input*> boxes;
    for (int i = 0; i < 20; ++i)
        boxes.push_back(new Fl_Input(10 + i % 5 * 90, 10 + i / 5 * 26, 80, 22));
    window->end();
    show(window);
    const double begin = now();
    for (int i = 0; i < count; ++i) {
        char text[16];
        std::snprintf(text, sizeof text, "%d", i);
        boxes[i % 20]->value(text);
        if (i % 100 == 0) Fl::check();
    }
    draw_all();
    std::printf("changed %.0f\n", count / (now() - begin) * 1e3);
}

long resident() {
    char line[256];
    long kilobytes = 0;
    std::FILE* file = std::fopen("/proc/self/status", "r");
    while (file && std::fgets(line, sizeof line, file))
        if (std::sscanf(line, "VmRSS: %ld", &kilobytes) == 1) break;
    if (file) std::fclose(file);
    return kilobytes * 1024;
}

struct TextWindow {
    Fl_Double_Window window;
    Fl_Text_Display text;
    Fl_Text_Buffer buffer;
    TextWindow(int width, int height) : window(width, height), text(0, 0, width, height) {
        window.end();
        text.textfont(FL_COURIER);
        text.buffer(&buffer);
        show(&window);
    }
    ~TextWindow() { text.buffer(nullptr); }
};

void lines(int count) {
    TextWindow w(800, 600);
    const long before = resident();
    double bytes = 0;
    const double begin = now();
    for (int i = 0; i < count; ++i) {
        char line[80];
        bytes += std::snprintf(line, sizeof line, "%8d a line of a run's output, %8.3f of it\n",
                               i % 100, i % 100 * 0.01);
        w.buffer.append(line);
        if (i % 1000 == 0) {
            w.text.insert_position(w.buffer.length());
            w.text.show_insert_position();
            Fl::check();
        }
    }
    draw_all();
    std::printf("lines %.0f\n", count / (now() - begin) * 1e3);
    std::printf("line-bytes %.1f\n", (static_cast<double>(resident() - before) - bytes) / count);
}

void frames(int count) {
    TextWindow w(1920, 1080);
    std::vector<double> times;
    for (int i = 0; i < count; ++i) {
        std::string page;
        for (int row = 0; row < 80; ++row) {
            for (int column = 0; column < 230; ++column)
                page += static_cast<char>('!' + (row * 7 + column * 3 + i) % 90);
            page += '\n';
        }
        w.buffer.text(page.c_str());
        const double begin = now();
        draw_all();
        times.push_back(now() - begin);
    }
    std::printf("frame %.4f\n", median(times));
}

}  // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    const int count = argc > 2 ? std::atoi(argv[2]) : 1;
    if (mode == "open") open_windows(count);
    if (mode == "resize") resize(count);
    if (mode == "open-close") open_close(count);
    if (mode == "updates") updates(count);
    if (mode == "lines") lines(count);
    if (mode == "frames") frames(count);
    return 0;
}
