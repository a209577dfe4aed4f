// What every part of an open file stands on: its pages, who has which of them, and what is read past.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <utility>

#include "jet/base/salvage.h"
#include "jet/pages/pager.h"
#include "jet/storage/chain_owners.h"
#include "jet/storage/long_value.h"
#include "jet/storage/usage_map.h"

namespace jet {

class Storage {
public:
    // As Pager.
    Storage(os::FileSystem& files, std::unique_ptr<os::File> file, const std::string& path, const PagerOptions& options)
        : pager_(files, std::move(file), path, options), allocator_(pager_) {}

    Pager& pager() { return pager_; }
    PageAllocator& allocator() { return allocator_; }
    ChainOwners& chain_owners() { return chain_owners_; }
    UsageMap map(RowId row) { return {pager_, allocator_, row}; }
    LongValues long_values() { return {pager_, allocator_, &chain_owners_}; }

    // From now on damage is named and read past, see salvage.h.
    void read_past_damage(DamageListener listener) { on_damage_ = std::move(listener); }
    // Tells the listener that `page`, or what lies on it, cannot be read. False when there is none, or the error is no
    // damage: then it is to be thrown on.
    bool passes_over(PageNumber page, const Error& error);

    // Pages have been taken back: what was remembered of them may no longer be true.
    void forget() {
        allocator_.forget();
        chain_owners_.forget();
    }

private:
    Pager pager_;
    PageAllocator allocator_;
    ChainOwners chain_owners_;
    DamageListener on_damage_;
    std::set<std::pair<PageNumber, std::string>> named_damage_;
};

}  // namespace jet
