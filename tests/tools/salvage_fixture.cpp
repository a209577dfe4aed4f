#include "tests/tools/salvage_fixture.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <unordered_map>

#include "jet/base/jet4.h"
#include "jet/storage/row_codec.h"
#include "jet/tables/database.h"
#include "tests/old_files/old_files.h"
#include "tools/value_text.h"

namespace testing_salvage {
namespace {

namespace data = jet::jet4::data;
namespace lv = jet::jet4::long_value;
using jet::ByteSpan;
using jet::ByteVector;
using jet::PageNumber;
using jet::RowId;
using jet::Value;
using Random = std::mt19937;

std::size_t below(Random& random, std::size_t limit) { return limit == 0 ? 0 : random() % limit; }

std::u16string text_of(Random& random, std::size_t length) {
    static constexpr char16_t kLetters[] = u"abcdefghij klmnopqrst uvwxyzABCDEF\u00e4\u00f6\u00fc\u20ac0123456789";
    std::u16string text;
    for (std::size_t i = 0; i < length; ++i) text += kLetters[below(random, std::size(kLetters) - 1)];
    return text;
}

Value memo_of(Random& random) {
    const std::size_t kind = below(random, 100);
    if (kind < 60) return text_of(random, below(random, 28));
    if (kind < 80) return Value{};
    if (kind < 98) return text_of(random, 40 + below(random, 500));
    return text_of(random, 2100 + below(random, 9000));
}

std::vector<Value> row_for(const jet::TableDef& def, Random& random) {
    std::vector<Value> values(def.columns.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const jet::ColumnDef& column = def.columns[i];
        const bool is_null = below(random, 9) == 0;
        if (column.is_autonumber() || (is_null && column.allow_zero_length)) continue;
        switch (column.type) {
            case jet::ColumnType::kLong: values[i] = static_cast<std::int32_t>(below(random, 5000)); break;
            case jet::ColumnType::kDate:
                values[i] = jet::Date{36000.0 + static_cast<double>(below(random, 9000)) / 4};
                break;
            case jet::ColumnType::kCurrency: values[i] = jet::Currency{static_cast<std::int64_t>(random())}; break;
            case jet::ColumnType::kSingle: values[i] = static_cast<float>(below(random, 100000)) / 8; break;
            case jet::ColumnType::kMemo: values[i] = memo_of(random); break;
            default: values[i] = text_of(random, 1 + below(random, 24)); break;
        }
    }
    return values;
}

// How the rows are shared out: most of them in the tables that grow with the years.
constexpr struct {
    const char* table;
    std::size_t share;
} kShares[] = {{"Projects", 30},       {"Songs", 200},     {"Tracks", 260},    {"Sessions", 150},
               {"Clients", 50},        {"Stock", 8},       {"Supply", 20},     {"Equipment", 6},
               {"Def_ProjTypes", 1},   {"MediaFiles", 30}, {"Bookings", 90},   {"ProjPayments", 30},
               {"ProjActivities", 40}, {"MixFiles", 20},   {"Messages", 30},   {"Services", 5},
               {"Participants", 20},   {"Gear", 5},        {"GearRepairs", 3}, {"Def_Rooms", 1},
               {"Def_Tax", 1},         {"LibGroups", 1},   {"MediaLibs", 2}};

void fill(jet::Database& database, std::size_t rows, Random& random) {
    std::size_t shares = 0;
    for (const auto& share : kShares) shares += share.share;
    for (const auto& share : kShares) {
        jet::Table& table = *database.find_table(jet::from_utf8(share.table));
        std::size_t count = std::max<std::size_t>(3, rows * share.share / shares);
        std::vector<RowId> made;
        for (std::size_t i = 0; i < count; ++i) made.push_back(table.insert(row_for(table.def(), random)));
        const auto name = table.def().find_column(u"Name");
        for (const RowId row : made) {
            const std::size_t what = below(random, 100);
            if (what < 4) {
                table.erase(row);
            } else if (what < 8 && name) {
                const jet::ColumnChange longer{*name, text_of(random, 120 + below(random, 100))};
                table.update(row, {&longer, 1});
            }
        }
        for (std::size_t i = 0; i < count / 50; ++i) table.insert(row_for(table.def(), random));
    }
}

std::string row_content(const jet::Table& table, const jet::RowView& view) {
    std::map<std::string, std::string> values;
    for (std::size_t i = 0; i < table.def().columns.size(); ++i) {
        const Value value = view.value(i);
        values[jet::to_utf8(table.def().columns[i].name)] = jet::is_null(value) ? "-" : "=" + tools::plain_text(value);
    }
    std::string text;
    for (const auto& [name, value] : values) text += name + value + '\x1f';
    return text;
}

std::string key_of(const jet::Table& table, const jet::RowView& view) {
    for (std::size_t i = 0; i < table.def().columns.size(); ++i) {
        if (table.def().columns[i].is_autonumber()) return tools::plain_text(view.value(i));
    }
    return {};
}

// Where the bytes of a row lie in a sound file.
class RowPlaces {
public:
    RowPlaces(const ByteVector& file, const jet::TableDef& def) : file_(file), def_(def), format_(*def.format) {}

