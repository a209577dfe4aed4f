// A Jet 3 file for the western code page, made one for another code page and language.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>

#include "jet/base/code_page.h"
#include "jet/base/format.h"
#include "jet/base/jet4.h"

namespace testing_support {

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

}  // namespace testing_support
