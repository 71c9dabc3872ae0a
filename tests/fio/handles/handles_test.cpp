// Fortran handles through their entries, on real files, pipes and bad input.
#include "tarn/handles.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fio/handles/table.h"
#include "frame/state.h"

namespace tarn::fio::handles {
namespace {

class Folder {
  public:
    Folder() {
        char name[] = "/tmp/tarn_handles_XXXXXX";
        path = ::mkdtemp(name);
    }
    ~Folder() { (void)std::system(("rm -rf '" + path + "'").c_str()); }
    std::string operator()(const std::string& name) const { return path + "/" + name; }
    std::string path;
};

std::string contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void put(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

constexpr int shared_update = TARN_SHARED_UPDATE | TARN_SHARE_ALL;

// What the entries take and give, as a C++ program would like it.
struct Session {
    std::int16_t handle = -1;
    std::int16_t error = 0;

    static Session open(const std::string& path, int mode) {
        Session s;
        s.handle = __fortran_open(path.c_str(), mode, &s.error);
        return s;
    }
    static Session open_shared(const std::string& path, int mode) {
        Session s;
        s.handle = __fortran_share_open(path.c_str(), mode, &s.error);
        return s;
    }
    void write(const std::string& bytes) {
        const auto count = static_cast<std::int32_t>(bytes.size());
        WRITEF_h(bytes.data(), &handle, &count, &error);
    }
    std::string read(std::int32_t count) {
        std::string bytes(static_cast<std::size_t>(std::max(count, 0)), '?');
        std::int32_t done = -99;
        READF_h(bytes.data(), &handle, &count, &done, &error);
        bytes.resize(static_cast<std::size_t>(done));
        return bytes;
    }
    std::string line(std::size_t room = 100) {
        std::string text(room, '?');
        std::int32_t length = -99;
        READFA_h(text.data(), &handle, &length, &error, static_cast<std::intptr_t>(room));
        return length < 0 ? "<end>" : text.substr(0, static_cast<std::size_t>(length));
    }
    std::int64_t position() {
        std::int64_t at = -99;
        RFPOSLONG_h(&handle, &at, &error);
        return at;
    }
    std::int64_t move(std::int64_t target) {
        std::int64_t at = -99;
        FPOSLONG_h(&handle, &target, &at, &error);
        return at;
    }
    void close() { CLOSEF_h(&handle, &error); }
};

class Buffering : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        frame::ensure_up();
        state().buffered = GetParam();
    }
    void TearDown() override { state().buffered = false; }
};
INSTANTIATE_TEST_SUITE_P(Handles, Buffering, testing::Bool(), [](const auto& info) {
    return info.param ? std::string("On") : std::string("Off");
});

TEST_P(Buffering, LinesEndAndLoseWhatTheyShould) {
    struct Row {
        std::string bytes;
        std::vector<std::string> lines;
        std::int64_t after_first;  // position behind the first line
    };
    const std::string long_line(9000, 'x');
    const Row rows[] = {
        {"", {"<end>", "<end>"}, 0},
        {"one\r\ntwo\nthree", {"one", "two", "three", "<end>"}, 5},
        {"\n\nx\n", {"", "", "x", "<end>"}, 1},
        {"a\n\rb\n\x1a", {"a", "b", "<end>"}, 3},
        {"a\rb\x1a\x1a"
         "c\n",
         {"abc", "<end>"},
         7},
        {"\r", {"<end>"}, 1},
        {"ab\tc\n\td\n", {"ab      c", "        d", "<end>"}, 5},
        {std::string("\0\xff", 2) + "\n", {std::string("\0\xff", 2), "<end>"}, 3},
        {long_line + "\r\nnext\n", {std::string(100, 'x'), "next", "<end>"}, 9002},
        // The line end and what follows it on both sides of the buffer's end.
        {std::string(4095, 'x') + "\n\r\x1a\nb", {std::string(100, 'x'), "", "b"}, 4098},
    };
    const Folder folder;
    for (const Row& row : rows) {
        put(folder("t"), row.bytes);
        for (const bool shared : {false, true}) {
            SCOPED_TRACE(row.bytes.substr(0, 20) + (shared ? " shared" : ""));
            Session s = shared ? Session::open_shared(folder("t"), shared_update)
                               : Session::open(folder("t"), TARN_HANDLE_READ);
            for (const std::string& line : row.lines) {
                EXPECT_EQ(s.line(), line);
                if (&line == &row.lines.front()) {
                    EXPECT_EQ(s.position(), row.after_first);
                }
            }
            EXPECT_EQ(s.error, 0);
            s.close();
        }
    }
}

TEST(Handles, TabsStayWhereAskedFor) {
    const Folder folder;
    put(folder("t"), "ab\tc\n");
    Session s = Session::open(folder("t"), TARN_HANDLE_READ);
    READ_TABS1_h(&s.handle);
    EXPECT_EQ(s.line(), "ab\tc");
    s.close();
    s = Session::open(folder("t"), TARN_HANDLE_READ);
    EXPECT_EQ(s.line(5), "ab   ");  // the next one that takes the record starts afresh
    s.close();
}

// The plain meaning of every operation, on a string.
struct Model {
    std::string bytes;
    std::size_t at = 0;

