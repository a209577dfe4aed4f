#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <fstream>

#include "jet/pages/header.h"
#include "jet/tables/database.h"

namespace jet {
namespace {

// SHA-256, enough of it to compare pages with digests written down from files of the format's own engine.
class Sha256 {
public:
    static std::string hex(ByteSpan bytes) {
        std::uint32_t h[8] = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                              0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
        ByteVector message(bytes.begin(), bytes.end());
        message.push_back(0x80);
        while (message.size() % 64 != 56) message.push_back(0);
        append_be(message, std::uint64_t{bytes.size()} * 8, 8);
        for (std::size_t at = 0; at < message.size(); at += 64) block(h, ByteSpan(message).subspan(at, 64));
        std::string text;
        for (std::uint32_t word : h) {
            char digits[9];
            std::snprintf(digits, sizeof digits, "%08x", word);
            text += digits;
        }
        return text;
    }

private:
    static std::uint32_t rotate(std::uint32_t value, int by) { return std::rotr(value, by); }
    // The constants are the fractional parts of the cube roots of the first 64 primes.
    static const std::vector<std::uint32_t>& constants() {
        static const std::vector<std::uint32_t> k = [] {
            std::vector<std::uint32_t> result;
            for (unsigned n = 2; result.size() < 64; ++n) {
                bool prime = true;
                for (unsigned d = 2; d * d <= n; ++d) prime = prime && n % d != 0;
                if (!prime) continue;
                const long double root = std::cbrt(static_cast<long double>(n));
                result.push_back(static_cast<std::uint32_t>((root - std::floor(root)) * 4294967296.0L));
            }
            return result;
        }();
        return k;
    }
    static void block(std::uint32_t* h, ByteSpan bytes) {
        std::uint32_t w[64];
        for (std::size_t i = 0; i < 16; ++i) w[i] = load_be32(bytes, 4 * i);
        for (std::size_t i = 16; i < 64; ++i) {
            const std::uint32_t s0 = rotate(w[i - 15], 7) ^ rotate(w[i - 15], 18) ^ w[i - 15] >> 3;
            const std::uint32_t s1 = rotate(w[i - 2], 17) ^ rotate(w[i - 2], 19) ^ w[i - 2] >> 10;
            w[i] = w[i - 16] + s0 + w[i - 7] + s1;
        }
        std::uint32_t v[8];
        std::copy(h, h + 8, v);
        for (std::size_t i = 0; i < 64; ++i) {
            const std::uint32_t s1 = rotate(v[4], 6) ^ rotate(v[4], 11) ^ rotate(v[4], 25);
            const std::uint32_t t1 = v[7] + s1 + ((v[4] & v[5]) ^ (~v[4] & v[6])) + constants()[i] + w[i];
            const std::uint32_t s0 = rotate(v[0], 2) ^ rotate(v[0], 13) ^ rotate(v[0], 22);
            const std::uint32_t t2 = s0 + ((v[0] & v[1]) ^ (v[0] & v[2]) ^ (v[1] & v[2]));
            for (int k = 7; k > 0; --k) v[k] = v[k - 1];
            v[4] += t1;
            v[0] = t1 + t2;
        }
        for (int k = 0; k < 8; ++k) h[k] += v[k];
    }
};

ByteSpan page_of(const ByteVector& file, std::size_t page) {
    return ByteSpan(file).subspan(page * jet4::kPageSize, jet4::kPageSize);
}

TEST(EmptyDatabase, fixed_dates_and_build_give_the_written_down_checksums) {
    CreateOptions options;
    options.creation_date = std::bit_cast<double>(std::uint64_t{0x40E4AB3E3BD3853E});
    options.engine_build = 9756;
    const ByteVector file = build_empty_database(options);
    ASSERT_EQ(file.size(), 65536u);
    const char* digests[] = {"27c4202adfe1877f", "a54a0dc0d1dd4b7e", "2b5a89d53e29d6b1", "cf49a1a9ca7fbc25",
                             "de26a3610e964da9", "15889dd45be8aa37", "821408bc3ef30ef4", "889808e8c946ea1d",
                             "1b844a8a5e84abbd", "717b35182fe59abf", "0476376006ea9ac1", "0791b4aa4dc12a5d",
                             "0791b4aa4dc12a5d", "0791b4aa4dc12a5d", "26a322137741218c", "b958bfa46904b7d8"};
    for (std::size_t page = 0; page < 16; ++page) {
        EXPECT_EQ(Sha256::hex(page_of(file, page)).substr(0, 16), digests[page]) << "page " << page;
    }
    EXPECT_EQ(Sha256::hex(file), "236e52e552eb2614c1162db3d232dd2e3ec9a188777ce42e6c7ac63ee32f7134");
}

TEST(EmptyDatabase, dates_of_an_adox_file_give_that_file_but_for_filler_and_row_times) {
    std::ifstream in(KVDB_SAMPLES "/adox_jet4.mdb", std::ios::binary);
    if (!in) GTEST_SKIP() << "no sample files beside the project";
    const std::string raw((std::istreambuf_iterator<char>(in)), {});
    const ByteVector sample(raw.begin(), raw.end());
    const FileHeader header = parse_header(page_of(sample, 0), "sample");
    CreateOptions options;
    options.creation_date = header.creation_date;
    options.engine_build = header.build;
    const ByteVector file = build_empty_database(options);
    ASSERT_EQ(file.size(), sample.size());
    std::size_t filler = 0;
    for (std::size_t at = 0; at < file.size(); ++at) {
        if (file[at] == sample[at]) continue;
        const std::size_t page = at / jet4::kPageSize;
        const std::size_t offset = at % jet4::kPageSize;
        if (page >= 2 && page <= 4) {
            ++filler;
        } else {
            // Only the two times of each of the eight rows, 16 bytes behind the row's first 12.
            ASSERT_EQ(page, 14u) << "offset " << offset;
            bool in_times = false;
            for (std::size_t slot = 0; slot < 8; ++slot) {
                const std::size_t row = load_u16(page_of(file, 14), 14 + 2 * slot);
                in_times = in_times || (offset >= row + 12 && offset < row + 28);
            }
            EXPECT_TRUE(in_times) << "offset " << offset;
        }
    }
    EXPECT_EQ(filler, 26u);
}

TEST(EmptyDatabase, password_changes_header_and_owner_identifiers_only) {
    CreateOptions options;
    options.creation_date = std::bit_cast<double>(std::uint64_t{0x40E5C315A957BF9B});
    options.engine_build = 4518;
    const ByteVector plain = build_empty_database(options);
    options.password = u"password";
    const ByteVector locked = build_empty_database(options);
    EXPECT_EQ(parse_header(page_of(locked, 0), "file").password, u"password");
    EXPECT_EQ(parse_header(page_of(plain, 0), "file").password, u"");
    for (std::size_t page = 1; page < 14; ++page) {
        EXPECT_TRUE(std::ranges::equal(page_of(plain, page), page_of(locked, page))) << "page " << page;
    }
    // The key stream written down for this date, build and password begins 93 AD 53 BC.
    ByteVector sid = {0, 0, 0, 0};
    mask_sid(sid, parse_header(page_of(locked, 0), "file"));
    EXPECT_EQ(sid, (ByteVector{0x93, 0xAD, 0x53, 0xBC}));
}

}  // namespace
}  // namespace jet