    std::vector<Extent> of(RowId row) {
        extents_.clear();
        add_slot(row);
        const std::uint16_t slot = jet::load_u16(file_, row.page * format_.page_size + format_.slot_at(row.slot));
        ByteSpan bytes = bytes_of(extents_[0]);
        if ((slot & data::kDeletedFlags) == data::kMovedFlag) {
            const std::size_t body = extents_.size();
            add_slot(RowId::unpack(jet::load_u32(bytes, 0)));
            bytes = bytes_of(extents_[body]);
        }
        const jet::RowReader reader(bytes, def_);
        for (const jet::ColumnDef& column : def_.columns) {
            const auto reference = reader.stored(column);
            if (column.is_long() && reference && reference->size() >= lv::kReference) add_long_value(*reference);
        }
        return extents_;
    }

private:
    ByteSpan bytes_of(const Extent& e) const {
        return ByteSpan(file_).subspan(e.page * format_.page_size + e.begin, e.end - e.begin);
    }

    // The row of a slot, and the two slots that say where it lies.
    void add_slot(RowId row) {
        const ByteSpan page = ByteSpan(file_).subspan(row.page * format_.page_size, format_.page_size);
        const std::size_t slot_at = format_.slot_at(row.slot);
        const std::size_t begin = jet::load_u16(page, slot_at) & data::kOffsetMask;
        const std::size_t end =
            row.slot == 0 ? format_.page_size : jet::load_u16(page, slot_at - 2) & data::kOffsetMask;
        extents_.push_back({row.page, begin, end});
        extents_.push_back({row.page, row.slot == 0 ? slot_at : slot_at - 2, slot_at + 2});
    }

    void add_long_value(ByteSpan reference) {
        const std::uint32_t head = jet::load_u32(reference, 0);
        if ((head & lv::kKindMask) == lv::kInline) return;
        std::size_t left = head & lv::kLengthMask;
        const bool is_single = (head & lv::kKindMask) == lv::kSingle;
        for (RowId piece = RowId::unpack(jet::load_u32(reference, 4)); left > 0;) {
            const std::size_t at = extents_.size();
            add_slot(piece);
            extents_.push_back({piece.page, 0, format_.slot_at(0)});
            const ByteSpan held = bytes_of(extents_[at]);
            if (is_single) break;
            left -= std::min(left, held.size() - 4);
            piece = RowId::unpack(jet::load_u32(held, 0));
        }
    }