    std::string read(std::size_t count) {
        const std::string got = bytes.substr(at, count);
        at += got.size();
        return got;
    }
    void write(const std::string& text) {
        bytes.replace(at, std::min(text.size(), bytes.size() - at), text);
        at += text.size();
    }
    std::string line(std::size_t room) {
        std::string text;
        bool ended = false;
        for (; at < bytes.size(); ++at) {
            const char c = bytes[at];
            if (c == '\r' || c == 26) continue;
            if (ended) break;
            if (c == '\n') {
                ended = true;
            } else if (c == '\t') {
                text.append(8 - text.size() % 8, ' ');
            } else {
                text.push_back(c);
            }
        }
        return text.empty() && !ended ? "<end>" : text.substr(0, room);
    }
    std::size_t move(std::size_t target) { return at = std::min(target, bytes.size()); }
};

TEST_P(Buffering, AnyOrderOfOperationsMeansWhatItSays) {
    const Folder folder;
    std::mt19937 random(20);
    auto below = [&](std::size_t limit) { return random() % limit; };
    constexpr std::size_t lengths[] = {1, 7, 100, 4095, 4096, 4097, 9000};
    for (int round = 0; round < 30; ++round) {
        const std::string path = folder("f" + std::to_string(round));
        Session s = round % 3 == 0 ? Session::open_shared(path, shared_update)
                                   : Session::open(path, TARN_HANDLE_UPDATE);
        Model model;
        for (int step = 0; step < 60; ++step) {
            const std::size_t length = lengths[below(std::size(lengths))];
            switch (below(8)) {
                case 0:
                case 1: {
                    std::string text(length, ' ');
                    for (char& c : text) c = "abc \t\r\n\x1a"[below(60) < 53 ? below(4) : below(8)];
                    s.write(text);
                    model.write(text);
                    break;
                }
                case 2:
                    ASSERT_EQ(s.read(static_cast<std::int32_t>(length)), model.read(length));
                    break;
                case 3:
                    ASSERT_EQ(s.line(length), model.line(length));
                    break;
                case 4:
                    ASSERT_EQ(s.move(static_cast<std::int64_t>(length)), model.move(length));
                    break;
                case 5: {
                    const std::size_t to = below(model.bytes.size() + 5);
                    ASSERT_EQ(s.move(static_cast<std::int64_t>(to)), model.move(to));
                    break;
                }
                case 6:
                    if (below(4) == 0) {
                        FILE_TRUNCATE_h(&s.handle, &s.error);
                        model.bytes.resize(model.at);
                    } else {
                        std::int32_t end = 0;
                        FPOS_EOF_h(&s.handle, &end, &s.error);
                        ASSERT_EQ(end, model.move(std::string::npos));
                    }
                    break;
                default:
                    FLUSH_FORTRAN_HANDLE_h(&s.handle);
                    ASSERT_EQ(contents(path), model.bytes);
            }
            ASSERT_EQ(s.error, 0);
            ASSERT_EQ(s.position(), model.at);
        }
        s.close();
        ASSERT_EQ(contents(path), model.bytes);
    }
}

TEST(Handles, BufferHoldsWhatIsSmall) {
    const Folder folder;
    frame::ensure_up();
    state().buffered = true;
    Session s = Session::open(folder("t"), TARN_HANDLE_WRITE);
    struct Row {
        std::size_t count;
        std::size_t on_disk;
    };
    for (const Row& row : {Row{10, 0}, Row{5000, 5010}, Row{4000, 5010}, Row{96, 9106},
                           Row{4096, 13202}, Row{1, 13202}}) {
        s.write(std::string(row.count, 'x'));
        EXPECT_EQ(contents(folder("t")).size(), row.on_disk) << row.count;
    }
    EMPTY_h(&s.handle, &s.error);
    EXPECT_EQ(contents(folder("t")), "");
    s.write("kept");
    __unbuffer_handle(s.handle);
    s.write(" and more");
    EXPECT_EQ(contents(folder("t")), "kept and more");
    CLOSEFD_h(&s.handle, &s.error);
    EXPECT_EQ(s.error, 0);
    EXPECT_NE(::access(folder("t").c_str(), F_OK), 0);
    state().buffered = false;
}

TEST(Handles, OpeningTellsWhatIsWrong) {
    const Folder folder;
    put(folder("there"), "old");
    struct Row {
        std::string name;
        int mode;
        bool shared;
        int error;
        std::string left = "old";  // of the file "there"
    };
    const Row rows[] = {
        {"missing", TARN_HANDLE_READ, false, 2},
        {"no/such", TARN_HANDLE_WRITE, false, 2},
        {"there/under", TARN_HANDLE_READ, false, 3},
        {".", TARN_HANDLE_READ, false, 5},
        {".", TARN_HANDLE_WRITE, false, 5},
        {"there", 0, false, 5},
        {"there", 8, false, 5},
        {std::string(300, 'n'), TARN_HANDLE_UPDATE, false, 206},
        {"there", TARN_HANDLE_READ | TARN_HANDLE_WRITE, false, 0},
        {"there", mode_word_openrw, false, 0},
        {"there \t ", TARN_HANDLE_UPDATE, false, 0},
        {"missing", TARN_SHARED_READ, true, 2},
        {"there", 3, true, 5},
        {"there", TARN_SHARED_UPDATE | 0x50, true, 5},
        {"there", TARN_SHARED_WRITE | TARN_SHARE_NONE, true, 0},
        {"there", TARN_SHARED_UPDATE | TARN_SHARE_ALL, true, 0},
        {"there", mode_word_openw, false, 0, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name.substr(0, 20) + " " + std::to_string(row.mode));
        Session s = row.shared ? Session::open_shared(folder(row.name), row.mode)
                               : Session::open(folder(row.name), row.mode);
        EXPECT_EQ(s.error, row.error);
        EXPECT_EQ(s.handle == -1, row.error != 0);
        if (row.error == 0) s.close();
        EXPECT_EQ(contents(folder("there")), row.left);
    }
    Session s;
    const std::string with_zero = folder("the") + '\0' + "re";
    OPENR_h(with_zero.data(), &s.handle, &s.error, static_cast<std::intptr_t>(with_zero.size()));
    EXPECT_EQ(s.error, 123);
    const std::string filled = folder("there") + std::string(5, '\0');
    OPENR_h(filled.data(), &s.handle, &s.error, static_cast<std::intptr_t>(filled.size()));
    EXPECT_EQ(s.error, 0);
    s.close();
    OPENR_h(nullptr, &s.handle, &s.error, 0);
    EXPECT_EQ(s.error, 2);
}

TEST(Handles, WrongUseIsAnErrorAndHarmless) {
    const Folder folder;
    put(folder("t"), "text");
    Session reading = Session::open(folder("t"), TARN_HANDLE_READ);
    Session writing = Session::open(folder("w"), TARN_HANDLE_WRITE);
    Session closed = Session::open(folder("t"), TARN_HANDLE_READ);
    closed.close();

    char bytes[8];
    std::int32_t out = 0;
    std::int64_t out8 = 0;
    const std::int32_t four = 4;
    const std::int32_t less_than_none = -1;
    const std::int64_t less_than_none8 = -1;
    std::int16_t e = 0;
    using Call = std::function<void(const std::int16_t*)>;
    const Call read = [&](auto h) { READF_h(bytes, h, &four, &out, &e); };
    const Call read_line = [&](auto h) { READFA_h(bytes, h, &out, &e, 8); };
    const Call write = [&](auto h) { WRITEF_h("text", h, &four, &e); };
    const Call write_line = [&](auto h) { WRITEFA_h("text", h, &e, 4); };
    const Call truncate = [&](auto h) { FILE_TRUNCATE_h(h, &e); };
    const Call empty = [&](auto h) { EMPTY_h(h, &e); };
    struct Row {
        const char* what;
        Call call;
        int on_reading, on_writing, on_unknown;
    };
    const Row rows[] = {
        {"read", read, 0, 6, 6},
        {"read line", read_line, 0, 6, 6},
        {"write", write, 5, 0, 6},
        {"write line", write_line, 5, 0, 6},
        {"truncate", truncate, 6, 0, 6},
        {"empty", empty, 6, 0, 6},
        {"negative read", [&](auto h) { READF_h(bytes, h, &less_than_none, &out, &e); }, 87, 6, 6},
        {"negative line", [&](auto h) { READFA1_h(bytes, &less_than_none, h, &out, &e); }, 87, 6,
         6},
        {"negative write", [&](auto h) { WRITEF_h(bytes, h, &less_than_none, &e); }, 5, 87, 6},
        {"negative text", [&](auto h) { WRITEFA1_h(bytes, &less_than_none, h, &e); }, 87, 87, 6},
        {"before the start", [&](auto h) { FPOS_h(h, &less_than_none, &out, &e); }, 131, 131, 6},
        {"long before", [&](auto h) { FPOSLONG_h(h, &less_than_none8, &out8, &e); }, 131, 131, 6},
        {"position", [&](auto h) { RFPOS_h(h, &out, &e); }, 0, 0, 6},
        {"end", [&](auto h) { MOVE_TO_EOF_h(h, &out, &e); }, 0, 0, 6},
        {"long end", [&](auto h) { MOVE_TO_EOFLONG_h(h, &out8, &e); }, 0, 0, 6},
        {"flush", [&](auto h) { e = static_cast<std::int16_t>(FLUSH_FORTRAN_HANDLE_h(h)); }, 0, 0,
         6},
    };
    constexpr std::int16_t never_open[] = {-1, 0, 4, 300, INT16_MIN, INT16_MAX};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        row.call(&reading.handle);
        EXPECT_EQ(e, row.on_reading);
        row.call(&writing.handle);
        EXPECT_EQ(e, row.on_writing);
        row.call(&closed.handle);
        EXPECT_EQ(e, row.on_unknown);
        for (const std::int16_t handle : never_open) {
            row.call(&handle);
            EXPECT_EQ(e, row.on_unknown) << handle;
        }
    }
    for (const std::int16_t handle : never_open) {
        READ_TABS1_h(&handle);
        EXPECT_EQ(TRANSLATE_FORTRAN_HANDLE_h(&handle), -1);
        EXPECT_EQ(__is_repositionable(handle), 0);
        EXPECT_EQ(__fortran_closef(handle, 1), 6);
        EXPECT_EQ(__find_path_from_handle(handle, &out), nullptr);
        EXPECT_EQ(out, -1);
        char path[4] = {'?', '?', '?', '?'};
        GET_PATH_h(&handle, path, sizeof path);
        EXPECT_EQ(std::string(path, 4), "    ");
    }
    EXPECT_EQ(contents(folder("t")), "text");
    reading.close();
    writing.close();
}

