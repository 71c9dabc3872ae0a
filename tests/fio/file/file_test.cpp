// The file layer on real files: positions, text records, the end of a file, bad input.
#include "fio/file/file.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fio/dialect.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

constexpr int read_mode = 0x20;
constexpr int both_mode = 0x22;

class Folder {
  public:
    Folder() {
        char name[] = "/tmp/tarn_file_XXXXXX";
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

// A unit outside the list.
struct Connection {
    explicit Connection(const std::string& path, int mode = both_mode, bool create = false)
        : unit(Unit_create(7, true)) {
        unit->kind = UnitKind::text;
        sys_fileOpen(*unit, path, mode, err, create);
    }
    ~Connection() {
        int ignored = 0;
        if (unit->file.descriptor >= 0) sys_fileClose(*unit, ignored);
        Unit_free(unit);
    }
    std::string line(std::size_t capacity = 1000) {
        std::string text(capacity, '?');
        const std::ptrdiff_t n = sys_fileReadText(*unit, text.data(), capacity, err);
        return n < 0 ? "<end>" : text.substr(0, static_cast<std::size_t>(n));
    }
    void check() const {
        const File& f = unit->file;
        if (f.dirty) return;
        EXPECT_EQ(f.buffer_position + static_cast<std::int64_t>(f.read_index), f.logical_position);
        EXPECT_EQ(f.buffer_position + static_cast<std::int64_t>(f.data_count), f.real_position);
        EXPECT_EQ(::lseek(f.descriptor, 0, SEEK_CUR), f.real_position);
    }
    Unit* unit;
    int err = 0;
};

TEST(FileText, RecordsOfEitherDialect) {
    const Folder folder;
    const std::string path = folder("t");
    const std::string full_buffer(8191, 'x');
    struct Row {
        const Dialect* dialect;
        std::string bytes;
        std::vector<std::string> records;
    };
    const Row rows[] = {
        {&native_dialect, "one\r\ntwo\nthree", {"one", "two", "three", "<end>", "<end>"}},
        {&native_dialect, "\r\n\r\nx\r\n", {"", "", "x", "<end>"}},
        {&native_dialect, "", {"<end>"}},
        {&native_dialect, "a\x1a\x62\r\n\x1a", {"ab", "<end>"}},
        {&native_dialect, "abc\td\n\tz\n", {"abc     d", "        z", "<end>"}},
        {&native_dialect, "a\rb\r\r\n", {"ab", "<end>"}},
        {&native_dialect, full_buffer + "\r\nnext\r\n", {full_buffer, "next", "<end>"}},
        {&native_dialect, full_buffer + full_buffer + "\n", {full_buffer + full_buffer, "<end>"}},
        {&gnu_dialect, "a\rb\r\n\x1a\tc\n", {"a\rb", "\x1a\tc", "<end>"}},
        {&gnu_dialect, full_buffer + "\r\nn\r", {full_buffer, "n\r", "<end>"}},
        {&gnu_dialect, full_buffer + "\rx\n", {full_buffer + "\rx", "<end>"}},
    };
    for (const Row& row : rows) {
        put(path, row.bytes);
        Connection file(path, read_mode);
        file.unit->dialect = row.dialect;
        for (const std::string& record : row.records) {
            EXPECT_EQ(file.line(20000), record);
            file.check();
        }
    }
}

TEST(FileText, LongRecordIsCutAndTabsMayStay) {
    const Folder folder;
    put(folder("t"), std::string(100, 'y') + "\n\tb\nlast\n");
    Connection file(folder("t"), read_mode);
    EXPECT_EQ(file.line(80), std::string(80, 'y'));
    file.unit->file.keep_tabs = true;
    EXPECT_EQ(file.line(), "\tb");
    file.unit->file.keep_tabs = false;
    EXPECT_EQ(file.line(), "last");
}

TEST(FileText, StreamAndDirectTakeBytesAsTheyStand) {
    const Folder folder;
    put(folder("t"), "a\r\nb\tc");
    Connection stream(folder("t"), read_mode);
    stream.unit->status.stream = true;
    EXPECT_EQ(stream.line(), "a\r\nb\tc");
    Connection direct(folder("t"), read_mode);
    direct.unit->status.direct = true;
    EXPECT_EQ(direct.line(4), "a\r\nb");
}

// What is written by pieces of any size, with seeks and reads in between, is what a plain string
// would hold.
TEST(FileBinary, BehavesAsAStringOfBytes) {
    const Folder folder;
    Connection file(folder("t"), both_mode, true);
    std::string model;
    std::size_t at = 0;
    std::uint32_t random = 12345;
    auto next = [&random](std::uint32_t below) {
        random = random * 1664525U + 1013904223U;
        return (random >> 8) % below;
    };
    for (int i = 0; i < 4000; i++) {
        const std::uint32_t length = next(4) == 0 ? next(20000) : next(300);
        switch (next(5)) {
            case 0: {
                std::int64_t position = 0;
                const std::uint32_t target = next(60000);
                sys_fileSeek(*file.unit, target, position, file.err);
                at = std::min<std::size_t>(target, model.size());
                ASSERT_EQ(position, static_cast<std::int64_t>(at));
                break;
            }
            case 1:
            case 2: {
                std::string bytes(length, '\0');
                for (char& c : bytes) c = static_cast<char>('a' + next(26));
                sys_fileWrite(*file.unit, bytes.data(), length, file.err);
                if (model.size() < at + length) model.resize(at + length);
                model.replace(at, length, bytes);
                at += length;
                break;
            }
            case 3: {
                std::string bytes(length, '\0');
                const std::size_t n = sys_fileRead(*file.unit, bytes.data(), length, file.err);
                const std::string expected = model.substr(at, length);
                ASSERT_EQ(bytes.substr(0, n), expected);
                at += n;
                break;
            }
            default:
                if (next(20) == 0) {
                    sys_truncateFile(*file.unit, false, file.err);
                    model.resize(at);
                }
        }
        ASSERT_EQ(file.err, 0);
        file.check();
    }
    sys_flushWriteBuffer(*file.unit);
    EXPECT_EQ(contents(folder("t")), model);
}

TEST(FileBinary, SeekBehindTheEndLandsAtItUnlessAHoleIsWanted) {
    const Folder folder;
    Connection file(folder("t"), both_mode, true);
    sys_fileWrite(*file.unit, "abc", 3, file.err);
    std::int64_t position = 0;
    sys_fileSeek(*file.unit, 100, position, file.err);
    EXPECT_EQ(position, 3);
    file_seek(file.unit->file, 5, file.err);
    sys_fileWrite(*file.unit, "f", 1, file.err);
    sys_flushWriteBuffer(*file.unit);
    EXPECT_EQ(contents(folder("t")), std::string("abc\0\0f", 6));
}

TEST(FileOpen, BadInput) {
    const Folder folder;
    put(folder("readonly"), "x");
    ::chmod(folder("readonly").c_str(), 0444);
    struct Row {
        std::string name;
        int mode;
        int error;
    };
    const Row rows[] = {
        {folder("missing"), read_mode, 2},
        {folder("missing/below"), both_mode, 2},
        {folder("readonly/below"), both_mode, 3},
        {folder.path, read_mode, 5},
        {folder.path, both_mode, 5},
        {folder(std::string(300, 'n')), both_mode, 206},
        {folder("any"), 0x23, 5},
        {folder("any"), 0x52, 5},
        {"", both_mode, 2},
    };
    for (const Row& row : rows) {
        Connection file(row.name, row.mode);
        EXPECT_EQ(file.err, row.error) << row.name;
        EXPECT_LT(file.unit->file.descriptor, 0);
    }
    Connection file(folder("readonly"), read_mode);
    int err = 0;
    sys_fileWrite(*file.unit, "x", 1, err);
    EXPECT_EQ(err, error_access_denied);
    sys_truncateFile(*file.unit, true, err);
    EXPECT_EQ(err, error_access_denied);
}

TEST(FileOpen, FullDiskIsReportedAndDevicesTakeAnyPositioning) {
    Connection full("/dev/full", 0x21);
    sys_fileWrite(*full.unit, "abc", 3, full.err);
    EXPECT_EQ(sys_flushWriteBuffer(*full.unit), error_disk_full);
    EXPECT_EQ(errno, ENOSPC);
    Connection null("/dev/null");
    std::int64_t position = -1;
    sys_fileSeek(*null.unit, 100, position, null.err);
    EXPECT_EQ(null.err, 0);
    sys_fileSeekToEOF(*null.unit, position, null.err);
    EXPECT_EQ(null.err, 0);
    sys_truncateFile(*null.unit, true, null.err);
    EXPECT_EQ(null.err, 0);
    EXPECT_EQ(null.line(), "<end>");
}

TEST(FileNames, ResolveFindRenameDelete) {
    const Folder folder;
    ::mkdir(folder("real").c_str(), 0777);
    ::mkdir(folder("real/deep").c_str(), 0777);
    ASSERT_EQ(::symlink("real/deep", folder("link").c_str()), 0);
    int err = 0;
    EXPECT_EQ(sys_resolvePathName(folder("./a//b/  "), err), folder("a/b"));
    EXPECT_EQ(sys_resolvePathName(folder("real/../x"), err), folder("x"));
    EXPECT_EQ(sys_resolvePathName(folder("link/../x"), err), folder("link/../x"));
    put(folder("one"), "1");
    put(folder("two"), "2");
    ASSERT_EQ(::link(folder("one").c_str(), folder("alias").c_str()), 0);
    sys_renameFile(folder("one"), folder("two"), err);
    EXPECT_EQ(err, 183);
    EXPECT_EQ(contents(folder("two")), "2");
    sys_renameFile(folder("two"), folder("three  "), err);
    EXPECT_EQ(err, 0);
    EXPECT_EQ(contents(folder("three")), "2");
    Connection file(folder("one"), read_mode);
    UnitList_insert(file.unit);
    EXPECT_EQ(sys_findUnitFromFilename(folder("alias ")), file.unit);
    EXPECT_EQ(sys_findUnitFromFilename(folder("three")), nullptr);
    EXPECT_EQ(sys_findUnitFromFilename("  "), nullptr);
    UnitList_remove(file.unit);
    sys_deleteFile(folder("alias"), err);
    EXPECT_EQ(err, 0);
    sys_deleteFile(folder("alias"), err);
    EXPECT_EQ(err, 2);
    EXPECT_FALSE(sys_fileExists(folder.path));
    EXPECT_TRUE(sys_fileExists(folder("three")));
}

TEST(FileNames, DevicesAreNotDeleted) {
    const Folder folder;
    constexpr unsigned null_major = 1;
    constexpr unsigned null_minor = 3;
    if (::mknod(folder("null").c_str(), S_IFCHR | 0600, makedev(null_major, null_minor)) != 0) {
        GTEST_SKIP() << "only root makes devices";
    }
    int err = -1;
    sys_deleteFile(folder("null"), err);
    EXPECT_EQ(err, 0);
    EXPECT_TRUE(sys_fileExists(folder("null")));
    ASSERT_EQ(::unlink(folder("null").c_str()), 0);
}

TEST(FileNames, TemporaryNamesAreTakenAtOnce) {
    int err = 0;
    const std::string a = sys_createTempFilename(err);
    const std::string b = sys_createTempFilename(err);
    EXPECT_NE(a, b);
    EXPECT_TRUE(sys_fileExists(a) && sys_fileExists(b));
    EXPECT_EQ(a.substr(a.rfind('/') + 1, 2), "F$");
    EXPECT_EQ(a.size() - a.rfind('/') - 1, std::string("F$000001.tmp").size());
    sys_deleteFile(a, err);
    sys_deleteFile(b, err);
}

TEST(FileShare, OpenersRefuseEachOtherAsTheySaid) {
    const Folder folder;
    put(folder("t"), "x");
    constexpr int nobody = 0x10;
    constexpr int readers = 0x20;
    constexpr int writers = 0x30;
    constexpr int all = 0x40;
    struct Row {
        int first, second;
        bool second_gets_it;
    };
    const Row rows[] = {
        {nobody | 2, all | 0, false},     {all | 0, nobody | 2, false},
        {all | 2, all | 2, true},         {readers | 2, all | 0, true},
        {readers | 2, all | 1, false},    {readers | 0, all | 2, false},
        {writers | 1, all | 1, true},     {writers | 1, all | 0, false},
        {readers | 0, readers | 0, true}, {writers | 1, writers | 1, true},
    };
    for (const Row& row : rows) {
        Connection first(folder("t"), row.first | mode_share_given);
        ASSERT_EQ(first.err, 0);
        Connection second(folder("t"), row.second | mode_share_given);
        EXPECT_EQ(second.err, row.second_gets_it ? 0 : 32) << row.first << " " << row.second;
        Connection careless(folder("t"), both_mode);
        EXPECT_EQ(careless.err, 0);
    }
}

TEST(FileShare, RecordsOfManyProcessesStayWhole) {
    const Folder folder;
    constexpr int processes = 64;
    constexpr int records = 50;
    for (int p = 0; p < processes; p++) {
        if (::fork() == 0) {
            Connection file(folder("log"), 0x40 | 2 | mode_share_given);
            file.unit->dialect = &gnu_dialect;
            std::int64_t position = 0;
            sys_fileSeekToEOF(*file.unit, position, file.err);
            const std::string text(static_cast<std::size_t>(10 + p), static_cast<char>('0' + p));
            for (int i = 0; i < records; i++) {
                sys_fileWriteText(*file.unit, text.data(), text.size(), file.err);
            }
            ::_exit(file.err);
        }
    }
    for (int p = 0; p < processes; p++) {
        int status = -1;
        ::wait(&status);
        EXPECT_EQ(status, 0);
    }
    Connection file(folder("log"), read_mode);
    file.unit->dialect = &gnu_dialect;
    int count = 0;
    for (std::string line = file.line(); line != "<end>"; line = file.line()) {
        ASSERT_EQ(line, std::string(static_cast<std::size_t>(10 + line[0] - '0'), line[0]));
        count++;
    }
    EXPECT_EQ(count, processes * records);
}

}  // namespace
}  // namespace tarn::fio
