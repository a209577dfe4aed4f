#include "tests/soak/reference.h"

#include <algorithm>
#include <map>
#include <span>
#include <stdexcept>

#include "afx/dao_database.h"
#include "db/upgrade/upgrade.h"
#include "tests/support/fault_file_system.h"

namespace soak {
namespace {

using namespace testing_support;

constexpr char kPath[] = "/studio/old.mdb";

void make(OldFile::Kind kind, std::int32_t version) {
    OldFile file(kPath, kind, version);
    if (kind == OldFile::Kind::kStudio) {
        fill_studio(file, kSmallStudio);
    } else {
        fill_invoices(file, kSmallStudio);
    }
    file.close();
}

std::vector<Content> steps_of(OldFile::Kind kind, std::int32_t version, std::vector<std::uint8_t>& image) {
    FaultFileSystem disk;
    const UseFileSystem use(disk);
    make(kind, version);
    image = disk.content(kPath);
    std::vector<Content> contents{content_of(kPath)};
    const bool is_studio = kind == OldFile::Kind::kStudio;
    for (const db::UpgradeStep& step : is_studio ? db::studio_upgrade() : db::invoice_upgrade()) {
        if (!step.applies_to(version)) continue;
        CDaoDatabase database;
        database.Open(kPath, TRUE, FALSE, (";PWD=" + password_in(kPath)).c_str());
        try {
            step.run(database);
        } catch (CDaoException* e) {
            e->Delete();
            throw std::runtime_error(std::string("a step of the upgrade failed: ") + step.effect);
        }
        database.Close();
        if (!step.with_next) contents.push_back(content_of(kPath));
    }
    return contents;
}

}  // namespace

const OldStudio& old_studio(std::int32_t version, const jet::Format& format) {
    static std::map<std::pair<std::int32_t, bool>, OldStudio> studios;
    const std::pair key(version, format.is_jet3());
    const auto known = studios.find(key);
    if (known != studios.end()) return known->second;
    const UseOldFormat use(format);
    OldStudio studio;
    studio.main_steps = steps_of(OldFile::Kind::kStudio, version, studio.main);
    studio.invoice_steps = steps_of(OldFile::Kind::kInvoice, version, studio.invoice);
    return studios.emplace(key, std::move(studio)).first->second;
}

std::string difference_to_nearest(const std::vector<Content>& steps, const Content& found) {
    std::string nearest;
    for (const Content& step : steps) {
        if (step == found) return {};
        const std::string text = difference(step, found);
        if (nearest.empty() || text.size() < nearest.size()) nearest = text;
    }
    return nearest.empty() ? "no step" : nearest;
}

}  // namespace soak