TEST(Handles, SharingKeepsOthersOut) {
    const Folder folder;
    const std::string path = folder("t");
    Session alone = Session::open_shared(path, TARN_SHARED_UPDATE | TARN_SHARE_NONE);
    EXPECT_EQ(Session::open_shared(path, TARN_SHARED_READ | TARN_SHARE_ALL).error, 32);
    Session careless = Session::open(path, TARN_HANDLE_READ);  // asks for nothing, minds nothing
    EXPECT_EQ(careless.error, 0);
    careless.close();
    alone.close();
    Session first = Session::open_shared(path, shared_update);
    Session second = Session::open_shared(path, shared_update);
    first.write("seen at once");
    EXPECT_EQ(second.read(100), "seen at once");
    first.close();
    second.close();
}

TEST(Handles, NumbersBeginWithFiveAndComeBack) {
    EXPECT_EXIT(
        {
            const Folder folder;
            Session a = Session::open(folder("a"), TARN_HANDLE_WRITE);
            Session b = Session::open(folder("b"), TARN_HANDLE_WRITE);
            a.close();
            Session c = Session::open(folder("c"), TARN_HANDLE_WRITE);
            const bool good = a.handle == 5 && b.handle == 6 && c.handle == 5;
            _exit(good ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            frame::ensure_up();
            state().next_number = -1;
            state().free = nullptr;
            Session::open("/dev/null", TARN_HANDLE_READ);
        },
        testing::ExitedWithCode(1), "Error +116");
}

TEST(Handles, PathsAndHandlesFindEachOther) {
    const Folder folder;
    put(folder("t"), "");
    ASSERT_EQ(::mkdir(folder("x").c_str(), 0700), 0);
    ASSERT_EQ(::symlink(folder("t").c_str(), folder("link").c_str()), 0);
    Session s = Session::open(folder("t"), TARN_HANDLE_READ);
    auto handle_of = [](const std::string& path) {
        std::int16_t handle = 0;
        GET_HANDLE_h(path.data(), &handle, static_cast<std::intptr_t>(path.size()));
        return handle;
    };
    EXPECT_EQ(handle_of(folder("t") + "  "), s.handle);
    EXPECT_EQ(handle_of(folder("./x/../t")), s.handle);
    EXPECT_EQ(handle_of(folder("link")), s.handle);
    EXPECT_EQ(handle_of(folder("T")), -1);  // case counts
    EXPECT_EQ(handle_of(""), -1);
    std::int32_t length = 0;
    EXPECT_EQ(__find_path_from_handle(s.handle, &length), folder("t"));
    EXPECT_EQ(length, static_cast<std::int32_t>(folder("t").size()));
    s.close();
    EXPECT_EQ(handle_of(folder("t")), -1);
}

TEST(Handles, PipesGiveWhatIsThere) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    frame::ensure_up();
    state().buffered = true;
    Session in;
    Session out;
    in.handle = __allocate_fortran_handle(ends[0], TARN_HANDLE_READ);
    out.handle = __allocate_fortran_handle(ends[1], TARN_HANDLE_WRITE);
    state().buffered = false;
    EXPECT_EQ(__is_repositionable(in.handle), 0);
    // None of these waits for more than was written.
    out.write("line\nrest");
    EXPECT_EQ(in.line(), "line");
    EXPECT_EQ(in.read(100), "rest");
    out.write(std::string(6000, 'x'));
    EXPECT_EQ(in.read(10000), std::string(6000, 'x'));
    // Neither moves nor cuts anything.
    in.move(0);
    EXPECT_EQ(in.error, 0);
    FILE_TRUNCATE_h(&out.handle, &out.error);
    EXPECT_EQ(out.error, 0);
    in.close();
    out.write("nobody");
    EXPECT_EQ(out.error, 109);
    out.close();
    EXPECT_EQ(__allocate_fortran_handle(ends[1], TARN_HANDLE_READ), -1);
}

