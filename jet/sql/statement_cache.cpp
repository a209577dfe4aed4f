// Parsed statements by their shape. Statements are immutable and shared, so that dropping the cache never
// hurts a query that uses one.
#include <mutex>
#include <unordered_map>

#include "jet/sql/parser.h"

namespace jet::sql {

namespace {

constexpr std::size_t kMaxStatements = 256;
constexpr std::size_t kMaxShape = 4096;  // characters; longer statements are too rare to be worth keeping

struct Cache {
    std::mutex mutex;
    std::unordered_map<std::u16string, std::shared_ptr<const Statement>> statements;
};

// Made when the library starts, so that it lasts until the databases are closed at its end.
Cache cache;

}  // namespace

std::shared_ptr<const Statement> parse_cached(const Lexed& lexed) {
    std::u16string shape = shape_of(lexed);
    if (shape.size() > kMaxShape) return parse(lexed);
    {
        const std::lock_guard lock(cache.mutex);
        const auto found = cache.statements.find(shape);
        if (found != cache.statements.end()) return found->second;
    }
    auto statement = parse(lexed);
    const std::lock_guard lock(cache.mutex);
    if (cache.statements.size() >= kMaxStatements) cache.statements.clear();
    cache.statements.emplace(std::move(shape), statement);
    return statement;
}

}  // namespace jet::sql
