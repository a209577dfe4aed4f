// Gear and its repairs: what the pieces cost, and what mending them did.
#include <algorithm>
#include <map>

#include "tools/report/bars.h"
#include "tools/report/card.h"
#include "tools/report/markup.h"
#include "tools/report/pictures.h"

namespace tools {
namespace {

constexpr std::size_t kShownPieces = 8;
constexpr std::size_t kMostPieces = 10000;  // whose repairs are told apart

struct Repairs {
    std::uint64_t count = 0;
    std::uint64_t away = 0;  // sent and not back
    Amount cost;

    void add(Amount more_cost, bool is_away) {
        ++count;
        if (is_away) ++away;
        cost += more_cost;
    }
};

struct Piece {
    std::string name;
    Amount cost;
    Repairs repairs;
};

bool comes_first(const Piece& a, const Piece& b) {
    if (a.repairs.count != b.repairs.count) return a.repairs.count > b.repairs.count;
    return a.cost.units() > b.cost.units();
}

void keep(std::vector<Piece>& pieces, Piece piece) {
    const auto place = std::upper_bound(pieces.begin(), pieces.end(), piece, comes_first);
    pieces.insert(place, std::move(piece));
    if (pieces.size() > kShownPieces) pieces.pop_back();
}

std::string name_of_piece(const jet::Value& manufacturer, const jet::Value& model) {
    std::string name = text_of(manufacturer);
    const std::string second = text_of(model);
    if (!name.empty() && !second.empty()) name += " ";
    name += second;
    return name.empty() ? "(no name)" : name;
}

std::string told(const Repairs& repairs) {
    std::string text = counted(repairs.count, "repair", "repairs");
    if (repairs.count > 0) text += " for " + repairs.cost.rounded();
    if (repairs.away > 0) text += ", " + count_text(repairs.away) + " not back yet";
    return text;
}

std::string body_html(const std::vector<Piece>& pieces, const std::string& sentence) {
    std::vector<LyingBar> bars;
    NumberTable numbers{{"Piece", "Cost", "Repairs", "Not back", "Cost of repairs"}, {}};
    for (const Piece& piece : pieces) {
        bars.push_back(
            {piece.name,
             piece.repairs.count == 0 ? piece.cost.rounded() : counted(piece.repairs.count, "repair", "repairs"),
             piece.cost.units(), piece.repairs.cost.units(),
             piece.name + ": bought for " + piece.cost.rounded() + ", " + told(piece.repairs)});
        numbers.rows.push_back({piece.name, piece.cost.text(), std::to_string(piece.repairs.count),
                                std::to_string(piece.repairs.away), piece.repairs.cost.text()});
    }
    return legend_html({{"first", "cost of the piece"}, {"second", "cost of its repairs"}}) +
           picture_html("gear", "Gear and its repairs",
                        "Two bars for each piece: what it cost, and what its repairs did. " + sentence,
                        lying_height(bars), lying_bars(bars)) +
           numbers.html("The numbers");
}

}  // namespace

std::string gear_picture(const StudioTables& tables) {
    if (!tables.has("Gear")) return "";
    std::map<std::int32_t, Repairs> by_piece;
    Repairs all;
    tables.each("GearRepairs", {"GearID", "SendDate", "ReturnDate", "Cost"}, [&](StudioTables::Values row) {
        const bool is_away = day_of(row[1]).has_value() && !day_of(row[2]).has_value();
        all.add(Amount(row[3]), is_away);
        const std::int32_t key = number_of(row[0]);
        if (by_piece.size() < kMostPieces || by_piece.contains(key)) by_piece[key].add(Amount(row[3]), is_away);
    });
    std::vector<Piece> pieces;
    std::uint64_t count = 0;
    Amount worth;
    tables.each("Gear", {"RecID", "Manufacturer", "Model", "Cost"}, [&](StudioTables::Values row) {
        ++count;
        worth += Amount(row[3]);
        const auto repairs = by_piece.find(number_of(row[0]));
        keep(pieces,
             {name_of_piece(row[1], row[2]), Amount(row[3]), repairs == by_piece.end() ? Repairs() : repairs->second});
    });
    Card card{"gear", "Gear and its repairs", "Gear", "", ""};
    card.sentence =
        count == 0 ? "There is no gear."
                   : counted(count, "piece", "pieces") + ", bought for " + worth.rounded() + "; " + told(all) + ".";
    if (count > pieces.size()) {
        card.sentence += " Shown are the " + count_text(pieces.size()) + " with most repairs.";
    }
    if (!pieces.empty()) card.body = body_html(pieces, card.sentence);
    return card.html();
}

}  // namespace tools
