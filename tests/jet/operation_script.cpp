#include "tests/jet/operation_script.h"

#include <map>

#include "tests/jet/engine_fixture.h"

namespace jet {
namespace {

using StepKind = ScriptStep::Kind;
using Steps = std::vector<ScriptStep>;

std::u16string text(std::size_t length, char16_t letter) { return std::u16string(length, letter); }

// The row whose first column is `id`.
RowId row_of(Table& table, std::int32_t id) {
    for (auto row = table.next_row({}); row; row = table.next_row(*row)) {
        if (row_values(table, *row)[0] == Value(id)) return *row;
    }
    return {};
}

Table& songs(ScriptState& state) { return *state.database->find_table(u"Songs"); }

void open(ScriptState& state) {
    OpenOptions options;
    options.ignore_password = true;
    options.pager = state.pager;
    state.database = Database::open(kScriptPath, options);
}

void add(Steps& steps, const std::string& name, std::function<void(ScriptState&)> run,
         StepKind kind = StepKind::kChange) {
    steps.push_back({kind, name, std::move(run)});
}

void add_open(Steps& steps) { add(steps, "open", open, StepKind::kOpen); }
void add_sync(Steps& steps) {
    add(
        steps, "sync point", [](ScriptState& state) { state.database->pager().sync_point(); }, StepKind::kSync);
}
void add_close(Steps& steps) {
    add(
        steps, "close",
        [](ScriptState& state) {
            state.database->close();
            state.database.reset();
        },
        StepKind::kClose);
}

void add_song(Steps& steps, std::int32_t id, std::size_t title, std::size_t notes) {
    add(steps, "add song " + std::to_string(id), [=](ScriptState& state) {
        // A letter that takes a character's full width in the file.
        const char16_t letter = state.file.kind.format->is_jet3() ? u'\u00C0' : u'\u4E00';
        songs(state).insert({id, text(title, u't'), text(notes, static_cast<char16_t>(letter + id)), id * 100,
                             Currency{id * 12345}, Date{40000.25 + id}, id % 2 == 0});
    });
}

void add_update(Steps& steps, std::int32_t id, std::size_t column, Value value) {
    add(steps, "update song " + std::to_string(id) + " column " + std::to_string(column), [=](ScriptState& state) {
        const ColumnChange change{column, value};
        songs(state).update(row_of(songs(state), id), {&change, 1});
    });
}

void add_erase(Steps& steps, std::int32_t id) {
    add(steps, "delete song " + std::to_string(id),
        [=](ScriptState& state) { songs(state).erase(row_of(songs(state), id)); });
}

// One table that grows, changes, gets a column and a password.
void add_songs_steps(Steps& steps) {
    using enum ColumnType;
    add(
        steps, "create",
        [](ScriptState& state) {
            state.database = Database::create(kScriptPath, state.file.create_options());
            state.database->close();
            state.database.reset();
        },
        StepKind::kCreate);
    add_open(steps);
    add(steps, "create table Songs", [](ScriptState& state) {
        const NewColumn columns[] = {new_column(u"Id", kLong, true),  new_column(u"Title", kText),
                                     new_column(u"Notes", kMemo),     new_column(u"Count", kLong),
                                     new_column(u"Price", kCurrency), new_column(u"Day", kDate),
                                     new_column(u"Done", kBoolean)};
        state.database->create_table(u"Songs", columns);
    });
    add_song(steps, 1, 5, 0);
    add_song(steps, 2, 60, 20);
    add_song(steps, 3, 100, 500);
    add_sync(steps);
    add_song(steps, 4, 200, 4500);
    for (std::int32_t id = 5; id <= 9; ++id) add_song(steps, id, 150, 100);
    add_update(steps, 2, 2, text(6000, u'g'));
    add_update(steps, 5, 1, text(255, u'm'));  // moves away from its page
    add_update(steps, 4, 2, text(30, u's'));
    add_update(steps, 5, 1, text(10, u's'));
    add_erase(steps, 3);
    add(steps, "add column Extra",
        [](ScriptState& state) { state.database->add_column(u"Songs", new_column(u"Extra", kText)); });
    add_update(steps, 1, 7, text(40, u'e'));
    add(steps, "set password", [](ScriptState& state) { state.database->change_password(u"", u"first"); });
    add_song(steps, 10, 30, 2100);
}

// A second table, another password, rows and a column that go.
void add_notes_steps(Steps& steps) {
    using enum ColumnType;
    add_close(steps);
    add_open(steps);
    add(steps, "create table Notes", [](ScriptState& state) {
        const NewColumn columns[] = {new_column(u"Text", kMemo), new_column(u"Single", kSingle)};
        state.database->create_table(u"Notes", columns);
    });
    add(steps, "add three notes at once", [](ScriptState& state) {
        Transaction transaction(state.database->pager());
        Table& notes = *state.database->find_table(u"Notes");
        for (const std::size_t length : {10, 1000, 7000}) notes.insert({text(length, u'n'), 1.5f});
        transaction.commit();
    });
    add(steps, "number the notes",
        [](ScriptState& state) { state.database->add_column(u"Notes", new_column(u"Id", kLong, true)); });
    add(steps, "change password", [](ScriptState& state) { state.database->change_password(u"first", u"second"); });
    add_sync(steps);
    add_erase(steps, 2);
    add_erase(steps, 5);
    add(steps, "delete column Notes", [](ScriptState& state) { state.database->delete_column(u"Songs", u"Notes"); });
    add(steps, "delete all notes", [](ScriptState& state) {
        Transaction transaction(state.database->pager());
        Table& notes = *state.database->find_table(u"Notes");
        for (auto row = notes.next_row({}); row; row = notes.next_row({})) notes.erase(*row);
        transaction.commit();
    });
    add_close(steps);
    add_open(steps);
    add_update(steps, 1, 1, text(77, u'z'));
    add_close(steps);
}

Steps make_script() {
    Steps steps;
    add_songs_steps(steps);
    add_notes_steps(steps);
    return steps;
}

std::vector<std::string> record_contents(const TestedFile& file) {
    MemoryDisk memory;
    ScriptState state{file, {}, nullptr};
    std::vector<std::string> contents{kNoFile};
    for (const ScriptStep& step : operation_script()) {
        step.run(state);
        if (!state.database) open(state);
        contents.push_back(content_of(*state.database));
        if (step.kind == StepKind::kCreate || step.kind == StepKind::kClose) state.database.reset();
    }
    return contents;
}

}  // namespace

const std::vector<ScriptStep>& operation_script() {
    static const Steps steps = make_script();
    return steps;
}

const std::vector<std::string>& script_contents(const TestedFile& file) {
    static std::map<std::string, std::vector<std::string>> contents;
    std::vector<std::string>& known = contents[file.name];
    if (known.empty()) known = record_contents(file);
    return known;
}

std::string content_found(const std::string& where) {
    if (!os::file_system().exists(kScriptPath)) return kNoFile;
    try {
        ScriptState state{};
        open(state);
        expect_sound(*state.database, where);
        std::string content = content_of(*state.database);
        state.database->close();
        EXPECT_FALSE(os::file_system().exists(std::string(kScriptPath) + "-journal")) << where;
        return content;
    } catch (const std::exception& error) {
        ADD_FAILURE() << where << ": " << error.what();
        return {};
    }
}

}  // namespace jet
