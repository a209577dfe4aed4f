#include "tools/studio.h"

#include <algorithm>
#include <string_view>

#include "afx/cache_pages.h"
#include "db/content.h"
#include "db/database_files.h"
#include "db/session.h"
#include "frame/entry_points.h"
#include "frame/failure.h"
#include "tools/errors.h"
#include "tools/gate_call.h"
#include "tools/open_file.h"
#include "tools/studio_files.h"

namespace tools {
namespace {

// An instance of the class from its factory.
template <class Gate>
Gate* make_gate(const CLSID& clsid, const IID& iid) {
    void* object = nullptr;
    if (FAILED(frame::get_class_object(clsid, IID_IClassFactory, &object))) {
        throw CommandError("the component gives no class factory");
    }
    auto* const factory = static_cast<IClassFactory*>(object);
    const HRESULT made = factory->CreateInstance(nullptr, iid, &object);
    factory->Release();
    if (FAILED(made)) throw CommandError("the component makes no gate");
    return static_cast<Gate*>(object);
}

// A gate opens its databases; what the engine has to say about a failure is the error's text.
template <class Gate>
void open_databases(Gate& gate, const std::string& folder) {
    HRESULT result = E_FAIL;
    try {
        result = gate.OpenDB();
    } catch (CDaoException* exception) {
        const LONG number = exception->m_pErrorInfo->m_lErrorCode;
        exception->Delete();
        if (is_in_use(static_cast<int>(number))) throw CommandError(in_use_text("the studio in " + folder));
        const std::string words = gate_words(gate);
        const std::size_t why = std::string_view(frame::kOpening.failed).size() + 1;
        throw CommandError("the studio in " + folder +
                           " cannot be opened: " + words.substr(std::min(why, words.size())));
    }
    if (FAILED(result)) throw CommandError("the studio in " + folder + " cannot be opened");
}

db::Opening opening_for(Studio::Purpose purpose) {
    return purpose == Studio::Purpose::kChange ? db::Opening::kAsTheyAre : db::Opening::kMakeAndUpgrade;
}

}  // namespace

Studio::Studio(const std::string& folder, Purpose purpose) : folder_(folder), purpose_(purpose) {
    // An upgrade reads everything more than once.
    if (purpose != Purpose::kUpgrade) afx::cache_pages = kToolCachePages;
}

Studio::~Studio() {
    if (gate_ != nullptr) close();
    if (gear_ != nullptr) gear_->Release();
    if (gate_ != nullptr) gate_->Release();
}

IDBgate1& Studio::open() {
    if (is_open_) return *gate_;
    const StudioFiles files(folder_);
    if (purpose_ != Purpose::kUpgrade) files.require_current();
    db::set_database_folder(files.folder());
    db::set_opening(opening_for(purpose_));
    if (gate_ == nullptr) gate_ = make_gate<IDBgate1>(CLSID_DBgate1, IID_IDBgate1);
    open_databases(*gate_, files.folder());
    is_open_ = true;
    // Another program may have been there since the look at the versions.
    LONG version = 0;
    if (purpose_ != Purpose::kUpgrade && (FAILED(gate_->GetDBVer(&version)) || version != db::kCurrentVersion)) {
        throw CommandError("the studio in " + files.folder() + " has just got another version; try again");
    }
    return *gate_;
}

IDBGate3& Studio::open_gear() {
    if (!is_gear_open_) {
        // The databases are the process's own: the first gate opens them, this one attaches.
        open();
        if (gear_ == nullptr) gear_ = make_gate<IDBGate3>(CLSID_DBgate3, IID_IDBGate3);
        open_databases(*gear_, folder_);
        is_gear_open_ = true;
    }
    return *gear_;
}

void Studio::close() {
    gate_->CloseDB();
    is_open_ = is_gear_open_ = false;
}

}  // namespace tools