    const ByteVector& file_;
    const jet::TableDef& def_;
    const jet::Format& format_;
    std::vector<Extent> extents_;
};

}  // namespace

std::size_t Truth::rows() const {
    std::size_t sum = 0;
    for (const auto& [name, rows] : tables) sum += rows.size();
    return sum;
}

namespace {

std::map<std::string, std::vector<TrueRow>> read_rows(const std::string& path, const ByteVector* file) {
    jet::OpenOptions options;
    options.read_only = options.ignore_password = true;
    const auto database = jet::Database::open(path, options);
    std::map<std::string, std::vector<TrueRow>> tables;
    for (const std::u16string& name : database->table_names()) {
        const jet::Table& table = *database->find_table(name);
        std::vector<TrueRow>& rows = tables[jet::to_utf8(name)];
        jet::RowView view;
        for (auto id = table.next_row({}); id; id = table.next_row(*id)) {
            if (!table.read(*id, view)) continue;
            TrueRow row{row_content(table, view), key_of(table, view), {}};
            if (file != nullptr) row.extents = RowPlaces(*file, table.def()).of(*id);
            rows.push_back(std::move(row));
        }
    }
    return tables;
}

}  // namespace

std::map<std::string, std::vector<TrueRow>> rows_of(const std::string& path) { return read_rows(path, nullptr); }

Truth make_truth(const std::string& path, const jet::Format& format, std::size_t rows, std::uint32_t seed) {
    const testing_support::UseOldFormat use(format);
    testing_support::OldFile(path, testing_support::OldFile::Kind::kStudio, 210000).close();
    jet::OpenOptions options;
    options.ignore_password = true;
    Random random(seed);
    {
        const auto database = jet::Database::open(path, options);
        jet::Transaction filling(database->pager());
        fill(*database, rows, random);
        filling.commit();
        database->close();
    }
    Truth truth;
    truth.format = &format;
    std::ifstream in(path, std::ios::binary);
    truth.file.assign(std::istreambuf_iterator<char>(in), {});
    truth.tables = read_rows(path, &truth.file);
    return truth;
}

namespace {

class Damager {
public:
    Damager(const Truth& truth, Random& random)
        : truth_(truth),
          random_(random),
          page_bytes_(truth.format->page_size),
          pages_(truth.file.size() / page_bytes_) {}

    DamagedFile make(std::size_t n) {
        damaged_ = {};
        damaged_.bytes = truth_.file;
        static constexpr std::pair<const char*, void (Damager::*)()> kKinds[] = {
            {"cut off", &Damager::cut_off},
            {"zeroed pages", &Damager::zero_pages},
            {"random pages", &Damager::randomise_pages},
            {"swapped pages", &Damager::swap_pages},
            {"flipped bytes", &Damager::flip_bytes},
            {"lost catalogue", &Damager::lose_catalogue},
            {"lost definition", &Damager::lose_definitions},
            {"random sectors", &Damager::randomise_sectors},
            {"lost beginning", &Damager::lose_beginning},
            {"damaged heads of pages", &Damager::flip_heads},
        };
        const auto& [name, make] = kKinds[n % std::size(kKinds)];
        (this->*make)();
        damaged_.name = std::to_string(n) + ": " + name + note_;
        note_.clear();
        return std::move(damaged_);
    }

private:
    std::size_t any_page() { return 1 + below(random_, pages_ - 1); }
    std::size_t a_few() { return 1 + below(random_, below(random_, 3) == 0 ? pages_ / 20 + 2 : 4); }
    std::uint8_t* page(std::size_t n) { return damaged_.bytes.data() + n * page_bytes_; }
    void randomise(std::uint8_t* at, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) at[i] = static_cast<std::uint8_t>(random_());
    }

