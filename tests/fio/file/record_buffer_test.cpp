#include "fio/file/record_buffer.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <signal.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include "fio/file/file.h"

namespace tarn::fio {
namespace {

class RecordBuffer : public testing::Test {
  protected:
    void SetUp() override {
        char name[] = "/tmp/record_buffer_XXXXXX";
        file.descriptor = mkstemp(name);
        path = name;
    }
    void TearDown() override {
        close(file.descriptor);
        unlink(path.c_str());
        std::free(file.buffer);
    }
    void put(const std::string& text, bool now = false) {
        int err = 0;
        const OutputRoom at = begin_record(file, text.size(), err);
        ASSERT_GE(at.limit - at.begin, static_cast<std::ptrdiff_t>(text.size()));
        std::memcpy(at.begin, text.data(), text.size());
        end_record(file, text.size(), now, err);
        ASSERT_EQ(err, 0);
    }
    // The next record's text, or "<end>".
    std::string get() {
        int err = 0;
        InputRecord record;
        if (!find_record(file, record, err)) return err == 0 ? "<end>" : "<error>";
        std::string text(record.begin, record.length);
        consume(file, record.consumed);
        return text;
    }
    void rewind() {
        int err = 0;
        move_to(file, 0, err);
        ASSERT_EQ(err, 0);
    }
    std::string on_disk() {
        std::string text(static_cast<std::size_t>(lseek(file.descriptor, 0, SEEK_END)), '\0');
        EXPECT_EQ(pread(file.descriptor, text.data(), text.size(), 0),
                  static_cast<ssize_t>(text.size()));
        lseek(file.descriptor, file.real_position, SEEK_SET);
        return text;
    }

