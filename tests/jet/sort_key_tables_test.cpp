// Random texts over the whole of each order's table: the keys against those of a second implementation, which is slow,
// goes by the published weight lists and shares nothing with the first.
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "jet/base/code_page.h"
#include "jet/base/types.h"
#include "jet/indexes/sort_key.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Entry {
    char kind = '?';
    Bytes inline_bytes;
    Bytes extra;
    int flag = 0;
};

Bytes bytes_of(const std::string& hex) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

void add_one(Bytes& number) {
    for (std::size_t i = number.size(); i-- > 0;) {
        if (++number[i] != 0) return;
    }
}

// By code.
std::vector<Entry> read_table(const std::string& name) {
    std::ifstream in(KVDB_ORDERS "/" + name);
    EXPECT_TRUE(in) << "no list " << name << " in " KVDB_ORDERS;
    std::vector<Entry> table(65536);
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with('#')) continue;
        std::istringstream fields(line);
        std::string range, kind, inline_hex, extra_hex, flag;
        std::getline(fields, range, '\t');
        std::getline(fields, kind, '\t');
        std::getline(fields, inline_hex, '\t');
        std::getline(fields, extra_hex, '\t');
        std::getline(fields, flag, '\t');
        const std::size_t dash = range.find('-');
        const int first = std::stoi(range.substr(0, dash), nullptr, 16);
        const int last = std::stoi(range.substr(dash + 1), nullptr, 16);
        Bytes value = bytes_of(inline_hex);
        for (int code = first; code <= last; ++code) {
            Entry entry;
            entry.kind = kind[0];
            entry.inline_bytes = value;
            entry.extra = bytes_of(extra_hex);
            entry.flag = flag.empty() ? 0 : std::stoi(flag);
            table[static_cast<std::size_t>(code)] = entry;
            if (kind == "S" || kind == "G") add_one(value);
        }
    }
    return table;
}

Entry surrogate(int unit) {
    int value = unit - 10238;
    if (unit >= 0xDC00) {
        const int offset = unit - 0xDC00;
        value = unit - 9984;
        if (offset < 770) value = unit - 9986;
        if (offset < 516) value = unit - 9988;
        if (offset < 262) value = unit - 9990;
        if (offset < 8) value = unit - 9992;
    }
    return {'I', {static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)}, {0x3F}, 0};
}

int weights_0(const Bytes& inline_bytes) {
    static const std::string kOne =
        "07 09 0A 0C 0E 10 12 14 16 18 1A 1C 1E 20 22 24 26 27 29 2A 2C 2E 30 32 36 38 3A 3C 3E 40 42 44 46 48 4A 4C "
        "4D 4F 51 53 55 57 59 5B 5C 5E 60 62 64 66 68 69 6B 6D 6F 71 73 75 76 78 ";
    int count = 0;
    for (std::size_t i = 0; i < inline_bytes.size(); ++count) {
        char hex[8];
        std::snprintf(hex, sizeof hex, "%02X ", inline_bytes[i]);
        i += kOne.find(hex) != std::string::npos ? 1 : 2;
    }
    return count;
}

int weights_1(const Bytes& inline_bytes) {
    const bool is_ideograph = inline_bytes.size() == 4 && inline_bytes[0] == 0xFD && inline_bytes[1] == 0xFF;
    return is_ideograph ? 1 : static_cast<int>(inline_bytes.size() + 1) / 2;
}

std::u16string key_text(std::u16string text) {
    text.resize(std::min<std::size_t>(text.size(), 255));
    while (!text.empty() && text.back() == u' ') text.pop_back();
    return text;
}

Bytes slow_key(const std::u16string& whole, const std::vector<Entry>& table, int (*weights)(const Bytes&)) {
    Bytes key, extras, ignorables;
    std::vector<int> flags;
    int position = 0, covered = 0, leading = 0;
    bool kana = false, touched = false;
    const auto pad = [&] {
        for (; covered < position; ++covered) extras.push_back(2);
    };
    for (const char16_t c : key_text(whole)) {
        const Entry entry = c >= 0xD800 && c < 0xE000 ? surrogate(c) : table[c];
        if (entry.kind == 'X') continue;
        if (entry.kind == 'U') {
            const int place = touched ? static_cast<int>(extras.size()) + position - covered - leading : position;
            const int word = (7 + 4 * place) | 0x8000;
            for (const int byte : {word >> 8, word, 6, int{entry.inline_bytes[0]}}) {
                ignorables.push_back(static_cast<std::uint8_t>(byte));
            }
            continue;
        }
        if (entry.kind == 'P') {
            pad();
            touched = true;
            if (extras.empty()) {
                extras.push_back(entry.inline_bytes[0]);
                leading = 1;
            } else {
                extras.back() = static_cast<std::uint8_t>(extras.back() + entry.inline_bytes[0]);
            }
            continue;
        }
        key.insert(key.end(), entry.inline_bytes.begin(), entry.inline_bytes.end());
        if (entry.kind == 'Z') {
            kana = true;
            flags.push_back(entry.flag);
        }
        if (!entry.extra.empty()) {
            pad();
            extras.insert(extras.end(), entry.extra.begin(), entry.extra.end());
            covered = position + static_cast<int>(entry.extra.size());
            touched = true;
        }
        position += weights(entry.inline_bytes);
    }
    key.push_back(1);
    while (!extras.empty() && extras.back() <= 2) extras.pop_back();
    key.insert(key.end(), extras.begin(), extras.end());
    if (kana || !ignorables.empty()) {
        key.insert(key.end(), {1, 1});
        if (kana) {
            while (!flags.empty() && flags.back() == 3) flags.pop_back();
            while (flags.size() % 3 != 0) flags.push_back(0);
            for (std::size_t i = 0; i < flags.size(); i += 3) {
                key.push_back(static_cast<std::uint8_t>(0x80 | flags[i] << 4 | flags[i + 1] << 2 | flags[i + 2]));
            }
            key.insert(key.end(), {0xFF, 0x02, 0x80, 0xFF, 0x80});
            if (!ignorables.empty()) key.push_back(0xFF);
        }
        if (!ignorables.empty()) {
            key.push_back(1);
            key.insert(key.end(), ignorables.begin(), ignorables.end());
        }
    }
    key.push_back(0);
    return key;
}

