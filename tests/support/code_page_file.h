// A Jet 3 file for the western code page, made one for another.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>

#include "jet/base/code_page.h"
#include "jet/base/jet4.h"

namespace testing_support {

// The header of the file at `path` and its columns say `code_page` from now on; the bytes of its texts stay.
inline void change_code_page(const std::string& path, std::uint16_t code_page) {
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const std::uint16_t turned = jet::kWesternCodePage ^ code_page;
    const auto turn = [&](std::size_t at) {
        bytes[at] = static_cast<char>(bytes[at] ^ (turned & 0xFF));
        bytes[at + 1] = static_cast<char>(bytes[at + 1] ^ (turned >> 8));
    };
    // The header's mask is a stream: what is turned in it is turned in what it covers.
    turn(jet::jet4::header::kCodePage);
    const std::string order_and_code_page = "\x09\x04\xE4\x04";
    int columns = 0;
    for (std::size_t at = 0; (at = bytes.find(order_and_code_page, at)) != std::string::npos; at += 4, ++columns) {
        turn(at + 2);
    }
    EXPECT_GT(columns, 2);
    file.clear();
    file.seekp(0);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace testing_support
