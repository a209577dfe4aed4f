// The property blob: a list of names, then one block of values for the object and one for each column
// that has any. What is not understood is kept, so that a blob read and built again is the same bytes.
#include "jet/schema/properties.h"

#include <algorithm>
#include <optional>

#include "jet/base/code_page.h"
#include "jet/base/format.h"
#include "jet/indexes/collation.h"

namespace jet {

namespace {

namespace layout = jet4::properties;

[[noreturn]] void damaged(const char* what) {
    fail(errors::kDamaged, std::string("The database is damaged: the properties of a table ") + what + ".");
}

// Reads a part of the blob front to back.
class BlobReader {
public:
    BlobReader(ByteSpan bytes, std::uint16_t code_page) : bytes_(bytes), code_page_(code_page) {}

    bool at_end() const { return bytes_.empty(); }
    ByteSpan take(std::size_t count) {
        if (count > bytes_.size()) damaged("end too early");
        const ByteSpan taken = bytes_.first(count);
        bytes_ = bytes_.subspan(count);
        return taken;
    }
    std::uint8_t take_u8() { return load_u8(take(1), 0); }
    std::uint16_t take_u16() { return load_u16(take(2), 0); }
    std::uint32_t take_u32() { return load_u32(take(4), 0); }
    std::u16string take_name() {
        const std::size_t name_bytes = take_u16();
        const ByteSpan text = take(name_bytes);
        std::u16string name;
        if (code_page_ != 0) {
            decode_narrow(text, code_page_, name);
            return name;
        }
        if (name_bytes % 2 != 0) damaged("hold a name with half a character");
        name.resize(name_bytes / 2);
        for (std::size_t i = 0; i < name.size(); ++i) name[i] = static_cast<char16_t>(load_u16(text, 2 * i));
        return name;
    }

    std::uint16_t code_page() const { return code_page_; }
    std::size_t left() const { return bytes_.size(); }

private:
    ByteSpan bytes_;
    std::uint16_t code_page_;
};

// Blocks that a table of the most columns can have, and some of columns that are gone.
constexpr std::size_t kMaxBlocks = 2 * jet4::kMaxColumns;
constexpr std::size_t kMaxNames = 0x10000;  // a value has two bytes to name one

PropertyBlock parse_block(std::uint16_t type, BlobReader reader, PropertySet& set) {
    PropertyBlock block;
    block.type = type;
    const std::uint32_t header_bytes = reader.take_u32();
    const std::size_t left = reader.left();
    block.owner = reader.take_name();
    if (header_bytes != sizeof header_bytes + left - reader.left()) damaged("hold a block with a wrong header");
    while (!reader.at_end()) {
        Property property;
        const std::uint16_t length = reader.take_u16();
        property.ddl = reader.take_u8();
        property.type = static_cast<ColumnType>(reader.take_u8());
        property.name = reader.take_u16();
        property.data_bytes = reader.take_u16();
        if (length != layout::kValueHeader + property.data_bytes) damaged("hold a value of a wrong length");
        if (property.name >= set.names.size()) damaged("hold a value without a name");
        property.data_at = static_cast<std::uint32_t>(set.data.size());
        append_bytes(set.data, reader.take(property.data_bytes));
        block.properties.push_back(property);
    }
    return block;
}

ByteVector name_bytes(std::u16string_view name, std::uint16_t code_page) {
    if (code_page != 0) return encode_narrow(name, code_page);
    ByteVector bytes;
    for (const char16_t unit : name) append_u16(bytes, unit);
    return bytes;
}

std::u16string text_of(ByteSpan bytes, std::uint16_t code_page) {
    std::u16string text;
    if (code_page != 0) {
        decode_narrow(bytes, code_page, text);
    } else {
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) text.push_back(load_u16(bytes, i));
    }
    return text;
}

void append_text(ByteVector& to, ByteSpan name) {
    append_u16(to, static_cast<std::uint16_t>(name.size()));
    append_bytes(to, name);
}

void append_block(ByteVector& to, std::uint16_t type, ByteSpan body) {
    append_u32(to, static_cast<std::uint32_t>(layout::kBlockHeader + body.size()));
    append_u16(to, type);
    append_bytes(to, body);
}

// Which of the names are `wanted`, in any case.
std::vector<bool> names_like(const std::vector<std::u16string>& names, std::u16string_view wanted) {
    std::vector<bool> like(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) like[i] = same_name(names[i], wanted);
    return like;
}

std::uint32_t mark_of(std::uint16_t code_page) {
    return code_page != 0 ? kJet3.properties_mark : kJet4.properties_mark;
}

bool is_true(ByteSpan data) {
    return std::any_of(data.begin(), data.end(), [](std::uint8_t byte) { return byte != 0; });
}

}  // namespace

void PropertySet::set_data(Property& property, ByteSpan bytes) {
    property.data_at = static_cast<std::uint32_t>(data.size());
    property.data_bytes = static_cast<std::uint16_t>(bytes.size());
    append_bytes(data, bytes);
}