TEST_P(Buffering, AFileMayShrinkWhileItIsRead) {
    const Folder folder;
    put(folder("t"), std::string(10000, 'x'));
    Session s = Session::open(folder("t"), TARN_HANDLE_READ);
    EXPECT_EQ(s.read(5000).size(), 5000);
    ASSERT_EQ(::truncate(folder("t").c_str(), 100), 0);
    EXPECT_EQ(s.read(6000), "");
    EXPECT_EQ(s.line(), "<end>");
    EXPECT_EQ(s.error, 0);
    s.close();
}

// Writes more than the process may, so that the system refuses as a full disk does.
void fill_up() {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{1000, 1000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

TEST(Handles, AFullDiskIsTold) {
    EXPECT_EXIT(
        {
            const Folder folder;
            fill_up();
            Session s = Session::open(folder("t"), TARN_HANDLE_WRITE);
            s.write(std::string(5000, 'x'));
            const bool direct = s.error == 112;
            s.close();
            _exit(direct && s.error == 0 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    // What a program leaves for its end.
    const Folder folder;
    EXPECT_EXIT(
        {
            __init_f95_io();
            frame::ensure_up();
            fill_up();
            Session s = Session::open(folder("t"), TARN_HANDLE_WRITE);
            s.write(std::string(3000, 'x'));
            __flush_fortran_io();
            _exit(s.error);
        },
        testing::ExitedWithCode(1), "Error +117, Disk full\n    on file '.*/t'");
}

}  // namespace
}  // namespace tarn::fio::handles
