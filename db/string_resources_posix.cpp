// Platforms without resources compile the texts in.
#include "db/string_resources.h"

namespace db {

std::string string_resource(std::uint16_t id) {
    switch (id) {
        case KVDB_STRING_WELCOME: return KVDB_TEXT_WELCOME;
        case KVDB_STRING_VERSE: return KVDB_TEXT_VERSE;
        default: return {};
    }
}

}  // namespace db