    File file;
    std::string path;
};

TEST_F(RecordBuffer, FindsRecordsByTheirLineEnds) {
    const std::string long_line(300000, 'x');
    put("one\ntwo\r\n\n" + long_line + "\nlast");
    rewind();
    EXPECT_EQ(get(), "one");
    EXPECT_EQ(get(), "two");
    EXPECT_EQ(get(), "");
    EXPECT_EQ(get(), long_line);
    EXPECT_EQ(get(), "last");
    EXPECT_EQ(get(), "<end>");
    EXPECT_EQ(get(), "<end>");
}

TEST_F(RecordBuffer, GrowsTheRecordInProgressAndKeepsWhatWaits) {
    put("waiting\n");
    int err = 0;
    OutputRoom at = begin_record(file, 4, err);
    std::memcpy(at.begin, "head", 4);
    at = grow_record(file, 4, 200000, err);
    ASSERT_EQ(err, 0);
    EXPECT_EQ(std::string(at.begin, 4), "head");
    std::memset(at.begin + 4, 'y', 200000);
    end_record(file, 200004, true, err);
    EXPECT_EQ(on_disk(), "waiting\nhead" + std::string(200000, 'y'));
}

TEST_F(RecordBuffer, WritingAfterReadingStartsBehindTheLastRecordRead) {
    put("aaa\nbbb\nccc\n");
    rewind();
    EXPECT_EQ(get(), "aaa");
    put("X\n");
    int err = 0;
    cut_here(file, err);
    write_out(file, err);
    EXPECT_EQ(err, 0);
    EXPECT_EQ(on_disk(), "aaa\nX\n");
}

TEST_F(RecordBuffer, MovesInsideTheBufferAndBeyondTheEnd) {
    put("0123456789\n");
    rewind();
    char* at = nullptr;
    int err = 0;
    ASSERT_EQ(peek_bytes(file, 4, at, err), 4U);
    EXPECT_EQ(std::string(at, 4), "0123");
    move_to(file, 6, err);
    ASSERT_EQ(peek_bytes(file, 100, at, err), 5U);
    EXPECT_EQ(std::string(at, 4), "6789");
    move_to(file, 1000, err);
    EXPECT_EQ(peek_bytes(file, 1, at, err), 0U);
    put("far", true);
    EXPECT_EQ(on_disk().size(), 1003U);
    EXPECT_EQ(err, 0);
}

// Bytes of any number go in at any place, from memory that lies anywhere in its page; what the file
// holds is what a string would.
TEST_F(RecordBuffer, BehavesAsAStringOfBytes) {
    std::mt19937 draw(7);
    const auto upto = [&](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(draw);
    };
    std::string expected;
    std::vector<char> memory(std::size_t{1} << 20);
    for (int step = 0; step < 600; ++step) {
        const std::size_t count = upto(upto(3) == 0 ? 400000 : 5000);
        char* const bytes = memory.data() + upto(8192);
        int err = 0;
        const auto here = static_cast<std::size_t>(file.logical_position);
        switch (upto(4)) {
            case 0:
            case 1:
                for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(draw());
                put_bytes(file, bytes, count, err);
                if (here + count > expected.size()) expected.resize(here + count);
                expected.replace(here, count, bytes, count);
                break;
            case 2:
                if (here >= 8) {
                    const std::size_t at = upto(here - 8);
                    overwrite_bytes(file, static_cast<std::int64_t>(at), "<marker>", 8, err);
                    expected.replace(at, 8, "<marker>");
                }
                break;
            case 3:
                ASSERT_EQ(take_bytes(file, bytes, count, err),
                          std::min(count, expected.size() - here));
                ASSERT_EQ(expected.compare(here, std::min(count, expected.size() - here), bytes,
                                           std::min(count, expected.size() - here)),
                          0);
                break;
            default:
                move_to(file, static_cast<std::int64_t>(upto(expected.size())), err);
        }
        ASSERT_EQ(err, 0);
    }
    int err = 0;
    write_out(file, err);
    EXPECT_TRUE(on_disk() == expected);
}

// A long run of short records leaves in blocks that start where the file's do, wherever the first
// record stood.
TEST_F(RecordBuffer, WritesWholeBlocks) {
    constexpr std::int64_t block = 65536;
    const std::string record(1000, 'r');
    int err = 0;
    move_to(file, 24, err);
    std::int64_t seen = 24;
    for (int i = 0; i < 500; ++i) {
        put(record);
        if (file.buffer_position == seen) continue;
        seen = file.buffer_position;
        EXPECT_EQ(seen % block, 0);
    }
    EXPECT_GT(seen, 4 * block);
}

TEST_F(RecordBuffer, AFullDiskIsReportedAndNothingPretendsToBeWritten) {
    close(file.descriptor);
    file.descriptor = open("/dev/full", O_RDWR);
    file.seekable = false;
    int err = 0;
    const OutputRoom at = begin_record(file, 2, err);
    std::memcpy(at.begin, "x\n", 2);
    end_record(file, 2, true, err);
    EXPECT_EQ(err, ENOSPC);
    EXPECT_TRUE(file.dirty);
}

TEST_F(RecordBuffer, AClosedPipeIsAnErrorAndNoSignal) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    close(file.descriptor);
    file.descriptor = ends[1];
    file.seekable = false;
    int err = 0;
    const OutputRoom at = begin_record(file, 2, err);
    std::memcpy(at.begin, "x\n", 2);
    end_record(file, 2, true, err);
    EXPECT_EQ(err, EPIPE);
}

TEST_F(RecordBuffer, ReadsAPipeThatGivesItsBytesInPieces) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(file.descriptor);
    file.descriptor = ends[0];
    file.seekable = false;
    std::thread writer([&] {
        for (const char* piece : {"fir", "st\nsec", "ond", "\n"}) {
            EXPECT_GT(write(ends[1], piece, std::strlen(piece)), 0);
            std::this_thread::yield();
        }
        close(ends[1]);
    });
    EXPECT_EQ(get(), "first");
    EXPECT_EQ(get(), "second");
    EXPECT_EQ(get(), "<end>");
    writer.join();
}

}  // namespace
}  // namespace tarn::fio
