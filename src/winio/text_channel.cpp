#include "winio/text_channel.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/user/user.h"

namespace tarn::winio {
namespace {

using platform::HWND;

struct channel {
    HWND hwnd;
    int file;
    std::uint32_t message;
    std::string path;
};
std::vector<channel>& channels() {
    static auto* all = new std::vector<channel>;
    return *all;
}

// A descriptor that is closed when it is left.
class descriptor {
  public:
    explicit descriptor(int file) : file_(file) {}
    ~descriptor() {
        if (file_ >= 0) close(file_);
    }
    descriptor(const descriptor&) = delete;
    descriptor& operator=(const descriptor&) = delete;
    int get() const { return file_; }
    int release() { return std::exchange(file_, -1); }

  private:
    int file_;
};

// A folder that only this user can write to; empty when there is none.
std::string private_folder() {
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    struct stat facts {};
    if (!folder || folder[0] != '/' || stat(folder, &facts) != 0) return {};
    const bool own = S_ISDIR(facts.st_mode) && facts.st_uid == geteuid() &&
                     (facts.st_mode & (S_IWGRP | S_IWOTH)) == 0;
    return own ? folder : std::string();
}

// False: a folder or a class whose name is too long, or no folder.
bool address_of(const char* class_name, sockaddr_un& address) {
    std::string path = private_folder();
    if (path.empty() || !class_name || !*class_name) return false;
    path += "/tarn-window-";
    for (const char* c = class_name; *c; ++c) {
        constexpr char digits[] = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(*c);
        const bool plain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                           (byte >= '0' && byte <= '9');
        if (plain) {
            path.push_back(*c);
        } else {
            path += {'%', digits[byte >> 4], digits[byte & 15]};
        }
    }
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return false;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return true;
}

bool is_own_user(int file) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(file, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
}

int connect_to(const sockaddr_un& address) {
    descriptor file(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (file.get() < 0) return -1;
    if (connect(file.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return -1;
    return file.release();
}

bool send_all(int file, const text_message& text) {
    return send(file, text, sizeof text, MSG_NOSIGNAL) == static_cast<ssize_t>(sizeof text);
}

bool receive_all(int file, text_message& text) {
    if (recv(file, text, sizeof text, MSG_WAITALL) != static_cast<ssize_t>(sizeof text))
        return false;
    text[text_message_size - 1] = 0;
    return true;
}

channel* find_channel(HWND hwnd) {
    for (channel& each : channels()) {
        if (each.hwnd == hwnd) return &each;
    }
    return nullptr;
}

// Waits until `file` can be read, and lets this program's windows answer others meanwhile: two
// programs may be asking each other.
bool wait_for_answer(int file) {
    for (;;) {
        std::vector<pollfd> files{{file, POLLIN, 0}};
        for (const channel& each : channels()) files.push_back({each.file, POLLIN, 0});
        if (poll(files.data(), files.size(), -1) < 0 && errno != EINTR) return false;
        if (files[0].revents != 0) return true;
        for (std::size_t i = 1; i < files.size(); ++i) {
            if (files[i].revents == 0) continue;
            for (const channel& each : std::vector<channel>(channels())) {
                if (each.file == files[i].fd) platform::SendMessageA(each.hwnd, each.message, 0, 0);
            }
        }
    }
}

}  // namespace

void open_text_channel(HWND hwnd, const char* class_name, std::uint32_t message) {
    sockaddr_un address{};
    if (find_channel(hwnd) || !address_of(class_name, address)) return;
    // A name that is left over from a program that was killed is taken.
    if (descriptor other(connect_to(address)); other.get() >= 0) return;
    if (errno == ECONNREFUSED) unlink(address.sun_path);
    descriptor file(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    constexpr int waiting = 16;
    if (file.get() < 0 ||
        bind(file.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(file.get(), waiting) != 0)
        return;
    platform::WatchFile(hwnd, file.get(), message);
    channels().push_back({hwnd, file.release(), message, address.sun_path});
}

void close_text_channel(HWND hwnd) {
    const channel* found = find_channel(hwnd);
    if (!found) return;
    platform::UnwatchFile(found->file);
    close(found->file);
    unlink(found->path.c_str());
    channels().erase(channels().begin() + (found - channels().data()));
}

void serve_text_channel(HWND hwnd, void (*serve)(HWND, const text_message&, text_message&)) {
    const channel* found = find_channel(hwnd);
    if (!found) return;
    const int listening = found->file;
    descriptor caller(accept4(listening, nullptr, nullptr, SOCK_CLOEXEC));
    platform::WatchAgain(listening);
    if (caller.get() < 0 || !is_own_user(caller.get())) return;
    // Callers send what they have to say at once; one that doesn't must not hold up the windows.
    const timeval patience{1, 0};
    setsockopt(caller.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    text_message text{}, reply{};
    if (!receive_all(caller.get(), text)) return;
    serve(hwnd, text, reply);
    send_all(caller.get(), reply);
}

bool send_through_channel(const char* class_name, const text_message& text, text_message& reply) {
    sockaddr_un address{};
    if (!address_of(class_name, address)) return false;
    descriptor file(connect_to(address));
    return file.get() >= 0 && is_own_user(file.get()) && send_all(file.get(), text) &&
           wait_for_answer(file.get()) && receive_all(file.get(), reply);
}

}  // namespace tarn::winio