void PropertySet::visit_column_flags(std::u16string_view property,
                                     const std::function<void(std::u16string_view column, bool value)>& visit) const {
    const std::vector<bool> wanted = names_like(names, property);
    for (const PropertyBlock& block : blocks) {
        if (block.type != layout::kColumnBlock) continue;
        const auto found = std::find_if(block.properties.begin(), block.properties.end(),
                                        [&](const Property& candidate) { return wanted[candidate.name]; });
        if (found != block.properties.end()) visit(block.owner, is_true(data_of(*found)));
    }
}

bool PropertySet::column_flag(std::u16string_view column, std::u16string_view property, bool absent) const {
    std::optional<bool> flag;
    visit_column_flags(property, [&](std::u16string_view owner, bool value) {
        if (!flag && same_name(owner, column)) flag = value;
    });
    return flag.value_or(absent);
}

void PropertySet::set_column_flag(std::u16string_view column, std::u16string_view property, bool value) {
    const std::uint8_t stored[] = {static_cast<std::uint8_t>(value ? 1 : 0)};
    const std::vector<bool> wanted = names_like(names, property);
    PropertyBlock* own_block = nullptr;
    for (PropertyBlock& block : blocks) {
        if (block.type != layout::kColumnBlock || !same_name(block.owner, column)) continue;
        if (!own_block) own_block = &block;
        for (Property& candidate : block.properties) {
            if (!wanted[candidate.name]) continue;
            set_data(candidate, stored);
            return;
        }
    }
    if (!own_block) {
        blocks.push_back({layout::kColumnBlock, std::u16string(column), {}});
        own_block = &blocks.back();
    }
    auto name = std::find(names.begin(), names.end(), property);
    if (name == names.end()) {
        if (names.size() == kMaxNames) damaged("have no room for another name");
        name = names.insert(names.end(), std::u16string(property));
    }
    Property added;
    added.name = static_cast<std::uint16_t>(name - names.begin());
    added.ddl = 1;
    set_data(added, stored);
    own_block->properties.push_back(added);
}

void PropertySet::remove_column(std::u16string_view column) {
    std::erase_if(blocks, [&](const PropertyBlock& block) {
        return block.type == layout::kColumnBlock && same_name(block.owner, column);
    });
}

PropertySet parse_properties(ByteSpan blob, std::uint16_t code_page) {
    PropertySet set;
    set.code_page = code_page;
    if (blob.empty()) return set;
    BlobReader reader(blob, code_page);
    if (reader.take_u32() != mark_of(code_page)) damaged("lack their mark");
    bool named = false;
    while (!reader.at_end()) {
        const std::uint32_t block_bytes = reader.take_u32();
        const std::uint16_t type = reader.take_u16();
        if (block_bytes < layout::kBlockHeader) damaged("hold a block of a wrong length");
        BlobReader body(reader.take(block_bytes - layout::kBlockHeader), code_page);
        if (type == layout::kNameBlock) {
            if (named) damaged("have two lists of names");
            named = true;
            while (!body.at_end()) {
                if (set.names.size() == kMaxNames) damaged("have too many names");
                set.names.push_back(body.take_name());
            }
        } else if (type == layout::kObjectBlock || type == layout::kColumnBlock) {
            if (set.blocks.size() == kMaxBlocks) damaged("belong to more columns than a table can have");
            set.blocks.push_back(parse_block(type, body, set));
        } else {
            damaged("hold a block of an unknown kind");
        }
    }
    return set;
}

PropertySet convert_properties(const PropertySet& set, std::uint16_t code_page) {
    PropertySet converted = set;
    converted.code_page = code_page;
    converted.data.clear();
    for (PropertyBlock& block : converted.blocks) {
        for (Property& property : block.properties) {
            const ByteSpan data = set.data_of(property);
            ByteVector bytes(data.begin(), data.end());
            const bool is_text = property.type == ColumnType::kText || property.type == ColumnType::kMemo;
            if (is_text && set.code_page != code_page) bytes = name_bytes(text_of(data, set.code_page), code_page);
            converted.set_data(property, bytes);
        }
    }
    return converted;
}

ByteVector build_properties(const PropertySet& set) {
    if (set.names.empty() && set.blocks.empty()) return {};
    ByteVector values;
    for (const PropertyBlock& block : set.blocks) {
        ByteVector body;
        const ByteVector owner = name_bytes(block.owner, set.code_page);
        append_u32(body, static_cast<std::uint32_t>(layout::kOwnerHeader + owner.size()));
        append_text(body, owner);
        for (const Property& property : block.properties) {
            append_u16(body, static_cast<std::uint16_t>(layout::kValueHeader + property.data_bytes));
            append_u8(body, property.ddl);
            append_u8(body, static_cast<std::uint8_t>(property.type));
            append_u16(body, property.name);
            append_u16(body, property.data_bytes);
            append_bytes(body, set.data_of(property));
        }
        append_block(values, block.type, body);
    }

    ByteVector blob;
    append_u32(blob, mark_of(set.code_page));
    ByteVector name_list;
    for (const std::u16string& name : set.names) append_text(name_list, name_bytes(name, set.code_page));
    append_block(blob, layout::kNameBlock, name_list);
    append_bytes(blob, values);
    return blob;
}

}  // namespace jet
