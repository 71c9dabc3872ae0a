// Units of the gnu dialect where whole programs can't look: threads, many units, other processes,
// failures that nobody catches.
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "fio/file/record_buffer.h"
#include "fio/gnu/close.h"
#include "fio/gnu/connection.h"
#include "fio/gnu/inquire.h"
#include "fio/gnu/open.h"
#include "fio/gnu/position.h"
#include "fio/gnu/unit_bytes.h"
#include "fio/unit.h"

namespace tarn::fio {
namespace {

class GnuUnits : public testing::Test {
  protected:
    GnuUnits() {
        char name[] = "/tmp/tarn_units_XXXXXX";
        folder_ = ::mkdtemp(name);
    }
    ~GnuUnits() override { (void)std::system(("rm -rf '" + folder_ + "'").c_str()); }
    std::string path(const std::string& name) const { return folder_ + "/" + name; }

    std::string folder_;
};

struct Caught : Caller {
    explicit Caught(std::int32_t number = 0) {
        unit = number;
        iostat = &value;
        catches_error = catches_end = catches_eor = true;
    }
    std::int32_t value = 0;
};

std::int32_t open_file(std::int32_t number, const std::string& file,
                       void (*more)(OpenSpecifiers&) = nullptr) {
    Caught caller(number);
    OpenSpecifiers specifiers;
    specifiers.unit = number;
    specifiers.file = file;
    if (more != nullptr) more(specifiers);
    open_unit(caller, specifiers);
    return caller.value;
}

std::int32_t close_number(std::int32_t number, std::string_view status = {}) {
    Caught caller(number);
    close_unit(caller, status);
    return caller.value;
}

void write_record(std::int32_t number, const std::string& text) {
    Unit* unit = acquire_unit(number);
    int err = 0;
    const OutputRoom room = begin_record(unit->file, text.size() + 1, err);
    std::memcpy(room.begin, text.data(), text.size());
    room.begin[text.size()] = '\n';
    end_record(unit->file, text.size() + 1, unit->file.shared, err);
    release_unit(unit);
    ASSERT_EQ(err, 0);
}

std::string contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

TEST_F(GnuUnits, AThousandAtOnce) {
    for (int n = 100; n < 1100; n++) {
        const std::int32_t status = open_file(n, path(std::to_string(n)));
        if (status == EMFILE) GTEST_SKIP() << "the system grants fewer files";
        ASSERT_EQ(status, 0);
        write_record(n, std::to_string(n));
    }
    for (int n = 100; n < 1100; n++) ASSERT_EQ(close_number(n), 0);
    for (int n = 100; n < 1100; n++) {
        ASSERT_EQ(contents(path(std::to_string(n))), std::to_string(n) + "\n");
    }
}

TEST_F(GnuUnits, ThreadsOpenCloseAndUseTheSameNumbers) {
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int t = 0; t < 8; t++) {
        threads.emplace_back([this, t] {
            for (int i = 0; i < 200; i++) {
                const std::int32_t number = 50 + i % 3;
                open_file(number, path(std::to_string(number)));
                put_byte(number, "x", 1);
                tell_unit(number);
                Caught caller(number);
                rewind_unit(caller);
                if ((i + t) % 3 == 0) close_number(number);
                std::int32_t mine = 0;
                Caught opener;
                OpenSpecifiers scratch;
                scratch.new_unit = &mine;
                scratch.status = "SCRATCH";
                open_unit(opener, scratch);
                EXPECT_LE(mine, -10);
                EXPECT_EQ(put_byte(mine, "y", 1), 0);
                EXPECT_EQ(close_number(mine), 0);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (int n = 50; n < 53; n++) close_number(n);
}

TEST_F(GnuUnits, RecordsOfManyProcessesAppended) {
    constexpr int processes = 64;
    constexpr int records = 20;
    const std::string log = path("log");
    for (int p = 0; p < processes; p++) {
        if (::fork() != 0) continue;
        const std::int32_t status = open_file(9, log, [](OpenSpecifiers& s) {
            s.share = "DENYNONE";
            s.position = "APPEND";
        });
        for (int i = 0; i < records; i++)
            write_record(9, std::string(100, static_cast<char>('0' + p)));
        ::_exit(status != 0 || close_number(9) != 0);
    }
    for (int p = 0; p < processes; p++) {
        int status = -1;
        ::wait(&status);
        EXPECT_EQ(status, 0);
    }
    std::ifstream in(log);
    int count = 0;
    for (std::string line; std::getline(in, line); count++) {
        ASSERT_EQ(line, std::string(100, line[0]));
    }
    EXPECT_EQ(count, processes * records);
}

TEST_F(GnuUnits, AFileHeldAloneIsInUse) {
    auto alone = [](OpenSpecifiers& s) { s.share = "DENYRW"; };
    ASSERT_EQ(open_file(9, path("held"), alone), 0);
    int inside[2];
    ASSERT_EQ(::pipe(inside), 0);
    if (::fork() == 0) {
        // The descriptors of this process's own OPEN are shared with the parent's.
        const std::int32_t status = open_file(10, path("held"), alone);
        (void)!::write(inside[1], &status, sizeof status);
        ::_exit(0);
    }
    std::int32_t status = 0;
    ASSERT_EQ(::read(inside[0], &status, sizeof status), static_cast<ssize_t>(sizeof status));
    ::wait(nullptr);
    EXPECT_EQ(status, EAGAIN);
    EXPECT_EQ(close_number(9), 0);
}

TEST_F(GnuUnits, AFullDiskIsHeardAtCloseAndEndsAProgramThatDoesNot) {
    ASSERT_EQ(open_file(9, "/dev/full"), 0);
    write_record(9, "lost");
    EXPECT_EQ(close_number(9), ENOSPC);
    EXPECT_EXIT(
        {
            open_file(9, "/dev/full");
            write_record(9, "lost");
            UnitList_destroyAll();
            ::_exit(0);
        },
        testing::ExitedWithCode(1), "Disk full.*/dev/full");
}

TEST_F(GnuUnits, NumbersThatCantBe) {
    EXPECT_EQ(open_file(-3, path("x")), iostat_bad_option);
    Caught caller(-5);
    EXPECT_EQ(connect_implicitly(caller, -5, true, Form::formatted, Access::sequential), nullptr);
    EXPECT_EQ(caller.value, iostat_bad_option);
    EXPECT_EQ(close_number(-5), 0);
    Caught nothing(-20);
    Inquiry inquiry;
    std::int32_t exist = -1;
    std::int32_t opened = -1;
    char words[2][9] = {};
    inquiry.exist = &exist;
    inquiry.opened = &opened;
    InquiryTexts texts;
    inquiry.texts = &texts;
    texts.access = {words[0], 9};
    texts.read = {words[1], 3};
    inquire(nothing, inquiry);
    EXPECT_EQ(exist, 0);
    EXPECT_EQ(opened, 0);
    EXPECT_EQ(std::string_view(words[0], 9), "UNDEFINED");
    EXPECT_EQ(std::string_view(words[1], 3), "NO ");
}

}  // namespace
}  // namespace tarn::fio
