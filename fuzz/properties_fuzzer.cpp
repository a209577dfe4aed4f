// A property blob: read, rebuilt and read again it must be unchanged.
#include "fuzz/fuzz_target.h"
#include "jet/schema/properties.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const jet::PropertySet set = jet::parse_properties({data, size});
        const jet::ByteVector built = jet::build_properties(set);
        if (jet::build_properties(jet::parse_properties(built)) != built) __builtin_trap();
        jet::PropertySet changed = set;
        changed.set_column_flag(u"Name", u"AllowZeroLength", true);
        changed.remove_column(u"Notes");
        jet::parse_properties(jet::build_properties(changed));
    } catch (const jet::Error&) {
    }
    return 0;
}
