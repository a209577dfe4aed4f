// A Jet 3 file for the western code page, made one for another code page and language.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "jet/base/code_page.h"
#include "jet/base/format.h"
#include "jet/base/jet4.h"
#include "jet/indexes/index.h"
#include "jet/indexes/index_key.h"
#include "jet/tables/database.h"

namespace testing_support {

// What the texts of a Jet 3 file are in.
struct Language {
    const char* name;
    std::uint16_t code_page;
    std::uint16_t lcid;
    std::u16string text = {};  // in its own letters

    friend void PrintTo(const Language& language, std::ostream* to) { *to << language.name; }
};

// Those whose plain Latin texts the engine keeps in order, with a text that fits in a name.
inline const Language kLatinLanguages[] = {
    {"Polish", 1250, 0x0415, u"\u0179r\u00F3d\u0142o"},
    {"Slovenian", 1250, 0x0424, u"\u010Crka"},
    {"GeneralInCentralEurope", 1250, 0x0409, u"\u0179r\u00F3d\u0142o"},
    {"Cyrillic", 1251, 0x0419, u"\u041A\u043B\u0438\u0435\u043D\u0442\u044B"},
    {"Ukrainian", 1251, 0x0422, u"\u041A\u043B\u0456\u0454\u043D\u0442\u0438"},
    {"GeneralInCyrillic", 1251, 0x0409, u"\u041A\u043B\u0438\u0435\u043D\u0442\u044B"},
    {"Greek", 1253, 0x0408, u"\u03A0\u03B5\u03BB\u03AC\u03C4\u03B5\u03C2"},
    {"GeneralInTurkish", 1254, 0x0409, u"M\u00FC\u015Fteri"},
    {"Hebrew", 1255, 0x040D, u"\u05DC\u05E7\u05D5\u05D7\u05D5\u05EA"},
    {"Arabic", 1256, 0x0401, u"\u0639\u0645\u0644\u0627\u0621"},
    {"GeneralInBaltic", 1257, 0x0409, u"Klient\u0173"},
    {"Thai", 874, 0x041E, u"\u0E25\u0E39\u0E01\u0E04\u0E49\u0E32"},
    {"Japanese", 932, 0x0411, u"\u9867\u5BA2"},
    {"SimplifiedChinese", 936, 0x0804, u"\u5BA2\u6237"},
    {"Korean", 949, 0x0412, u"\uACE0\uAC1D"},
    {"TraditionalChinese", 950, 0x0404, u"\u5BA2\u6236"},
};

// The header of the file at `path` and its columns say `code_page` and `lcid` from now on; the bytes of its texts stay.
inline void change_code_page(const std::string& path, std::uint16_t code_page,
                             std::uint16_t lcid = jet::jet4::kGeneralOrder) {
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const auto turn = [&](std::size_t at, unsigned from, unsigned to) {
        bytes[at] = static_cast<char>(bytes[at] ^ ((from ^ to) & 0xFF));
        bytes[at + 1] = static_cast<char>(bytes[at + 1] ^ ((from ^ to) >> 8));
    };
    const auto turn_both = [&](std::size_t at_lcid, std::size_t at_code_page) {
        turn(at_lcid, jet::jet4::kGeneralOrder, lcid);
        turn(at_code_page, jet::kWesternCodePage, code_page);
    };
    // The header's mask is a stream: what is turned in it is turned in what it covers.
    turn_both(jet::kJet3.header.sort_order, jet::jet4::header::kCodePage);
    const std::string order_and_code_page = "\x09\x04\xE4\x04";
    int columns = 0;
    for (std::size_t at = 0; (at = bytes.find(order_and_code_page, at)) != std::string::npos; at += 4, ++columns) {
        turn_both(at, at + 2);
    }
    EXPECT_GT(columns, 2);
    file.clear();
    file.seekp(0);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// The index of the catalogue that has the names.
inline const jet::RealIndex& index_of_names(const jet::Table& objects) {
    for (const jet::RealIndex& index : objects.def().real_indexes) {
        if (jet::has_text(index, objects.def())) return index;
    }
    throw std::runtime_error("no index of names");
}

// Gives the names of the catalogue the keys of another order, in which every letter weighs more.
inline void sort_names_by_another_order(jet::Database& database) {
    constexpr std::size_t kFirstWeight = 6;  // after the parent's number and two flags
    const jet::Table& objects = *database.table_by_page(jet::jet4::kObjectsPage);
    const jet::RealIndex& index = index_of_names(objects);
    jet::Index tree(database.pager(), database.allocator(), objects.def().page, index.root, index.map);
    std::vector<std::pair<jet::ByteVector, jet::RowId>> entries;
    tree.visit([&](jet::ByteSpan key, jet::RowId row) {
        entries.emplace_back(jet::ByteVector(key.begin(), key.end()), row);
        return true;
    });
    jet::Transaction transaction(database.pager());
    for (const auto& [key, row] : entries) tree.erase(key, row);
    for (auto& [key, row] : entries) {
        for (std::size_t i = kFirstWeight; i + 1 < key.size(); ++i) key[i] = static_cast<std::uint8_t>(key[i] + 3);
        tree.insert(key, row);
    }
    transaction.commit();
}

}  // namespace testing_support
