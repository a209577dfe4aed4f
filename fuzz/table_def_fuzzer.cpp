// A table definition, of each format: read, rebuilt and read again it must be unchanged, and rows can be read by it.
// The last 100 bytes are the row.
#include <algorithm>

#include "fuzz/fuzz_target.h"
#include "jet/schema/table_def.h"
#include "jet/storage/row_codec.h"

namespace {

void use_definition(jet::ByteSpan input, const jet::Format& format, std::uint16_t code_page) {
    try {
        const jet::TableDef def = jet::parse_table_def(input, 20, format, code_page);
        const jet::ByteVector built = jet::build_table_def(def);
        if (jet::build_table_def(jet::parse_table_def(built, 20, format, code_page)) != built) __builtin_trap();
        const jet::RowReader row(input.last(std::min<std::size_t>(100, input.size())), def);
        std::vector<jet::StoredValue> values(def.columns.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const auto stored = row.stored(def.columns[i]);
            if (!stored) continue;
            if (!def.columns[i].is_long()) jet::decode_value(*stored, def.columns[i]);
            values[i].emplace(stored->begin(), stored->end());
        }
        jet::encode_row(def, values);
    } catch (const jet::Error&) {
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    use_definition({data, size}, jet::kJet4, 0);
    use_definition({data, size}, jet::kJet3, 1252);
    return 0;
}
