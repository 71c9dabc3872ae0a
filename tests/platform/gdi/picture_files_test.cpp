#include <cstdio>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <png.h>

#include "canvas.h"

namespace tarn::platform {
namespace {

using Bytes = std::vector<unsigned char>;

void put(Bytes& out, std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i) out.push_back(static_cast<unsigned char>(value >> 8 * i));
}

struct BitmapFile {
    std::int32_t width, height;
    std::uint32_t bits, compression = 0;
    std::vector<std::uint32_t> extra;  // masks and palette
    Bytes rows;
    bool core = false;
};

Bytes encoded(const BitmapFile& file) {
    Bytes header;
    if (file.core) {
        put(header, 12, 4);
        put(header, static_cast<std::uint32_t>(file.width), 2);
        put(header, static_cast<std::uint32_t>(file.height), 2);
        put(header, 1, 2);
        put(header, file.bits, 2);
        for (const std::uint32_t entry : file.extra) put(header, entry, 3);
    } else {
        put(header, 40, 4);
        put(header, static_cast<std::uint32_t>(file.width), 4);
        put(header, static_cast<std::uint32_t>(file.height), 4);
        put(header, 1, 2);
        put(header, file.bits, 2);
        put(header, file.compression, 4);
        for (int i = 0; i < 3; ++i) put(header, 0, 4);
        const bool palette = file.compression != 3;
        put(header, palette ? static_cast<std::uint32_t>(file.extra.size()) : 0, 4);
        put(header, 0, 4);
        for (const std::uint32_t entry : file.extra) put(header, entry, 4);
    }
    Bytes bytes = {'B', 'M'};
    put(bytes, static_cast<std::uint32_t>(14 + header.size() + file.rows.size()), 4);
    put(bytes, 0, 4);
    put(bytes, static_cast<std::uint32_t>(14 + header.size()), 4);
    bytes.insert(bytes.end(), header.begin(), header.end());
    bytes.insert(bytes.end(), file.rows.begin(), file.rows.end());
    return bytes;
}

std::string picture_of(HBITMAP bitmap) {
    SIZE size;
    if (!GetBitmapSize(bitmap, size)) return "refused";
    Canvas canvas(size.cx, size.cy);
    const HDC memory = CreateCompatibleDC(HDC{});
    SelectObject(memory, bitmap);
    BitBlt(canvas.dc, 0, 0, size.cx, size.cy, memory, 0, 0, SRCCOPY);
    DeleteDC(memory);
    EXPECT_TRUE(DeleteObject(bitmap));
    return canvas.picture();
}

// In a file blue comes first: as numbers these are white, red, green and blue.
const std::vector<std::uint32_t> colours = {0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF};

const std::vector<std::pair<const char*, BitmapFile>>& sound_files() {
    static const std::vector<std::pair<const char*, BitmapFile>> files = {
        {"r..\n.r.\n", {3, 2, 1, 0, {0xFFFFFF, 0xFF0000}, {0x40, 0, 0, 0, 0x80, 0, 0, 0}}},
        {"rgb\n.r.\n", {3, 2, 4, 0, colours, {0x01, 0, 0, 0, 0x12, 0x30, 0, 0}}},
        {"rg\nb.\n", {2, 2, 8, 0, colours, {3, 0, 9, 9, 1, 2, 9, 9}}},
        {"b.\nrg\n", {2, -2, 8, 0, colours, {3, 0, 9, 9, 1, 2, 9, 9}}},
        {"rg\n", {2, 1, 8, 0, colours, {1, 2, 9, 9}, true}},
        {"rgb\n", {3, 1, 16, 0, {}, {0x00, 0x7C, 0xE0, 0x03, 0x1F, 0x00, 0, 0}}},
        {"rgb\n", {3, 1, 16, 3, {0xF800, 0x7E0, 0x1F}, {0x00, 0xF8, 0xE0, 0x07, 0x1F, 0x00, 0, 0}}},
        {"rg\n", {2, 1, 24, 0, {}, {0, 0, 255, 0, 255, 0, 0, 0}}},
        {"rg\n", {2, 1, 24, 0, {0x123456, 0x654321}, {0, 0, 255, 0, 255, 0, 0, 0}}},
        {"b.\n", {2, 1, 32, 0, {}, {255, 0, 0, 0, 255, 255, 255, 0}}},
        {"rb\n", {2, 1, 32, 3, {0xFF, 0xFF00, 0xFF0000}, {255, 0, 0, 0, 0, 0, 255, 0}}},
        // Runs, a literal stretch with its padding, a jump, and what was skipped stays black.
        {"##g#\n...r\nrrrb\n", {4, 3, 8, 1, colours, {3, 1, 0, 3, 3, 0, 0, 0, 0, 1}, false}},
        {"rgrg\n", {4, 1, 4, 2, colours, {4, 0x12, 0, 1}}},
        {"rgb\n", {3, 1, 4, 2, colours, {0, 3, 0x12, 0x30, 0, 1}}},
    };
    return files;
}

TEST(BitmapFiles, EveryDepth) {
    for (auto [expected, file] : sound_files()) {
        if (file.compression == 1) {
            file.rows = {3, 1, 1, 3, 0, 0, 0, 3, 0, 0, 0, 9, 1, 1, 0, 0, 0, 2, 2, 0, 1, 2, 0, 1};
        }
        const Bytes bytes = encoded(file);
        EXPECT_EQ(picture_of(CreateDIBitmap(bytes.data(), bytes.size())), expected) << file.bits;
        // The same without the file's own header, as resources have it; there an old header is
        // always followed by the whole palette.
        if (file.core) continue;
        EXPECT_EQ(picture_of(CreateDIBitmap(bytes.data() + 14, bytes.size() - 14)), expected);
    }
}

// Cut off anywhere, or with any byte of its header changed, a file is refused or read: no more.
TEST(BitmapFiles, BrokenOnesAreSurvived) {
    for (const auto& [expected, file] : sound_files()) {
        const Bytes bytes = encoded(file);
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            const Bytes part(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_EQ(CreateDIBitmap(part.data(), part.size()), HBITMAP{}) << length;
        }
        for (std::size_t i = 0; i < std::min<std::size_t>(bytes.size(), 70); ++i) {
            for (const int value : {0, 1, 0x7F, 0x80, 0xFF}) {
                Bytes changed = bytes;
                changed[i] = static_cast<unsigned char>(value);
                DeleteObject(CreateDIBitmap(changed.data(), changed.size()));
            }
        }
    }
    EXPECT_EQ(CreateDIBitmap(nullptr, 100), HBITMAP{});
}

TEST(BitmapFiles, RefusedOutright) {
    const Bytes row(64, 0);
    for (const BitmapFile& file :
         {BitmapFile{0, 1, 24, 0, {}, row}, BitmapFile{1, 0, 24, 0, {}, row},
          BitmapFile{-1, 1, 24, 0, {}, row}, BitmapFile{1, INT32_MIN, 24, 0, {}, row},
          BitmapFile{30000, 30000, 8, 1, colours, row}, BitmapFile{1, 1, 7, 0, {}, row},
          BitmapFile{1, 1, 24, 1, {}, row}, BitmapFile{1, 1, 8, 9, {}, row},
          BitmapFile{4, 1, 8, 1, colours, {9, 1, 0, 1}},        // a run beyond its row
          BitmapFile{4, 1, 8, 1, colours, {0, 0, 1, 1, 0, 1}},  // a row too many
          BitmapFile{4, 1, 8, 1, colours, {4, 1}}}) {           // no end
        const Bytes bytes = encoded(file);
        EXPECT_EQ(CreateDIBitmap(bytes.data(), bytes.size()), HBITMAP{});
    }
}

// Read back by the system's own reader.
struct PngReader {
    void* module = dlopen("libpng16.so.16", RTLD_NOW);
    template <typename Function>
    Function* find(Function*, const char* name) const {
        return reinterpret_cast<Function*>(dlsym(module, name));
    }
    std::vector<std::uint32_t> read(const Bytes& bytes, SIZE& size) const {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        const auto begin =
            find(&png_image_begin_read_from_memory, "png_image_begin_read_from_memory");
        const auto finish = find(&png_image_finish_read, "png_image_finish_read");
        if (begin(&image, bytes.data(), bytes.size()) == 0) return {};
        image.format = PNG_FORMAT_BGRA;
        size = {static_cast<std::int32_t>(image.width), static_cast<std::int32_t>(image.height)};
        std::vector<std::uint32_t> pixels(std::size_t(image.width) * image.height);
        if (finish(&image, nullptr, pixels.data(), 0, nullptr) == 0) return {};
        return pixels;
    }
};

TEST(PngFiles, AreReadBackAsTheyWereWritten) {
    const PngReader reader;
    if (reader.module == nullptr) GTEST_SKIP() << "no libpng here";
    for (const std::int32_t width : {1, 7, 300}) {
        Canvas canvas(width, 90);
        fill_circle(canvas.dc, {20, 20}, 15, 0x3080F0);
        text_out(canvas.dc, 3, 40, "picture");
        SIZE size;
        EXPECT_EQ(reader.read(encode_png(canvas.surface), size), canvas.pixels);
        EXPECT_EQ(size, (SIZE{width, 90}));
        canvas.pixels[5] = 0x80123456;
        EXPECT_EQ(reader.read(encode_png(canvas.surface), size), canvas.pixels);
    }
    EXPECT_TRUE(encode_png(Surface{}).empty());
}

TEST(PngFiles, FailureHasItsReason) {
    const Canvas canvas(4, 4);
    const std::string path = testing::TempDir() + "tarn_picture.png";
    EXPECT_TRUE(write_png(path.c_str(), canvas.surface));
    EXPECT_EQ(std::remove(path.c_str()), 0);
    errno = 0;
    EXPECT_FALSE(write_png("/no/such/folder/x.png", canvas.surface));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(write_png("/dev/full", canvas.surface));
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_FALSE(write_png(path.c_str(), Surface{}));
    EXPECT_EQ(errno, EINVAL);
}

// ---- Icons and cursors
// An icon file of one picture: its rows, then those of its mask.
Bytes icon_file(BitmapFile picture, const Bytes& mask, bool cursor) {
    const std::int32_t side = picture.width;
    picture.height *= 2;
    picture.rows.insert(picture.rows.end(), mask.begin(), mask.end());
    Bytes dib = encoded(picture);
    dib.erase(dib.begin(), dib.begin() + 14);
    Bytes bytes;
    put(bytes, cursor ? 0x20000 : 0x10000, 4);
    put(bytes, 1, 2);
    put(bytes, static_cast<std::uint32_t>(side), 1);
    put(bytes, static_cast<std::uint32_t>(picture.height / 2), 1);
    put(bytes, 0, 2);
    put(bytes, 3, 2);  // of a cursor: its hot spot
    put(bytes, cursor ? 4 : picture.bits, 2);
    put(bytes, static_cast<std::uint32_t>(dib.size()), 4);
    put(bytes, 22, 4);
    bytes.insert(bytes.end(), dib.begin(), dib.end());
    return bytes;
}

std::vector<std::uint32_t> pixels_of(const Bytes& bytes, bool cursor, POINT& hot) {
    const HICON icon = CreateIconFromFile(bytes.data(), bytes.size(), cursor, hot);
    SIZE size;
    if (!GetIconSize(icon, size)) return {};
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(size.cx * size.cy));
    EXPECT_TRUE(GetIconPixels(icon, size.cx, size.cy, pixels.data()));
    EXPECT_TRUE(DestroyIcon(icon));
    return pixels;
}