Bytes slow_key_97(const std::u16string& text, const std::vector<Entry>& table) {
    Bytes key;
    std::vector<int> nibbles;
    int letters = 0;
    for (const char16_t c : key_text(text)) {
        const int byte = jet::byte_of(c, jet::kCodePages[0]);
        if (byte < 0) continue;
        const Entry& entry = table[static_cast<std::size_t>(byte)];
        key.insert(key.end(), entry.inline_bytes.begin(), entry.inline_bytes.end());
        if (entry.kind == 'G') letters += entry.extra.empty() ? 1 : entry.extra[0];
        if (entry.kind != 'I') continue;
        if (nibbles.empty()) nibbles.push_back(0);
        for (; letters > 0; --letters) nibbles.push_back(2);
        nibbles.push_back(entry.extra[0]);
    }
    if (nibbles.empty()) {
        key.push_back(0);
        return key;
    }
    nibbles.push_back(0);
    if (nibbles.size() % 2 != 0) nibbles.push_back(0);
    for (std::size_t i = 0; i < nibbles.size(); i += 2) {
        key.push_back(static_cast<std::uint8_t>(nibbles[i] << 4 | nibbles[i + 1]));
    }
    return key;
}

class SortKeyTables : public ::testing::Test {
protected:
    // Half of the characters from where studios' texts are, a few of each kind in between.
    std::u16string random_text(bool narrow) {
        std::u16string text(random_() % (random_() % 20 == 0 ? 300 : 14), u' ');
        for (char16_t& c : text) {
            const auto number = static_cast<std::uint32_t>(random_());
            switch (narrow ? number % 2 : number % 5) {
                case 0: c = jet::kCodePages[0].upper[number / 8 % 128]; break;
                case 1: c = static_cast<char16_t>(1 + number / 8 % 127); break;
                case 2: c = static_cast<char16_t>(0x100 + number / 8 % 0x500); break;
                case 3: c = static_cast<char16_t>(0x3030 + number / 8 % 0xD0); break;
                default: c = static_cast<char16_t>(number / 8);
            }
        }
        return text;
    }
    // The key in both directions.
    template <class SlowKey>
    static void compare_key(const std::u16string& text, jet::TextOrder order, const SlowKey& slow) {
        Bytes expected = slow(text);
        jet::ByteVector key;
        jet::append_sort_key(key, text, order);
        ASSERT_EQ(key, expected) << jet::to_utf8(text);
        for (std::uint8_t& byte : expected) byte = static_cast<std::uint8_t>(~byte);
        if (order != jet::TextOrder::kGeneral97) expected.push_back(0);
        key.clear();
        jet::append_descending_sort_key(key, text, order);
        ASSERT_EQ(key, expected) << jet::to_utf8(text);
    }
    template <class SlowKey>
    void compare(jet::TextOrder order, bool narrow, const SlowKey& slow) {
        for (int round = 0; round < 20000; ++round) {
            compare_key(random_text(narrow), order, slow);
            if (HasFatalFailure()) return;
        }
        // And each character by itself.
        for (std::uint32_t c = 0; c < 0x10000; ++c) {
            const std::u16string text{u'e', static_cast<char16_t>(c), u'\u00E9', u'-'};
            jet::ByteVector key;
            jet::append_sort_key(key, text, order);
            ASSERT_EQ(key, slow(text)) << c;
        }
    }

    std::mt19937 random_{12};
};

TEST_F(SortKeyTables, general_order_is_that_of_its_list) {
    const auto table = read_table("general.tsv");
    compare(jet::TextOrder::kGeneral, false, [&](const auto& text) { return slow_key(text, table, weights_0); });
}

TEST_F(SortKeyTables, version_1_is_that_of_its_list) {
    const auto table = read_table("general-1.tsv");
    compare(jet::TextOrder::kGeneral1, false, [&](const auto& text) { return slow_key(text, table, weights_1); });
}

// The texts whose keys SortKeyVectors has in version 0. Only two keys of version 1 are known from elsewhere.
TEST_F(SortKeyTables, kana_have_the_keys_of_their_lists_in_both_versions) {
    const std::u16string texts[] = {
        u"\u30E9",  u"\u30E9-1",  u"\u30E9\u30A4\u30D6-1",       u"\u30A2-",       u"\u3041-1", u"\u3042-1",
        u"-\u30E9", u"a\u30C3'b", u"\u3072\u3089\u304C\u306A-2", u"\u30E9\u00E9-x"};
    const auto table_0 = read_table("general.tsv");
    const auto table_1 = read_table("general-1.tsv");
    for (const std::u16string& text : texts) {
        compare_key(text, jet::TextOrder::kGeneral, [&](const auto& t) { return slow_key(t, table_0, weights_0); });
        compare_key(text, jet::TextOrder::kGeneral1, [&](const auto& t) { return slow_key(t, table_1, weights_1); });
    }
}

TEST_F(SortKeyTables, order_of_jet_3_is_that_of_its_list) {
    const auto table = read_table("general-97.tsv");
    compare(jet::TextOrder::kGeneral97, true, [&](const auto& text) { return slow_key_97(text, table); });
}

}  // namespace
