#include "tools/rescue/finding.h"

#include <algorithm>

#include "tools/long_work.h"
#include "tools/paths.h"
#include "tools/value_text.h"

namespace tools {
namespace {

using enum Grade;

constexpr char kRowsUnsafe[] = "Rows of this page may be missing or wrong, and new ones may be written over them.";
constexpr char kMapUnsafe[] =
    "The file does not know for sure which pages are whose: a change may write over other data.";
constexpr char kLongUnsafe[] = "A memo may be cut, or show another one's text.";
constexpr char kIndexUnsafe[] =
    "Programs that look rows up by this index may not find them; the rows themselves are there.";

constexpr Rule kRules[] = {
    {"file-size", kDamage, "The file was cut off, or its last writing was; what stood behind the cut is lost."},
    {"page-range", kDamage, "The file refers to pages behind its end: it was cut off, and what stood there is lost."},
    {"page-twice", kDamage, "Two things claim one page; one of them will write over the other."},
    {"page-free", kDamage, "A page that is in use is marked as free: the next row that needs room writes over it."},
    {"page-leaked", kRemark, "Room is taken that nobody uses; nothing is missing."},
    {"catalog", kDamage, "The list of the tables cannot be read to its end; tables may seem to be gone."},
    {"table-definition", kDamage, "The columns of a table cannot be read, so its rows cannot be shown."},
    {"definition-length", kDamage, "The columns of a table cannot be read in full."},
    {"definition-free-count", kRemark, "A count of free bytes is wrong; nobody relies on it."},
    {"map", kDamage, kMapUnsafe},
    {"map-range", kDamage, "The file refers to pages behind its end: it was cut off, and what stood there is lost."},
    {"free-map", kDamage, kMapUnsafe},
    {"map-row-twice", kDamage, kMapUnsafe},
    {"map-row-lost", kRemark, "A list of pages is left over from something that was removed; nothing is missing."},
    {"slot-count", kDamage, kRowsUnsafe},
    {"slot-order", kDamage, kRowsUnsafe},
    {"page-free-count", kDamage,
     "The page says that it has another amount of room than it has: a new row may not fit it."},
    {"row-page", kDamage, "A page of this table holds something else; its rows are gone from their place."},
    {"row-bounds", kDamage, "A row cannot be read."},
    {"row-value", kDamage, "A value of a row cannot be read."},
    {"row-count", kRemark,
     "A table's count of its rows is wrong; the rows themselves are there, and are listed rightly."},
    {"moved-row-lost", kDamage, "A row that had been moved can no longer be reached."},
    {"moved-row-pointer", kDamage, "What leads to a moved row leads to nothing: a row is lost, or out of reach."},
    {"moved-row-twice", kDamage, "One row is shown in two places; deleting one deletes the other."},
    {"long-page", kDamage, kLongUnsafe},
    {"long-reference", kDamage, kLongUnsafe},
    {"long-twice", kDamage, kLongUnsafe},
    {"long-length", kDamage, kLongUnsafe},
    {"long-stamp", kDamage, kLongUnsafe},
    {"long-lost", kRemark, "Room is taken by a memo that no row has any more; nothing is missing."},
    {"index-page", kDamage, kIndexUnsafe},
    {"index-map", kDamage, kIndexUnsafe},
    {"index-free-count", kDamage, kIndexUnsafe},
    {"index-level", kDamage, kIndexUnsafe},
    {"index-level-unset", kRemark, "Some programs leave this byte empty; searching works without it."},
    {"index-shape", kDamage, kIndexUnsafe},
    {"index-separator", kDamage, kIndexUnsafe},
    {"index-chain", kDamage, kIndexUnsafe},
    {"index-order", kDamage, kIndexUnsafe},
    {"index-entry", kDamage, kIndexUnsafe},
    {"index-key", kDamage, kIndexUnsafe},
    {"index-key-former", kRemark,
     "Another program has sorted a text with letters like a double s or kana its own way; the row is there, and "
     "can be changed."},
    {"index-key-order", kRemark,
     "The file's code page or language has an order of texts that is not known here; the rows are there, and the table "
     "is read and not written."},
    {"index-unique", kDamage, kIndexUnsafe},
    {"index-missing", kDamage, kIndexUnsafe},
    {"unreadable", kDamage, "The file cannot be opened as it is."},
    {"more", kDamage, "The check has given up counting."},
};

constexpr Rule kUnknownRule = {"other", kDamage, "Something in the file is not as it must be."};

std::string place_of(const jet::Violation& violation) {
    return "page " + std::to_string(violation.page) +
           (violation.row < 0 ? std::string() : ", row " + std::to_string(violation.row)) + ": ";
}

void add_group(std::string& text, const FindingGroup& group, std::size_t listed) {
    text +=
        "  " + std::string(group.rule->name) + " (" + std::to_string(group.count) + "): " + group.rule->meaning + "\n";
    std::size_t shown = 0;
    for (const jet::Violation& violation : group.listed) {
        if (shown == listed || violation.count > 1) break;
        text += "    " + place_of(violation) + violation.detail + "\n";
        ++shown;
    }
    if (shown < group.count) text += "    and " + std::to_string(group.count - shown) + " more\n";
}

}  // namespace

const Rule& rule_of(std::string_view name) {
    const auto rule = std::find_if(std::begin(kRules), std::end(kRules), [&](const Rule& r) { return name == r.name; });
    return rule != std::end(kRules) ? *rule : kUnknownRule;
}

CheckResult check_file(jet::Database& database, const std::string& path) {
    CheckResult result;
    result.path = path;
    LongWork work("pages checked", database.pager().page_count());
    for (jet::Violation& violation : jet::check_structure(database, [&] { work.step(); })) {
        const Rule& rule = rule_of(violation.rule);
        auto group = std::find_if(result.groups.begin(), result.groups.end(),
                                  [&](const FindingGroup& g) { return g.rule == &rule; });
        if (group == result.groups.end()) {
            result.groups.push_back({&rule, {}, 0});
            group = std::prev(result.groups.end());
        }
        group->count += violation.count;
        (rule.grade == kDamage ? result.damage : result.remarks) += violation.count;
        group->listed.push_back(std::move(violation));
    }
    std::stable_partition(result.groups.begin(), result.groups.end(),
                          [](const FindingGroup& g) { return g.rule->grade == kDamage; });
    return result;
}

CheckResult unreadable_file(const std::string& path, const std::string& reason) {
    CheckResult result;
    result.path = path;
    result.damage = 1;
    result.groups.push_back({&rule_of("unreadable"), {{0, -1, "unreadable", reason}}, 1});
    return result;
}

std::string check_text(const CheckResult& result, std::size_t listed) {
    std::string text = result.path + ": ";
    if (result.damage == 0) {
        text += "sound" + (result.remarks == 0 ? "" : ", " + plural(result.remarks, "remark", "remarks")) + "\n";
    } else {
        text += "DAMAGED, " + plural(result.damage, "finding", "findings") +
                (result.remarks == 0 ? "" : " and " + plural(result.remarks, "remark", "remarks")) + "\n";
    }
    bool has_remark_title = false;
    for (const FindingGroup& group : result.groups) {
        if (group.rule->grade == kRemark && !has_remark_title && result.damage > 0) text += "  Remarks:\n";
        has_remark_title = has_remark_title || group.rule->grade == kRemark;
        add_group(text, group, listed);
    }
    if (result.damage > 0) {
        text +=
            "  What helps: keep this file as it is, take your last good copy (kvdb restore), or save what is left into "
            "a "
            "new\n  file with: kvdb salvage " +
            typed_path(result.path) + " NEW.mdb\n";
    } else if (result.remarks > 0) {
        text += "  Nothing has to be done. kvdb compact makes a studio's files anew, without what is left over.\n";
    }
    return text;
}

std::string check_json(const CheckResult& result, std::size_t listed) {
    std::string groups;
    for (const FindingGroup& group : result.groups) {
        std::string places;
        for (std::size_t i = 0; i < group.listed.size() && i < listed && group.listed[i].count == 1; ++i) {
            const jet::Violation& violation = group.listed[i];
            places += std::string(places.empty() ? "" : ", ") + "{\"page\": " + std::to_string(violation.page) +
                      ", \"row\": " + (violation.row < 0 ? "null" : std::to_string(violation.row)) +
                      ", \"what\": " + json_string(violation.detail) + "}";
        }
        groups += std::string(groups.empty() ? "" : ", ") + "{\"rule\": " + json_string(group.rule->name) +
                  ", \"grade\": " + (group.rule->grade == kDamage ? "\"damage\"" : "\"remark\"") +
                  ", \"count\": " + std::to_string(group.count) + ", \"meaning\": " + json_string(group.rule->meaning) +
                  ", \"listed\": [" + places + "]}";
    }
    return "{\"file\": " + json_string(result.path) + ", \"sound\": " + (result.is_sound() ? "true" : "false") +
           ", \"damage\": " + std::to_string(result.damage) + ", \"remarks\": " + std::to_string(result.remarks) +
           ", \"findings\": [" + groups + "]}";
}

}  // namespace tools