    void cut_off() {
        damaged_.bytes.resize(damaged_.bytes.size() / 10 + below(random_, damaged_.bytes.size() * 9 / 10));
    }
    void zero_pages() {
        for (std::size_t i = a_few(); i > 0; --i) std::fill_n(page(any_page()), page_bytes_, std::uint8_t{0});
    }
    void randomise_pages() {
        for (std::size_t i = a_few(); i > 0; --i) randomise(page(any_page()), page_bytes_);
    }
    void swap_pages() {
        std::set<std::size_t> used;
        for (std::size_t i = a_few(); i > 0; --i) {
            const std::size_t a = any_page(), b = any_page();
            if (a == b || !used.insert(a).second || !used.insert(b).second) continue;
            std::swap_ranges(page(a), page(a) + page_bytes_, page(b));
            damaged_.moved[static_cast<PageNumber>(a)] = static_cast<PageNumber>(b);
            damaged_.moved[static_cast<PageNumber>(b)] = static_cast<PageNumber>(a);
            note_ += " " + std::to_string(a) + "/" + std::to_string(b);
        }
    }
    void flip_bytes() {
        for (std::size_t i = a_few() * 5; i > 0; --i) {
            damaged_.bytes[below(random_, damaged_.bytes.size())] ^= static_cast<std::uint8_t>(1 + below(random_, 255));
        }
    }
    void lose_catalogue() {
        const bool with_definition = below(random_, 2) == 0;
        for (std::size_t n = 1; n < pages_; ++n) {
            const bool is_rows = page(n)[0] == jet::jet4::kDataPage &&
                                 jet::load_u32(truth_.file, n * page_bytes_ + data::kOwner) == jet::jet4::kObjectsPage;
            if (is_rows || (with_definition && n == jet::jet4::kObjectsPage))
                std::fill_n(page(n), page_bytes_, std::uint8_t{0});
        }
    }
    void lose_definitions() {
        std::vector<std::size_t> definitions;
        for (std::size_t n = 6; n < pages_; ++n) {
            if (page(n)[0] == jet::jet4::kTableDefPage) definitions.push_back(n);
        }
        for (std::size_t i = 1 + below(random_, 4); i > 0; --i) {
            const std::size_t n = definitions[below(random_, definitions.size())];
            note_ += " " + std::to_string(n);
            if (i % 2 == 0) {
                randomise(page(n), page_bytes_);
            } else {
                std::fill_n(page(n), page_bytes_, std::uint8_t{0});
            }
        }
    }
    void randomise_sectors() {
        for (std::size_t i = a_few(); i > 0; --i)
            randomise(page(any_page()) + 512 * below(random_, page_bytes_ / 512), 512);
    }
    // The head of the file, and as much behind it as comes.
    void lose_beginning() { std::fill_n(page(0), page_bytes_ * (1 + below(random_, 6)), std::uint8_t{0}); }
    void flip_heads() {
        for (std::size_t i = a_few(); i > 0; --i) {
            page(any_page())[below(random_, truth_.format->slot_at(0))] ^=
                static_cast<std::uint8_t>(1 + below(random_, 255));
        }
    }

    const Truth& truth_;
    Random& random_;
    std::size_t page_bytes_;
    std::size_t pages_;
    DamagedFile damaged_;
    std::string note_;
};

bool is_undamaged(const Truth& truth, const DamagedFile& damaged, const TrueRow& row) {
    const std::size_t page_bytes = truth.format->page_size;
    return std::all_of(row.extents.begin(), row.extents.end(), [&](const Extent& extent) {
        const auto moved = damaged.moved.find(extent.page);
        const std::size_t now = moved == damaged.moved.end() ? extent.page : moved->second;
        if (now * page_bytes + extent.end > damaged.bytes.size()) return false;
        return std::equal(truth.file.begin() + static_cast<long>(extent.page * page_bytes + extent.begin),
                          truth.file.begin() + static_cast<long>(extent.page * page_bytes + extent.end),
                          damaged.bytes.begin() + static_cast<long>(now * page_bytes + extent.begin));
    });
}

}  // namespace

void for_each_damage(const Truth& truth, std::size_t count, std::uint32_t seed,
                     const std::function<void(const DamagedFile&)>& visit) {
    for (std::size_t n = 0; n < count; ++n) {
        Random random(seed + static_cast<std::uint32_t>(n));
        visit(Damager(truth, random).make(n));
    }
}

