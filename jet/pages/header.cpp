#include "jet/pages/header.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "jet/base/code_page.h"
#include "jet/base/rc4.h"
#include "jet/base/types.h"

namespace jet {

namespace header = jet4::header;

namespace {

constexpr std::size_t kMaxPasswordCharacters = header::kPasswordBytes / 2;

// The part of the page that is masked, unmasked; offsets into it are those of the page.
class MaskedPart {
public:
    // All zeros.
    explicit MaskedPart(const Format& format) : bytes_(format.header.masked_bytes) {}
    static MaskedPart of(ByteSpan page, const Format& format) {
        MaskedPart part(format);
        store_bytes(part.bytes_, 0, slice(page, header::kMasked, part.bytes_.size()));
        Rc4(header::kMaskKey).apply(part.bytes_);
        return part;
    }
    void put_into(MutableByteSpan page) const {
        ByteVector masked = bytes_;
        Rc4(header::kMaskKey).apply(masked);
        store_bytes(page, header::kMasked, masked);
    }
    MutableByteSpan at(std::size_t offset) { return MutableByteSpan(bytes_).subspan(offset - header::kMasked); }
    ByteSpan at(std::size_t offset) const { return ByteSpan(bytes_).subspan(offset - header::kMasked); }

private:
    ByteVector bytes_;
};

bool has_magic(ByteSpan head, std::string_view text) {
    return head.size() >= header::kMagic + text.size() &&
           std::equal(text.begin(), text.end(), head.begin() + header::kMagic);
}

// With its NUL.
constexpr std::string_view kMagicText(header::kMagicText, sizeof header::kMagicText);

// The mask of the password: the whole days of the creation date. A hostile date must not overflow.
std::uint32_t date_mask(double creation_date) {
    if (!(std::abs(creation_date) < 2147483647.0)) return 0;
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(creation_date));
}

void apply_date_mask(MutableByteSpan password, double creation_date) {
    const std::uint32_t mask = date_mask(creation_date);
    for (std::size_t i = 0; i < password.size(); ++i) password[i] ^= static_cast<std::uint8_t>(mask >> (8 * (i % 4)));
}

ByteVector password_bytes(std::u16string_view password, const FileHeader& values) {
    ByteVector bytes;
    if (const std::uint16_t code_page = values.text_code_page()) {
        bytes = encode_narrow(password, code_page);
    } else {
        for (char16_t unit : password) append_u16(bytes, unit);
    }
    bytes.resize(values.format->header.password_bytes);
    return bytes;
}

void store_password(MaskedPart& part, const FileHeader& values, std::u16string_view password) {
    ByteVector bytes = password_bytes(password, values);
    if (values.format->header.has_creation_date) apply_date_mask(bytes, values.creation_date);
    store_bytes(part.at(header::kPassword), 0, bytes);
}

std::u16string load_password(const MaskedPart& part, const FileHeader& values) {
    const ByteSpan stored = slice(part.at(header::kPassword), 0, values.format->header.password_bytes);
    ByteVector bytes(stored.begin(), stored.end());
    std::u16string password;
    if (const std::uint16_t code_page = values.text_code_page()) {
        decode_narrow(bytes, code_page, password);
    } else {
        apply_date_mask(bytes, values.creation_date);
        for (std::size_t i = 0; i < bytes.size(); i += 2) password.push_back(load_u16(bytes, i));
    }
    return password.substr(0, password.find(u'\0'));
}

void check_password(std::u16string_view password) {
    if (password.size() > kMaxPasswordCharacters || password.find(u'\0') != std::u16string_view::npos) {
        fail(errors::kBadConversion, "A database password has at most 20 characters and no NUL.");
    }
}

}  // namespace

FileKind kind_of_file(ByteSpan head) {
    FileKind kind;
    if (!has_magic(head, kMagicText) || head.size() < header::kMasked + header::kMaskedBytes) return kind;
    const std::uint32_t version = load_u32(head, header::kVersion);
    if (version != header::kVersionJet3 && version != header::kVersionJet4) return kind;
    if (version == header::kVersionJet3) kind.format = &kJet3;
    kind.encryption_key = load_u32(MaskedPart::of(head, *kind.format).at(header::kEncryptionKey), 0);
    return kind;
}

