// The texts of the component's string table. On Windows they are resources of the library, elsewhere constants; both
// are generated from this file, which the resource compiler reads too.
#ifndef KVDB_STRING_RESOURCES_H
#define KVDB_STRING_RESOURCES_H

#define KVDB_STRING_WELCOME 101
#define KVDB_STRING_VERSE 102

// The note of the demo project. Trailing blanks of paragraphs and the lower-case letter after a full stop are part of
// it.
#define KVDB_TEXT_WELCOME                                                                                              \
    "                 ===========================\n"                                                                   \
    "                   Welcome to Korvane !\n"                                                                        \
    "                 ===========================\n"                                                                   \
    "\n"                                                                                                               \
    "When you launch Korvane for the first time, a new sample project is created. \n"                                  \
    "\n"                                                                                                               \
    "Many of the fields are filled with sample entries, letting you have a quick idea about the information you can "  \
    "gather later by yourself.\n"                                                                                      \
    "\n"                                                                                                               \
    "Many fields in the Korvane lists function differently. Editing these sample list entries will let you "           \
    "understand easily how it works. Click (or Double-Click in some cases) on list fields turn them into edit mode.\n" \
    "\n"                                                                                                               \
    "Korvane is simple and intuitive application. it won't take you long before start using it. \n"                    \
    "\n"                                                                                                               \
    "Hope it will be useful to your studio and your music."

// Never loaded.
#define KVDB_TEXT_VERSE                          \
    "The tape has stopped, the lamps are low,\n" \
    "the last take leaves the room;\n"           \
    "what nobody wrote down will go\n"           \
    "the way of every tune."

#ifndef RC_INVOKED

#include <cstdint>
#include <string>

namespace db {

// Text `id` of the string table; "" where there is none.
std::string string_resource(std::uint16_t id);

}  // namespace db

#endif  // RC_INVOKED
#endif  // KVDB_STRING_RESOURCES_H
