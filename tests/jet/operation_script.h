// One fixed sequence of operations on a database, and what the file holds after each of them: the measure for
// every test that lets the disk or the power fail somewhere in between.
//
// Every operation is one commit or none, and takes its values from the script alone, so that doing it again after
// a failure gives what doing it once would have given.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "jet/tables/database.h"
#include "tests/jet/tested_files.h"

namespace jet {

// A program that works through the script on the file system in use.
struct ScriptState {
    TestedFile file;
    PagerOptions pager;
    std::unique_ptr<Database> database;
};

struct ScriptStep {
    enum class Kind { kCreate, kOpen, kChange, kSync, kClose };
    Kind kind = Kind::kChange;
    std::string name;
    std::function<void(ScriptState&)> run;
};

inline constexpr char kScriptPath[] = "d/a.mdb";
inline constexpr char kNoFile[] = "no file";

const std::vector<ScriptStep>& operation_script();
// Element k: the content after the first k steps; kNoFile before the first.
const std::vector<std::string>& script_contents(const TestedFile& file);

// What is found on the file system in use after a failure: opens the file (and closes it again), checks its
// structure and returns its content, or kNoFile.
std::string content_found(const std::string& where);

}  // namespace jet
