// A file or folder that comes to its name only when it is whole: until then it is a draft beside it, which is removed
// when the work does not come to its end.
#pragma once

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

class Draft {
public:
    // Makes it, empty and accessible to its owner alone. CommandError when something of that name is there already, or
    // the draft cannot be made.
    Draft(const std::string& path, bool is_folder);
    ~Draft();
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    // Where to write.
    const std::string& path() const { return draft_; }
    // Makes it accessible to whom all of `sources` are, and gives it its name. CommandError when that fails.
    void keep(const std::vector<std::string>& sources);

private:
    std::string path_;
    std::string draft_;
    bool is_kept_ = false;
};

// A file that is written from its begin to its end. CommandError where the system takes something not.
class OutFile {
public:
    explicit OutFile(const std::string& path);
    void write(std::string_view text);
    void close();

private:
    [[noreturn]] void fail() const;

    std::string path_;
    std::ofstream out_;
};

}  // namespace tools
