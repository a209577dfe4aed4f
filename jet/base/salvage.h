// Reading what can be read of a damaged file.
//
// A file that is opened for reading only with OpenOptions::on_damage is read to its end: a scan, a record set, a column
// map and the reading of a row name what they cannot read and go on behind it. Without a listener, and always where
// the file may be written, the same damage is raised (3049).
//
//   a page of a table that is not the table's     its rows are passed over
//   pages behind the end of a truncated file      named once for each table
//   a map of pages that cannot be read            every page that says it is the table's is taken
//   a row that cannot be found or taken apart     passed over
//   a value that cannot be read                   reads as Null
//   a table's properties                          read as none
//
// What cannot be read at all is still raised: the header, the definition of a table, a password that does not fit.
#pragma once

#include <functional>
#include <string>

#include "jet/base/types.h"

namespace jet {

struct DamagedPlace {
    PageNumber page = 0;
    std::string what;  // one line of UTF-8: the page and the rule that it breaks
};

// Called once for each place and rule, from inside a read. It must not read the database itself.
using DamageListener = std::function<void(const DamagedPlace& place)>;

}  // namespace jet
