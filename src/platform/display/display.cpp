#include "platform/display/display.h"

#include <cstdlib>
#include <dlfcn.h>

#include "platform/display/environment.h"
#include "platform/display/memory.h"
#include "platform/kernel/console.h"
#include "platform/kernel/module.h"

namespace tarn::platform {
namespace {

Display* the_display = nullptr;

void lost(const char* message) {
    if (display_lost) display_lost(message);
    std::string line(message);
    line.push_back('\n');
    write_error_output(line);
    std::exit(1);
}

Display* load_x11(double scale, std::string& why_not) {
    std::string path = resource_folder() + "/libtarn_x11.so";
    void* module = load_library(path.c_str());
    if (!module) {
        const char* reason = dlerror();
        why_not = reason ? reason : path + " can't be loaded";
        return nullptr;
    }
    auto factory = reinterpret_cast<DisplayFactory>(procedure_address(module, "tarn_x11_display"));
    if (!factory) {
        why_not = path + " is no display of this library";
        return nullptr;
    }
    return factory({scale, lost}, why_not);
}

Display* make_display() {
    DisplayChoice choice = wanted_display();
    double scale = wanted_scale();
    const char* desktop = std::getenv("DISPLAY");
    if (choice == DisplayChoice::x11 ||
        (choice == DisplayChoice::automatic && desktop && *desktop)) {
        std::string why_not;
        if (Display* made = load_x11(scale, why_not)) return made;
        write_error_output("Warning: windows stay invisible: " + why_not + ".\n");
    }
    return make_memory_display(scale == 0.0 ? 1.0 : scale, wanted_monitors());
}

}  // namespace

void (*display_lost)(const char* message) = nullptr;

Display& display() {
    if (!the_display) the_display = make_display();
    return *the_display;
}

bool display_open() {
    return the_display != nullptr;
}

void inject_event(const Event& event) {
    display().inject(event);
}

bool injected_events_waiting() {
    return the_display && the_display->injected_waiting();
}

}  // namespace tarn::platform
