// All rows of a surveyed table, one after the other as the table has them.
//
// A deleted row's slot is marked, and never given. A row that has moved stands in a slot of its own: it is given where
// the pointer to it stands, or at the end when no pointer leads to it any more.
#pragma once

#include <functional>

#include "jet/base/types.h"
#include "tools/rescue/found_row.h"
#include "tools/rescue/survey.h"

namespace tools {

// Why a row is not beyond doubt.
enum Doubt : unsigned {
    kNoDoubt = 0,
    kBadValue = 1,     // a value cannot be what it is stored as, and reads as Null
    kMended = 2,       // where it begins was found from what it holds
    kNoPointer = 4,    // it has moved, and what led to it is lost
    kGuessedPage = 8,  // its page does not say that it is the table's
    kCutValue = 16,    // of a memo or a picture only a part is left, or nothing
    kStrangeKey = 32,  // its key was given to no row yet, or twice
};

struct WalkCounts {
    std::size_t unreadable = 0;  // slots of living rows that hold none
    std::size_t dangling = 0;    // pointers that lead to no row
};

// `row` is valid during the call only.
using FoundRowVisitor = std::function<void(jet::RowId place, const FoundRow& row, unsigned doubts)>;

WalkCounts walk_rows(const PageSource& pages, const SurveyedTable& table, const FoundRowVisitor& visit);

}  // namespace tools
