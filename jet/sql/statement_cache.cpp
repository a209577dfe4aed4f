// Parsed statements by their shape, and by their frame (jet/sql/skim.h). Statements are immutable and shared, so that
// dropping the cache never hurts a query that uses one.
#include <mutex>
#include <unordered_map>

#include "jet/sql/parser.h"

namespace jet::sql {

namespace {

constexpr std::size_t kMaxStatements = 256;
constexpr std::size_t kMaxShape = 4096;  // characters; longer statements are too rare to be worth keeping

class Cache {
public:
    std::shared_ptr<const Statement> find(const std::u16string& key) {
        const std::lock_guard lock(mutex_);
        const auto found = statements_.find(key);
        return found != statements_.end() ? found->second : nullptr;
    }
    void add(std::u16string key, std::shared_ptr<const Statement> statement) {
        if (key.size() > kMaxShape) return;
        const std::lock_guard lock(mutex_);
        if (statements_.size() >= kMaxStatements) statements_.clear();
        statements_.emplace(std::move(key), std::move(statement));
    }

private:
    std::mutex mutex_;
    std::unordered_map<std::u16string, std::shared_ptr<const Statement>> statements_;
};

// Made when the library starts, so that they last until the databases are closed at its end.
Cache by_shape;
Cache by_frame;

}  // namespace

std::shared_ptr<const Statement> parse_cached(const Lexed& lexed) {
    std::u16string shape = shape_of(lexed);
    if (auto known = by_shape.find(shape)) return known;
    auto statement = parse(lexed);
    by_shape.add(std::move(shape), statement);
    return statement;
}

std::shared_ptr<const Statement> recall_statement(const std::u16string& frame) { return by_frame.find(frame); }

void remember_statement(std::u16string frame, std::shared_ptr<const Statement> statement) {
    by_frame.add(std::move(frame), std::move(statement));
}

}  // namespace jet::sql