FileHeader parse_header(ByteSpan page, const std::string& path) {
    const auto not_ours = [&](int number, const std::string& why) { fail(number, path + " " + why); };
    if (page.size() < kJet3.page_size || load_u32(page, 0) != header::kStart) {
        not_ours(errors::kNotADatabase, "is not a Jet database.");
    }
    if (!has_magic(page, kMagicText)) {
        not_ours(
            errors::kNotADatabase,
            has_magic(page, "Standard ACE DB")
                ? "is of the format of Access 2007 and later (.accdb), which this engine does not read; save it as "
                  "an .mdb of Access 2000 to 2003 in the program that it comes from."
                : "is not a Jet database: it begins like one, but names another engine.");
    }
    const std::uint32_t version = load_u32(page, header::kVersion);
    if (version != header::kVersionJet3 && version != header::kVersionJet4) {
        not_ours(errors::kNotADatabase, "is of a later file format than Jet 4.");
    }
    FileHeader result;
    result.format = version == header::kVersionJet3 ? &kJet3 : &kJet4;
    const Format& format = *result.format;
    if (page.size() < format.page_size) not_ours(errors::kDamaged, "is damaged: it ends inside its first page.");

    const MaskedPart part = MaskedPart::of(page, format);
    result.build = format.header.build_bytes == 2 ? load_u16(part.at(format.header.build), 0)
                                                  : load_u32(part.at(format.header.build), 0);
    if (format.header.has_creation_date) result.creation_date = load_f64(part.at(header::kCreationDate), 0);
    result.code_page = load_u16(part.at(header::kCodePage), 0);
    result.encryption_key = load_u32(part.at(header::kEncryptionKey), 0);
    result.lcid = load_u16(part.at(format.header.sort_order), 0);
    if (format.is_jet3()) {
        result.sort_sub_id = load_u16(part.at(header::kSortSubId), 0);
    } else {
        result.sort_version = load_u8(part.at(header::kSortVersion), 0);
    }
    if (load_u32(part.at(header::kCatalogTables), 0) != jet4::kObjectsPage) {
        corrupt(jet4::kHeaderPage, "the header does not name the catalogue's page");
    }
    if (format.is_jet3() && !find_code_page(result.code_page)) {
        not_ours(errors::kOldFormat, "is a Jet 3 database (Access 97) in code page " +
                                         std::to_string(result.code_page) +
                                         ", whose texts this engine cannot read; save it as an .mdb of Access 2000 to "
                                         "2003 in the program that it comes from.");
    }
    result.password = load_password(part, result);
    return result;
}

void build_header(MutableByteSpan page, const FileHeader& values) {
    check_password(values.password);
    const Format& format = *values.format;
    std::fill(page.begin(), page.end(), std::uint8_t{0});
    store_u32(page, 0, header::kStart);
    for (std::size_t i = 0; i < kMagicText.size(); ++i) {
        page[header::kMagic + i] = static_cast<std::uint8_t>(kMagicText[i]);
    }
    store_u32(page, header::kVersion, format.version);
    for (std::size_t i = 0; i < header::kCommitWordBytes; i += 2) {
        store_u16(page, format.header.commit_words + i, header::kCommitWordAtRest);
    }

    MaskedPart part(format);
    store_u32(part.at(header::kGlobalMap), 0, RowId{jet4::kGlobalMapPage, 0}.pack());
    store_u32(part.at(header::kSecondMap), 0, RowId{jet4::kGlobalMapPage, 1}.pack());
    for (std::uint32_t i = 0; i < 4; ++i) store_u32(part.at(header::kCatalogTables + 4 * i), 0, jet4::kObjectsPage + i);
    store_u16(part.at(header::kCodePage), 0, values.code_page);
    store_u32(part.at(header::kEncryptionKey), 0, values.encryption_key);
    store_u16(part.at(format.header.sort_order), 0, values.lcid);
    if (format.is_jet3()) {
        store_u16(part.at(header::kSortSubId), 0, values.sort_sub_id);
        store_u16(part.at(format.header.build), 0, static_cast<std::uint16_t>(values.build));
    } else {
        // One commit word a user; the first, of the exclusive user, starts one further.
        store_u16(page, format.header.commit_words, header::kFirstCommitWord);
        store_u32(page, header::kConstant, header::kConstantValue);
        store_u32(page, header::kVersionText, header::kVersionTextValue);
        store_u32(part.at(format.header.build), 0, values.build);
        store_u8(part.at(header::kSortVersion), 0, values.sort_version);
        store_f64(part.at(header::kCreationDate), 0, values.creation_date);
    }
    store_password(part, values, values.password);
    part.put_into(page);
}

void store_password(MutableByteSpan page, const FileHeader& values, std::u16string_view password) {
    check_password(password);
    MaskedPart part = MaskedPart::of(page, *values.format);
    store_password(part, values, password);
    part.put_into(page);
}

void store_encryption_key(MutableByteSpan page, std::uint32_t key) {
    MaskedPart part = MaskedPart::of(page, format_of(page));
    store_u32(part.at(header::kEncryptionKey), 0, key);
    part.put_into(page);
}

void mask_sid(MutableByteSpan sid, const FileHeader& values) {
    if (!values.format->header.has_creation_date) return;
    ByteVector source = password_bytes(values.password, values);
    append_u32(source, values.build);
    append_u32(source, values.lcid | std::uint32_t{values.sort_version} << 24);
    append_u64(source, std::bit_cast<std::uint64_t>(values.creation_date));
    source.resize(header::kPasswordBytes + header::kSidKeyEnd - header::kBuild);
    std::uint32_t key = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(values.creation_date));
    for (std::size_t i = 0; i < source.size() / 2; ++i) key ^= std::uint32_t{source[2 * i]} << (i % 24);
    ByteVector key_bytes;
    append_u32(key_bytes, key);
    Rc4(key_bytes).apply(sid);
}

}  // namespace jet