TEST(IconFiles, MasksAndOpacity) {
    const BitmapFile indexed = {2, 2, 1, 0, {0xFFFFFF, 0xFF0000}, {0x40, 0, 0, 0, 0x80, 0, 0, 0}};
    const Bytes mask = {0x80, 0, 0, 0, 0, 0, 0, 0};  // the lower left one lies outside
    POINT hot;
    const Bytes icon = icon_file(indexed, mask, false);
    EXPECT_EQ(icon_file_length(icon.data()), icon.size());
    EXPECT_EQ(pixels_of(icon, false, hot),
              (std::vector<std::uint32_t>{0xFFFF0000, 0xFFFFFFFF, 0x00FFFFFF, 0xFFFF0000}));
    pixels_of(icon_file(indexed, mask, true), true, hot);
    EXPECT_EQ(hot, (POINT{3, 4}));
    // With an opacity of their own the mask doesn't count; where no pixel has any, it does.
    const BitmapFile own = {2, 1, 32, 0, {}, {1, 2, 3, 0, 4, 5, 6, 0x80}};
    EXPECT_EQ(pixels_of(icon_file(own, {0x80, 0, 0, 0}, false), false, hot),
              (std::vector<std::uint32_t>{0x00030201, 0x80060504}));
    const BitmapFile none = {2, 1, 32, 0, {}, {1, 2, 3, 0, 4, 5, 6, 0}};
    EXPECT_EQ(pixels_of(icon_file(none, {0x80, 0, 0, 0}, false), false, hot),
              (std::vector<std::uint32_t>{0x00030201, 0xFF060504}));
}

TEST(IconFiles, BrokenOnesAreSurvived) {
    const BitmapFile indexed = {2, 2, 1, 0, {0xFFFFFF, 0xFF0000}, {0x40, 0, 0, 0, 0x80, 0, 0, 0}};
    const Bytes icon = icon_file(indexed, {0, 0, 0, 0, 0, 0, 0, 0}, false);
    POINT hot;
    for (std::size_t length = 0; length < icon.size(); ++length) {
        const Bytes part(icon.begin(), icon.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(CreateIconFromFile(part.data(), part.size(), false, hot), HICON{}) << length;
    }
    for (std::size_t i = 4; i < icon.size(); ++i) {
        for (const int value : {0, 1, 0x7F, 0x80, 0xFF}) {
            Bytes changed = icon;
            changed[i] = static_cast<unsigned char>(value);
            DestroyIcon(CreateIconFromFile(changed.data(), changed.size(), false, hot));
        }
    }
}

}  // namespace
}  // namespace tarn::platform
