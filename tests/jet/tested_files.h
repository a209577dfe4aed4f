// The kinds of file that tests repeat their work on: each format, plain and encoded.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "jet/pages/header.h"
#include "jet/schema/empty_database.h"

namespace jet {

struct TestedFile {
    const char* name;
    FileKind kind;

    bool is_encoded() const { return kind.encryption_key != 0; }
    // Of the places where a test could let something fail, the share to try. Encoding takes most of the time, and an
    // encoded file differs in nothing but the bytes of its pages.
    std::uint32_t one_in() const { return is_encoded() ? 5 : 1; }
    // Of a file that is the same in every run.
    CreateOptions create_options() const {
        CreateOptions options;
        options.creation_date = 42329.5;
        options.format = kind.format;
        options.encryption_key = kind.encryption_key;
        return options;
    }
};

inline constexpr std::uint32_t kTestedKey = 0xA7E0C0FE;
inline constexpr TestedFile kTestedFiles[] = {{"Jet4", {&kJet4, 0}},
                                              {"Jet3", {&kJet3, 0}},
                                              {"EncodedJet4", {&kJet4, kTestedKey}},
                                              {"EncodedJet3", {&kJet3, kTestedKey}}};

inline void PrintTo(const TestedFile& file, std::ostream* out) { *out << file.name; }
// Names the instances of a parameterized test.
struct NameOfFile {
    template <class Info>
    std::string operator()(const Info& info) const {
        return info.param.name;
    }
};

}  // namespace jet
