#include "diagnostics/mail_report.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

#include "diagnostics/report_cells.h"
#include "platform/kernel/config.h"
#include "platform/kernel/desktop.h"
#include "platform/kernel/module.h"

namespace tarn::diagnostics {
namespace {

constexpr const char* section = "EmailReport";
constexpr int page_with_button = 0;
constexpr int usual_method = 2;

struct Settings {
    std::string address, subject;
    int method = usual_method;
};

std::string value_of(std::string_view text, const char* key, const char* otherwise) {
    return platform::find_config_value(text, section, key).value_or(otherwise);
}

std::string start_of_file(const std::string& path) {
    std::string text(16 * 1024, '\0');
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    const ssize_t length = file >= 0 ? read(file, text.data(), text.size()) : 0;
    if (file >= 0) close(file);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    return text;
}

Settings read_settings() {
    const std::string path = settings_path(platform::program_path());
    if (path.empty()) return {};
    const std::string text = start_of_file(path);
    const std::string method = value_of(text, "Method", "");
    return {value_of(text, "ToAddr", ""), value_of(text, "Subject", "Application failure report"),
            method.empty() ? usual_method : std::atoi(method.c_str())};
}

// What would end the link, the script or the attribute that the text stands in.
bool needs_escape(char c) {
    return std::string_view("\"'<>&#%+").find(c) != std::string_view::npos ||
           static_cast<unsigned char>(c) < ' ';
}

void add_escaped(std::string& page, std::string_view text, bool in_script) {
    constexpr const char* digits = "0123456789ABCDEF";
    for (char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (needs_escape(c)) {
            page.append({'%', digits[byte >> 4], digits[byte & 15]});
        } else if (c == '\\' && in_script) {
            page.append("\\\\");
        } else {
            page.push_back(c);
        }
    }
}

void add_body(std::string& page, std::string_view report, bool in_script) {
    while (!report.empty()) {
        const std::size_t end = std::min(report.find('\n'), report.size());
        add_escaped(page, report.substr(0, end), in_script);
        page.append("%0D");
        report.remove_prefix(std::min(end + 1, report.size()));
    }
}

std::string temporary_page(std::string_view text) {
    const char* folder = std::getenv("TMPDIR");
    std::string path = folder != nullptr && *folder != 0 ? folder : "/tmp";
    path.append("/gmfXXXXXX.html");
    const int file = mkstemps(path.data(), 5);
    if (file < 0) return {};
    close(file);
    return write_file(path, text) ? path : std::string();
}

}  // namespace

// Programs have no extension here, as a rule; one that came with .exe keeps its settings' name.
std::string settings_path(std::string_view program) {
    const std::string_view name = program.substr(program.rfind('/') + 1);
    if (program.ends_with(".exe"))
        return std::string(program.substr(0, program.size() - 4)) + ".ini";
    return name.find('.') == std::string_view::npos ? std::string(program) + ".ini" : std::string();
}

std::string mail_page(int method, std::string_view address, std::string_view subject,
                      std::string_view report) {
    const bool in_script = method != page_with_button;
    std::string page =
        in_script ? "<!DOCTYPE html><html><body onload=\"javascript: "
                    "window.location.href='mailto:"
                  : "<!DOCTYPE html><html><body><p>Click on Create then click on Send when your "
                    "Email Client appears</p><p><a href=\"mailto:";
    add_escaped(page, address, in_script);
    page.append("?Subject=");
    add_escaped(page, subject, in_script);
    page.append("&amp;Body=");
    add_body(page, report, in_script);
    page.append(in_script ? "';\"></html>"
                          : "\" target=\"_top\"><input type=\"submit\" value=\"Create\"></a></p>"
                            "</body></html>");
    return page;
}

bool mail_is_set_up() {
    return !read_settings().address.empty();
}

std::string send_mail(std::string_view report) {
    const Settings settings = read_settings();
    if (settings.address.empty()) return {};
    std::string path =
        temporary_page(mail_page(settings.method, settings.address, settings.subject, report));
    if (path.empty() || platform::open_on_desktop(("file://" + path).c_str())) return path;
    unlink(path.c_str());
    return {};
}

}  // namespace tarn::diagnostics
