// The property blob: a list of names, then one block of values for the object and one for each column
// that has any. What is not understood is kept, so that a blob read and built again is the same bytes.
#include "jet/properties.h"

#include <algorithm>

#include "jet/jet4.h"

namespace jet {

namespace {

namespace format = jet4::properties;

[[noreturn]] void damaged(const char* what) {
    fail(errors::kDamaged, std::string("The database is damaged: the properties of a table ") + what + ".");
}

// Reads a part of the blob front to back.
class BlobReader {
public:
    explicit BlobReader(ByteSpan bytes) : bytes_(bytes) {}

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
        if (name_bytes % 2 != 0) damaged("hold a name with half a character");
        const ByteSpan text = take(name_bytes);
        std::u16string name(name_bytes / 2, u'\0');
        for (std::size_t i = 0; i < name.size(); ++i) name[i] = static_cast<char16_t>(load_u16(text, 2 * i));
        return name;
    }

private:
    ByteSpan bytes_;
};

PropertyBlock parse_block(std::uint16_t type, BlobReader reader, const std::vector<std::u16string>& names) {
    PropertyBlock block;
    block.type = type;
    const std::uint32_t header_bytes = reader.take_u32();
    block.owner = reader.take_name();
    if (header_bytes != format::kOwnerHeader + 2 * block.owner.size()) damaged("hold a block with a wrong header");
    while (!reader.at_end()) {
        Property property;
        const std::uint16_t length = reader.take_u16();
        property.ddl = reader.take_u8();
        property.type = static_cast<ColumnType>(reader.take_u8());
        const std::uint16_t name = reader.take_u16();
        const std::uint16_t data_bytes = reader.take_u16();
        if (length != format::kValueHeader + data_bytes) damaged("hold a value of a wrong length");
        if (name >= names.size()) damaged("hold a value without a name");
        property.name = names[name];
        const ByteSpan data = reader.take(data_bytes);
        property.data.assign(data.begin(), data.end());
        block.properties.push_back(std::move(property));
    }
    return block;
}

void append_name(ByteVector& to, std::u16string_view name) {
    append_u16(to, static_cast<std::uint16_t>(2 * name.size()));
    for (const char16_t unit : name) append_u16(to, unit);
}

void append_block(ByteVector& to, std::uint16_t type, ByteSpan body) {
    append_u32(to, static_cast<std::uint32_t>(format::kBlockHeader + body.size()));
    append_u16(to, type);
    append_bytes(to, body);
}

// `Set` is PropertySet, const or not; so is the property found.
template <class Set>
auto* find_property(Set& set, std::u16string_view column, std::u16string_view name) {
    decltype(&set.blocks[0].properties[0]) found = nullptr;
    for (auto& block : set.blocks) {
        if (block.type != format::kColumnBlock || !same_name(block.owner, column)) continue;
        for (auto& property : block.properties) {
            if (!found && same_name(property.name, name)) found = &property;
        }
    }
    return found;
}

}  // namespace

bool PropertySet::column_flag(std::u16string_view column, std::u16string_view property, bool absent) const {
    const Property* found = find_property(*this, column, property);
    if (!found) return absent;
    return std::any_of(found->data.begin(), found->data.end(), [](std::uint8_t byte) { return byte != 0; });
}

void PropertySet::set_column_flag(std::u16string_view column, std::u16string_view property, bool value) {
    const ByteVector data{static_cast<std::uint8_t>(value ? 1 : 0)};
    if (Property* found = find_property(*this, column, property)) {
        found->data = data;
        return;
    }
    const auto is_columns_block = [&](const PropertyBlock& block) {
        return block.type == format::kColumnBlock && same_name(block.owner, column);
    };
    auto block = std::find_if(blocks.begin(), blocks.end(), is_columns_block);
    if (block == blocks.end()) {
        block = blocks.insert(blocks.end(), {format::kColumnBlock, std::u16string(column), {}});
    }
    block->properties.push_back({std::u16string(property), 1, ColumnType::kBoolean, data});
}

void PropertySet::remove_column(std::u16string_view column) {
    std::erase_if(blocks, [&](const PropertyBlock& block) {
        return block.type == format::kColumnBlock && same_name(block.owner, column);
    });
}

PropertySet parse_properties(ByteSpan blob) {
    PropertySet set;
    if (blob.empty()) return set;
    BlobReader reader(blob);
    if (reader.take_u32() != format::kMagicValue) damaged("lack their mark");
    bool named = false;
    while (!reader.at_end()) {
        const std::uint32_t block_bytes = reader.take_u32();
        const std::uint16_t type = reader.take_u16();
        if (block_bytes < format::kBlockHeader) damaged("hold a block of a wrong length");
        BlobReader body(reader.take(block_bytes - format::kBlockHeader));
        if (type == format::kNameBlock) {
            if (named) damaged("have two lists of names");
            named = true;
            while (!body.at_end()) set.names.push_back(body.take_name());
        } else if (type == format::kObjectBlock || type == format::kColumnBlock) {
            set.blocks.push_back(parse_block(type, body, set.names));
        } else {
            damaged("hold a block of an unknown kind");
        }
    }
    return set;
}

ByteVector build_properties(const PropertySet& set) {
    if (set.names.empty() && set.blocks.empty()) return {};
    std::vector<std::u16string> names = set.names;
    const auto number_of = [&](const std::u16string& name) {
        const auto found = std::find(names.begin(), names.end(), name);
        const auto number = static_cast<std::uint16_t>(found - names.begin());
        if (found == names.end()) names.push_back(name);
        return number;
    };

    ByteVector values;
    for (const PropertyBlock& block : set.blocks) {
        ByteVector body;
        append_u32(body, static_cast<std::uint32_t>(format::kOwnerHeader + 2 * block.owner.size()));
        append_name(body, block.owner);
        for (const Property& property : block.properties) {
            append_u16(body, static_cast<std::uint16_t>(format::kValueHeader + property.data.size()));
            append_u8(body, property.ddl);
            append_u8(body, static_cast<std::uint8_t>(property.type));
            append_u16(body, number_of(property.name));
            append_u16(body, static_cast<std::uint16_t>(property.data.size()));
            append_bytes(body, property.data);
        }
        append_block(values, block.type, body);
    }

    ByteVector blob;
    append_u32(blob, format::kMagicValue);
    ByteVector name_list;
    for (const std::u16string& name : names) append_name(name_list, name);
    append_block(blob, format::kNameBlock, name_list);
    append_bytes(blob, values);
    return blob;
}

}  // namespace jet