namespace {

// Whether each value is the other's, or a beginning of it, or Null in its place.
bool is_cut_of(const std::string& content, const std::string& whole) {
    std::size_t at = 0;
    std::size_t from = 0;
    while (at < whole.size() && from < content.size()) {
        const std::string value = content.substr(from, content.find('\x1f', from) - from);
        const std::string right = whole.substr(at, whole.find('\x1f', at) - at);
        const bool is_lost = value.ends_with('-') && right.starts_with(value.substr(0, value.size() - 1) + "=");
        if (!right.starts_with(value) && !is_lost) return false;
        from += value.size() + 1;
        at += right.size() + 1;
    }
    return at >= whole.size() && from >= content.size();
}

// Whether half of the row's values stand in `content`, or the only one it has was changed.
bool shares_values(const TrueRow& row, const std::string& content) {
    std::size_t same = 0;
    std::size_t values = 0;
    for (std::size_t at = 0; at < row.content.size();) {
        const std::size_t end = row.content.find('\x1f', at);
        ++values;
        same += content.find(row.content.substr(at, end + 1 - at)) != std::string::npos ? 1 : 0;
        at = end + 1;
    }
    return 2 * same > values || values == 1;
}

// Takes the first row that `fits` out of `rows`; false when there is none.
template <class Fits>
bool take(std::vector<const TrueRow*>& rows, Fits&& fits) {
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const TrueRow* row) { return fits(*row); });
    if (found == rows.end()) return false;
    rows.erase(found);
    return true;
}

// The rows of one table: what they were against what came back.
class TableScore {
public:
    TableScore(const std::string& name, const std::vector<TrueRow>& salvaged, Score& score)
        : name_(name), score_(score) {
        for (const TrueRow& row : salvaged) {
            ++back_[row.content];
            key_of_content_[row.content] = row.key;
        }
    }

    void count(const TrueRow& row, bool is_whole) {
        const auto same = back_.find(row.content);
        const bool is_back = same != back_.end() && same->second > 0;
        if (is_back) --same->second;
        ++(is_whole ? score_.undamaged : score_.touched);
        if (is_back) {
            ++(is_whole ? score_.came_back : score_.touched_back);
            return;
        }
        if (is_whole && score_.first_missing.empty()) score_.first_missing = name_ + ": " + row.content;
        (is_whole ? missing_ : touched_).push_back(&row);
    }

    // What is left has to be what damage made of a row: its key, or half of its values, are those of one.
    void explain_rest() {
        for (const auto& [content, count] : back_) {
            for (std::size_t i = 0; i < count; ++i) explain(content);
        }
    }

private:
    void explain(const std::string& content) {
        const std::string& key = key_of_content_[content];
        const auto has_key = [&](const TrueRow& row) { return !row.key.empty() && row.key == key; };
        if (take(touched_, [&](const TrueRow& row) { return has_key(row) || shares_values(row, content); })) return;
        if (take(missing_, [&](const TrueRow& row) { return is_cut_of(content, row.content); })) {
            ++score_.cut;
        } else if (take(missing_, has_key)) {
            ++score_.mixed;
        } else {
            ++score_.invented;
            if (score_.first_invented.empty()) score_.first_invented = name_ + ": " + content;
        }
    }

    const std::string& name_;
    Score& score_;
    std::unordered_map<std::string, std::size_t> back_;  // rows of the new file that nothing has explained yet
    std::unordered_map<std::string, std::string> key_of_content_;
    std::vector<const TrueRow*> touched_;  // damaged rows that did not come back as they were
    std::vector<const TrueRow*> missing_;  // undamaged ones
};

}  // namespace

Score score_of(const Truth& truth, const DamagedFile& damaged, const std::string& salvaged) {
    Score score;
    const auto found = rows_of(salvaged);
    for (const auto& [name, rows] : truth.tables) {
        const auto table = found.find(name);
        TableScore of_table(name, table != found.end() ? table->second : std::vector<TrueRow>(), score);
        for (const TrueRow& row : rows) of_table.count(row, is_undamaged(truth, damaged, row));
        of_table.explain_rest();
    }
    for (const auto& [name, rows] : found) {
        if (truth.tables.contains(name)) continue;
        score.invented += rows.size();
        if (!rows.empty() && score.first_invented.empty()) score.first_invented = "table " + name;
    }
    return score;
}

}  // namespace testing_salvage
