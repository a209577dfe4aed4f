// What is on hand of each stock type, as its table counts it.
#include <algorithm>

#include "tools/report/bars.h"
#include "tools/report/card.h"
#include "tools/report/markup.h"
#include "tools/report/pictures.h"

namespace tools {
namespace {

constexpr std::size_t kShownTypes = 10;

struct Type {
    std::string name;
    std::int32_t in_stock = 0;
    Amount price;
};

// The types of which there is most.
void keep(std::vector<Type>& types, Type type) {
    const auto place = std::upper_bound(types.begin(), types.end(), type,
                                        [](const Type& a, const Type& b) { return a.in_stock > b.in_stock; });
    types.insert(place, std::move(type));
    if (types.size() > kShownTypes) types.pop_back();
}

}  // namespace

std::string stock_picture(const StudioTables& tables) {
    if (!tables.has("Def_StockTypes")) return "";
    std::vector<Type> types;
    std::uint64_t all = 0;
    std::uint64_t used_up = 0;
    tables.each("Def_StockTypes", {"TypeName", "InStock", "ItemPrice"}, [&](StudioTables::Values row) {
        ++all;
        if (number_of(row[1]) <= 0) ++used_up;
        keep(types, {text_of(row[0]), number_of(row[1]), Amount(row[2])});
    });
    Card card{"stock", "Stock levels", "Def_StockTypes", "", ""};
    card.sentence = all == 0 ? "There are no stock types." : counted(all, "stock type", "stock types") + ".";
    if (used_up > 0) card.sentence += " Of " + count_text(used_up) + " nothing is left.";
    if (all > types.size()) card.sentence += " Shown are the " + count_text(types.size()) + " with most on hand.";
    if (types.empty()) return card.html();
    std::vector<LyingBar> bars;
    NumberTable numbers{{"Type", "On hand", "Price of one"}, {}};
    for (const Type& type : types) {
        const std::string count = std::to_string(type.in_stock);
        bars.push_back({type.name, count, static_cast<double>(type.in_stock), 0,
                        type.name + ": " + count + " on hand, " + type.price.text() + " each"});
        numbers.rows.push_back({type.name, count, type.price.text()});
    }
    card.body =
        picture_html("stock", "Stock levels", "A bar for each stock type, as long as what is on hand. " + card.sentence,
                     lying_height(bars), lying_bars(bars)) +
        numbers.html("The numbers");
    return card.html();
}

}  // namespace tools
