// The schema version of a file, and the steps that upgrade older files.
//
// An upgrade is not one transaction, but each of its steps is: a failed step keeps its partial changes, the
// steps before it stay in any case, and after a crash the file is as it was between two steps. The version number in
// the header is set before any change of the schema, deliberately: an upgrade is tried once.
#pragma once

#include <kvdb/com.h>

#include <span>

class CDaoDatabase;

namespace db {

// `DBversion` of the first header row; 0 when there is none or the database is not open. Throws CDaoException* when the
// header cannot be read.
LONG stored_version(CDaoDatabase& database);

struct UpgradeStep {
    enum class OnFailure { kStop, kGoOn };
    static constexpr LONG kEveryVersion = 0;

    LONG below;          // applies to files of a version below this one, or kEveryVersion but the current one
    const char* effect;  // one line for the user
    OnFailure on_failure;
    void (*run)(CDaoDatabase& database);  // throws CDaoException*; partial changes stay
    bool with_next = false;               // in one transaction with the next step

    bool applies_to(LONG version) const;
};

// In the order in which they run.
std::span<const UpgradeStep> studio_upgrade();
std::span<const UpgradeStep> invoice_upgrade();

// Notified of every step that runs; null: none. For a program that embeds the component.
class UpgradeObserver {
public:
    virtual ~UpgradeObserver() = default;
    virtual void begins(const UpgradeStep& step) = 0;
    // The step was not completed.
    virtual void failed(const UpgradeStep& step) = 0;
};
void set_upgrade_observer(UpgradeObserver* observer);

// 0: nothing to do; 1: the upgrade ran to the end; -1: it stopped at a failed step, or the file takes no new tables and
// none was begun. Throws nothing, and the database
// stays open.
int upgrade_main_file(CDaoDatabase& database);
// `version` is the result of stored_version.
int upgrade_invoice_file(CDaoDatabase& database, LONG version);

}  // namespace db
