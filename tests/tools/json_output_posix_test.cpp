// --json of the commands that tell of files: an independent reader takes it, and values have their types.
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;
namespace fs = std::filesystem;

class JsonOutput : public Tool {
protected:
    void SetUp() override {
        if (std::system("command -v python3 >/dev/null 2>&1") != 0) GTEST_SKIP() << "python3 is not installed";
        ASSERT_EQ(demo().code, 0);
    }

    // The command's output is read as `j`, of which each expression has to be true.
    void expect_true(const std::string& command, int code, const std::vector<std::string>& expressions) {
        SCOPED_TRACE(command);
        const Outcome outcome = run(command);
        EXPECT_EQ(outcome.code, code) << outcome.errors;
        const std::string script = scratch_.file("look.py");
        {
            std::ofstream out(script);
            out << "import json, sys\nj = json.load(open(sys.argv[1], encoding='utf-8'))\nwrong = []\n";
            for (const std::string& expression : expressions) {
                out << "if (" << expression << ") is not True: wrong.append('''" << expression << "''')\n";
            }
            out << "sys.exit('\\n'.join(wrong) or 0)\n";
        }
        const std::string said = scratch_.file("said");
        const int status = std::system(
            ("python3 " + in_quotes(script) + " " + in_quotes(scratch_.file("out")) + " >" + in_quotes(said) + " 2>&1")
                .c_str());
        EXPECT_EQ(status, 0) << contents(said) << outcome.out;
    }
};

TEST_F(JsonOutput, info_gives_files_versions_and_rows) {
    expect_true("info --json " + in_quotes(studio_), 0,
                {"j['folder'].endswith('a studio')", "len(j['files']) == 2", "len(j['colours']) == 2",
                 "j['files'][0]['file'].endswith('sldb.mdb')", "j['files'][1]['file'].endswith('kvinvdb.mdb')",
                 "all(f['exists'] is True and f['encoded'] is False for f in j['files'])",
                 "all(type(f['bytes']) is int and f['bytes'] % 4096 == 0 for f in j['files'])",
                 "all(f['version'] == 210000 and f['upgrade'] == [] and f['missing'] == '' for f in j['files'])",
                 "all(f['format'] == 'Jet 4 (Access 2000 to 2003)' for f in j['files'])",
                 "{'table': 'Projects', 'rows': 3} in j['files'][0]['tables']"});
}

TEST_F(JsonOutput, info_of_one_missing_file_and_of_another_file) {
    fs::rename(file("kvinvdb.mdb"), scratch_.file("other.mdb"));
    expect_true("info --json " + in_quotes(studio_), 1, {"j['files'][1]['exists'] is False"});
    expect_true("info --json " + in_quotes(scratch_.file("other.mdb")), 0,
                {"j['file'].endswith('other.mdb')", "j['replica'] is False",
                 "any(t['table'] == 'Invoices' and t['rows'] == 1 for t in j['tables'])"});
}

TEST_F(JsonOutput, check_gives_findings_with_their_places) {
    expect_true("check --json " + in_quotes(studio_), 0,
                {"len(j) == 2", "all(f['sound'] is True and f['damage'] == 0 for f in j)"});
    std::string bytes = contents(file("sldb.mdb"));
    ASSERT_GT(bytes.size(), 40u * 4096);
    bytes.resize(bytes.size() / 2 / 4096 * 4096);
    std::ofstream(file("sldb.mdb"), std::ios::binary | std::ios::trunc) << bytes;
    expect_true("check --json " + in_quotes(studio_), 1,
                {"j[0]['sound'] is False", "j[0]['damage'] > 0", "j[1]['sound'] is True",
                 "all(g['grade'] in ('damage', 'remark') and g['meaning'] and g['rule'] for g in j[0]['findings'])",
                 "sum(g['count'] for g in j[0]['findings']) == j[0]['damage'] + j[0]['remarks']",
                 "any(type(p['page']) is int and p['what'] for g in j[0]['findings'] for p in g['listed'])",
                 "all(len(g['listed']) <= 5 for g in j[0]['findings'])"});
}

TEST_F(JsonOutput, restore_lists_the_copies) {
    const std::string copies = scratch_.file("copies");
    ASSERT_EQ(run("backup " + in_quotes(studio_) + " " + in_quotes(copies)).code, 0);
    expect_true("restore --list --json " + in_quotes(copies), 0,
                {"len(j) == 1", "j[0]['studio'].endswith('sldb-' + j[0]['name'] + '.mdb')",
                 "j[0]['invoices'].endswith('.mdb')"});
    expect_failure(run("restore --json " + in_quotes(copies) + " " + in_quotes(studio_)), 2, "--list");
}

}  // namespace
