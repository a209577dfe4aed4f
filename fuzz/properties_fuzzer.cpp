// A property blob, of each format: read, rebuilt and read again it must be unchanged.
#include "fuzz/fuzz_target.h"
#include "jet/schema/properties.h"

namespace {

void use_blob(jet::ByteSpan blob, std::uint16_t code_page) {
    try {
        const jet::PropertySet set = jet::parse_properties(blob, code_page);
        const jet::ByteVector built = jet::build_properties(set);
        if (jet::build_properties(jet::parse_properties(built, code_page)) != built) __builtin_trap();
        jet::PropertySet changed = set;
        changed.set_column_flag(u"Name", u"AllowZeroLength", true);
        changed.remove_column(u"Notes");
        jet::parse_properties(jet::build_properties(changed), code_page);
    } catch (const jet::Error&) {
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    use_blob({data, size}, 0);
    use_blob({data, size}, 1252);
    return 0;
}
