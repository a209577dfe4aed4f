// The schema version of a file, and the steps that bring older files up to date.
//
// An upgrade is not one transaction, but each of its steps is: a step that fails keeps what it had done, the
// steps before it stay in any case, and after a crash the file is as it was between two steps. The number in
// the header is set before any change of the schema, deliberately: an upgrade is tried once.
#pragma once

#include <kvdb/com.h>

#include <span>

class CDaoDatabase;

namespace db {

// `DBversion` of the first header row; 0 when there is none or the database is not open. Throws
// CDaoException* where the header cannot be read.
LONG stored_version(CDaoDatabase& database);

struct UpgradeStep {
    enum class OnFailure { kStop, kGoOn };
    static constexpr LONG kEveryVersion = 0;

    LONG below;          // for files of a version below this one, or kEveryVersion but the current one
    const char* effect;  // one line, for people
    OnFailure on_failure;
    void (*run)(CDaoDatabase& database);  // throws CDaoException*; what it had done by then stays
    bool with_next = false;               // both are one transaction

    bool applies_to(LONG version) const;
};

// In the order of their running.
std::span<const UpgradeStep> studio_upgrade();
std::span<const UpgradeStep> invoice_upgrade();

// For a program that contains the component: told of every step that runs; null: nobody is.
class UpgradeObserver {
public:
    virtual ~UpgradeObserver() = default;
    virtual void begins(const UpgradeStep& step) = 0;
    // It did not do all it was to do.
    virtual void failed(const UpgradeStep& step) = 0;
};
void set_upgrade_observer(UpgradeObserver* observer);

// 0: nothing was to be done; 1: the upgrade ran through; -1: it stopped at a step that failed. Nothing is
// thrown, and the database stays open.
int upgrade_main_file(CDaoDatabase& database);
// `version` is what stored_version has given.
int upgrade_invoice_file(CDaoDatabase& database, LONG version);

}  // namespace db
