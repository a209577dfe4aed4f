#include "jet/pages/header.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "jet/base/jet4.h"
#include "jet/base/rc4.h"
#include "jet/base/types.h"

namespace jet {

namespace header = jet4::header;

namespace {

constexpr std::uint8_t kHeaderKey[] = {0xC7, 0xDA, 0x39, 0x6B};
constexpr std::size_t kMaxPasswordCharacters = header::kPasswordBytes / 2;

using MaskedPart = std::array<std::uint8_t, header::kMaskedBytes>;

MaskedPart unmask(ByteSpan page) {
    MaskedPart part;
    const ByteSpan masked = slice(page, header::kMasked, header::kMaskedBytes);
    std::copy(masked.begin(), masked.end(), part.begin());
    Rc4(kHeaderKey).apply(part);
    return part;
}

void mask_into(MutableByteSpan page, MaskedPart part) {
    Rc4(kHeaderKey).apply(part);
    store_bytes(page, header::kMasked, part);
}

// The mask of the password: the whole days of the creation date. A hostile date must not overflow.
std::uint32_t date_mask(double creation_date) {
    if (!(std::abs(creation_date) < 2147483647.0)) return 0;
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(creation_date));
}

ByteVector password_bytes(std::u16string_view password) {
    ByteVector bytes;
    for (char16_t unit : password) append_u16(bytes, unit);
    bytes.resize(header::kPasswordBytes);
    return bytes;
}

void apply_date_mask(MutableByteSpan password, double creation_date) {
    const std::uint32_t mask = date_mask(creation_date);
    for (std::size_t i = 0; i < password.size(); ++i) password[i] ^= static_cast<std::uint8_t>(mask >> (8 * (i % 4)));
}

void check_password(std::u16string_view password) {
    if (password.size() > kMaxPasswordCharacters || password.find(u'\0') != std::u16string_view::npos) {
        fail(errors::kBadConversion, "A database password has at most 20 characters and no NUL.");
    }
}

}  // namespace

FileHeader parse_header(ByteSpan page, const std::string& path) {
    const auto not_ours = [&](int number, const char* why) { fail(number, path + " " + why); };
    if (page.size() < jet4::kPageSize / 2 || load_u32(page, 0) != 0x00000100) {
        not_ours(errors::kNotADatabase, "is not a Jet database.");
    }
    const ByteSpan magic = slice(page, header::kMagic, sizeof header::kMagicText);
    if (!std::equal(magic.begin(), magic.end(), header::kMagicText)) {
        static constexpr std::string_view kLaterEngine = "Standard ACE DB";
        const bool is_later = std::equal(kLaterEngine.begin(), kLaterEngine.end(), magic.begin());
        not_ours(
            errors::kNotADatabase,
            is_later
                ? "is of the format of Access 2007 and later (.accdb), which this engine does not read; save it as "
                  "an .mdb of Access 2000 to 2003 in the program that it comes from."
                : "is not a Jet database: it begins like one, but names another engine.");
    }
    const std::uint32_t version = load_u32(page, header::kVersion);
    if (version == header::kVersionJet3) {
        not_ours(errors::kOldFormat,
                 "is a Jet 3 database (Access 97); only Jet 4 files (Access 2000 to 2003) can be opened.");
    }
    if (version != header::kVersionJet4) not_ours(errors::kNotADatabase, "is of a later file format than Jet 4.");
    if (page.size() < jet4::kPageSize) not_ours(errors::kDamaged, "is damaged: it ends inside its first page.");

    const MaskedPart part = unmask(page);
    const auto at = [](std::size_t offset) { return offset - header::kMasked; };
    FileHeader result;
    result.build = load_u32(part, at(header::kBuild));
    result.creation_date = load_f64(part, at(header::kCreationDate));
    result.code_page = load_u16(part, at(header::kCodePage));
    result.encryption_key = load_u32(part, at(header::kEncryptionKey));
    if (load_u32(part, at(header::kCatalogTables)) != jet4::kObjectsPage) {
        corrupt(jet4::kHeaderPage, "the header does not name the catalogue's page");
    }
    std::array<std::uint8_t, header::kPasswordBytes> password;
    std::copy_n(part.begin() + at(header::kPassword), password.size(), password.begin());
    apply_date_mask(password, result.creation_date);
    for (std::size_t i = 0; i < password.size(); i += 2) {
        const char16_t unit = load_u16(password, i);
        if (unit == 0) break;
        result.password.push_back(unit);
    }
    return result;
}

void build_header(MutableByteSpan page, const FileHeader& values) {
    check_password(values.password);
    std::fill(page.begin(), page.end(), std::uint8_t{0});
    store_u32(page, 0, 0x00000100);
    for (std::size_t i = 0; i < sizeof header::kMagicText; ++i) {
        page[header::kMagic + i] = static_cast<std::uint8_t>(header::kMagicText[i]);
    }
    store_u32(page, header::kVersion, header::kVersionJet4);
    store_u32(page, header::kConstant, header::kConstantValue);
    store_u32(page, header::kVersionText, 0x00302E34);  // "4.0"
    // One commit word per user; the first, the exclusive user's, starts one higher.
    for (std::size_t i = 0; i < header::kCommitWordBytes; i += 2) store_u16(page, header::kCommitWords + i, 0x0100);
    store_u16(page, header::kCommitWords, 0x0101);

    MaskedPart part{};
    const MutableByteSpan plain(part);
    const auto at = [](std::size_t offset) { return offset - header::kMasked; };
    store_u32(plain, at(header::kGlobalMap), RowId{jet4::kGlobalMapPage, 0}.pack());
    store_u32(plain, at(header::kSecondMap), RowId{jet4::kGlobalMapPage, 1}.pack());
    for (std::uint32_t i = 0; i < 4; ++i) store_u32(plain, at(header::kCatalogTables) + 4 * i, jet4::kObjectsPage + i);
    store_u16(plain, at(header::kCodePage), values.code_page);
    store_u32(plain, at(header::kBuild), values.build);
    store_u32(plain, at(header::kSortOrder), jet4::kGeneralOrder);
    store_f64(plain, at(header::kCreationDate), values.creation_date);
    ByteVector password = password_bytes(values.password);
    apply_date_mask(password, values.creation_date);
    store_bytes(plain, at(header::kPassword), password);
    mask_into(page, part);
}

void store_password(MutableByteSpan page, const FileHeader& values, std::u16string_view password) {
    check_password(password);
    MaskedPart part = unmask(page);
    ByteVector bytes = password_bytes(password);
    apply_date_mask(bytes, values.creation_date);
    store_bytes(part, header::kPassword - header::kMasked, bytes);
    mask_into(page, part);
}

void mask_sid(MutableByteSpan sid, const FileHeader& values) {
    ByteVector source = password_bytes(values.password);
    append_u32(source, values.build);
    append_u32(source, jet4::kGeneralOrder);
    append_u64(source, std::bit_cast<std::uint64_t>(values.creation_date));
    source.resize(header::kPasswordBytes + header::kSidKeyEnd - header::kBuild);
    std::uint32_t key = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(values.creation_date));
    for (std::size_t i = 0; i < source.size() / 2; ++i) key ^= std::uint32_t{source[2 * i]} << (i % 24);
    ByteVector key_bytes;
    append_u32(key_bytes, key);
    Rc4(key_bytes).apply(sid);
}

}  // namespace jet
