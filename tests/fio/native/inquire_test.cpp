#include <gtest/gtest.h>

#include "packed.h"

namespace tarn::fio::native::test {
namespace {

constexpr IOCode text_codes[] = {
    IOCode::access, IOCode::direct,    IOCode::sequential,  IOCode::transparent,
    IOCode::form,   IOCode::formatted, IOCode::unformatted, IOCode::blank,
    IOCode::share,  IOCode::position,  IOCode::action,      IOCode::read,
    IOCode::write,  IOCode::readwrite, IOCode::delim,       IOCode::pad,
    IOCode::stream,
};

// All words of an inquiry, with single blanks between them.
std::string words_of(Packed& statement) {
    std::vector<std::string> results(std::size(text_codes), std::string(12, '?'));
    for (std::size_t i = 0; i < results.size(); ++i) statement.fill(text_codes[i], results[i]);
    if (statement.run(INQR_hh) != 0) return "failed";
    std::string line;
    for (std::string& r : results) {
        r.erase(r.find_last_not_of(' ') + 1);
        line += r + " ";
    }
    return line;
}

TEST(Inquire, TellsTheWordsOfAConnection) {
    const Folder folder;
    put_file("direct", std::string(24, 'x'));
    const struct {
        std::vector<std::pair<IOCode, std::string_view>> texts;
        std::int32_t recl;
        std::string_view words;
    } cases[] = {
        {{{IOCode::file, "text"}},
         0,
         "SEQUENTIAL UNKNOWN YES YES FORMATTED YES YES NULL COMPAT ASIS READWRITE YES YES YES NONE "
         "YES NO "},
        {{{IOCode::file, "text"},
          {IOCode::position, "APPEND"},
          {IOCode::delim, "QUOTE"},
          {IOCode::pad, "NO"},
          {IOCode::blank, "ZERO"}},
         0,
         "SEQUENTIAL UNKNOWN YES YES FORMATTED YES YES ZERO COMPAT APPEND READWRITE YES YES YES "
         "QUOTE NO NO "},
        {{{IOCode::file, "direct"}, {IOCode::access, "DIRECT"}, {IOCode::share, "DENYWR"}},
         8,
         "DIRECT YES NO YES UNFORMATTED YES YES NULL DENYWR ASIS READWRITE YES YES YES NONE YES "
         "NO "},
        {{{IOCode::file, "direct"},
          {IOCode::access, "STREAM"},
          {IOCode::action, "READ"},
          {IOCode::position, "REWIND"}},
         0,
         "STREAM UNKNOWN UNKNOWN YES UNFORMATTED YES YES NULL COMPAT REWIND READ YES NO NO NONE "
         "YES "
         "YES "},
        {{{IOCode::file, "direct"}, {IOCode::access, "TRANSPARENT"}, {IOCode::delim, "APOS"}},
         0,
         "TRANSPARENT UNKNOWN UNKNOWN YES UNFORMATTED YES YES NULL COMPAT ASIS READWRITE YES YES "
         "YES "
         "APOSTROPHE YES NO "},
        {{{IOCode::filetype, "TTY"}},
         0,
         "SEQUENTIAL NO YES UNKNOWN FORMATTED YES NO NULL COMPAT ASIS READWRITE YES YES YES NONE "
         "YES "
         "NO "},
    };
    for (const auto& c : cases) {
        Packed open;
        open.unit(41);
        for (const auto& [code, text] : c.texts) open.text(code, text);
        if (c.recl != 0) open.integer(IOCode::recl, c.recl);
        ASSERT_EQ(open.run(OPEN_hh), 0);
        Packed inquiry;
        inquiry.unit(41);
        EXPECT_EQ(words_of(inquiry), c.words);
        close_unit(41);
    }
}

TEST(Inquire, KnowsNothingOfWhatIsNotThere) {
    const Folder folder;
    constexpr std::string_view unknown =
        "UNDEFINED UNKNOWN UNKNOWN UNKNOWN UNDEFINED UNKNOWN UNKNOWN UNDEFINED UNDEFINED UNDEFINED "
        "UNDEFINED UNKNOWN UNKNOWN UNKNOWN UNDEFINED YES UNKNOWN ";
    Packed by_file;
    by_file.text(IOCode::file, "nothing");
    EXPECT_EQ(words_of(by_file), unknown);
    Packed by_unit;
    by_unit.unit(77);
    EXPECT_EQ(words_of(by_unit), unknown);
    Packed negative;
    negative.unit(-5);
    EXPECT_EQ(words_of(negative), unknown);
}

struct Facts {
    std::int32_t exist = 7, opened = 7, named = 7, number = 7, nextrec = 7, recl = 7;
    std::string name = std::string(40, '?');
    std::int32_t ask(Packed&& inquiry) {
        return inquiry.result(IOCode::exist, exist)
            .result(IOCode::opened, opened)
            .result(IOCode::named, named)
            .result(IOCode::number, number)
            .result(IOCode::nextrec, nextrec)
            .result(IOCode::recl, recl)
            .fill(IOCode::name, name)
            .run(INQR_hh);
    }
};

TEST(Inquire, TellsTheFactsOfAConnection) {
    const Folder folder;
    put_file("data", std::string(24, 'x'));
    ASSERT_EQ(Packed()
                  .unit(41)
                  .text(IOCode::file, "data")
                  .text(IOCode::access, "DIRECT")
                  .integer(IOCode::recl, 8)
                  .run(OPEN_hh),
              0);
    std::string path = folder.path() + "/data";
    path.resize(40, ' ');
    for (const bool by_file : {false, true}) {
        Facts facts;
        Packed inquiry;
        if (by_file)
            inquiry.text(IOCode::file, "./data   ");
        else
            inquiry.unit(41);
        ASSERT_EQ(facts.ask(std::move(inquiry)), 0);
        EXPECT_EQ(facts.exist, 1);
        EXPECT_EQ(facts.opened, 1);
        EXPECT_EQ(facts.named, 1);
        EXPECT_EQ(facts.number, 41);
        EXPECT_EQ(facts.nextrec, 1);
        EXPECT_EQ(facts.recl, 8);
        EXPECT_EQ(facts.name, path);
    }
    close_unit(41);
    Facts facts;
    Packed inquiry;
    inquiry.text(IOCode::file, "data");
    ASSERT_EQ(facts.ask(std::move(inquiry)), 0);
    EXPECT_EQ(facts.exist, 1);
    EXPECT_EQ(facts.opened, 0);
    EXPECT_EQ(facts.named, 1);
    EXPECT_EQ(facts.number, -1);
    EXPECT_EQ(facts.recl, 7);
    EXPECT_EQ(facts.name, path);
}

TEST(Inquire, NarrowVariablesAreNotOverrun) {
    const Folder folder;
    ASSERT_EQ(Packed()
                  .unit(41)
                  .text(IOCode::file, "data")
                  .text(IOCode::access, "DIRECT")
                  .integer(IOCode::recl, 300)
                  .run(OPEN_hh),
              0);
    std::int8_t small[2] = {5, 5};
    EXPECT_EQ(Packed().unit(41).add(IOCode::recl, TypeCode::integer1, small).run(INQR_hh), 149);
    EXPECT_EQ(small[1], 5);
    std::int16_t wide[2] = {5, 5};
    EXPECT_EQ(Packed().unit(41).add(IOCode::recl, TypeCode::integer2, wide).run(INQR_hh), 0);
    EXPECT_EQ(wide[0], 300);
    EXPECT_EQ(wide[1], 5);
    std::int8_t logical[2] = {5, 5};
    EXPECT_EQ(Packed().unit(41).add(IOCode::opened, TypeCode::logical1, logical).run(INQR_hh), 0);
    EXPECT_EQ(logical[0], 1);
    EXPECT_EQ(logical[1], 5);
    std::string cut(3, '?');
    EXPECT_EQ(Packed().unit(41).fill(IOCode::access, cut).run(INQR_hh), 0);
    EXPECT_EQ(cut, "DIR");
    std::int16_t handle = 0;
    EXPECT_EQ(Packed().unit(41).add(IOCode::handle, TypeCode::integer2, &handle).run(INQR_hh), 0);
    EXPECT_EQ(UnitList_getFUnit(handle), UnitList_getUnit(41));
    close_unit(41);
}

TEST(Inquire, TellsTheSizeOfAFile) {
    const Folder folder;
    put_file("data", std::string(300, 'x'));
    std::int32_t size = 0;
    EXPECT_EQ(Packed().text(IOCode::file, "data").result(IOCode::size, size).run(INQR_hh), 0);
    EXPECT_EQ(size, 300);
    std::int8_t small = 0;
    EXPECT_EQ(Packed()
                  .text(IOCode::file, "data")
                  .add(IOCode::size, TypeCode::integer1, &small)
                  .run(INQR_hh),
              53);
    EXPECT_EQ(small, -1);
    EXPECT_EQ(Packed().text(IOCode::file, "nothing").result(IOCode::size, size).run(INQR_hh), 53);
    EXPECT_EQ(size, -1);
}

}  // namespace
}  // namespace tarn::fio::native::test
