// The syntax of registration scripts.
#include "frame/registration/registration_script.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using frame::parse_registration_script;
using frame::RegistrationKey;
using frame::ScriptError;

std::string text(const std::optional<frame::RegistrationValue>& value) {
    if (!value) return "(none)";
    const auto* const held = std::get_if<std::string>(&*value);
    return held != nullptr ? *held : std::to_string(std::get<std::uint32_t>(*value));
}

// The first key of a script whose block is `body`.
RegistrationKey key_of(const std::string& body) { return parse_registration_script("HKCR\n{\n" + body + "\n}").at(0); }

std::string error_of(const std::string& script) {
    try {
        parse_registration_script(script);
    } catch (const ScriptError& error) {
        return error.what();
    }
    return "none";
}

}  // namespace

TEST(RegistrationScript, key_has_default_value_named_values_and_subkeys) {
    const RegistrationKey key = key_of(
        "Name = s 'text'\n{\n val One = s 'first'\n Below = s 'deep'\n { Deeper }\n val Two = d '42'\n Other\n}");
    EXPECT_EQ(key.name, "Name");
    EXPECT_EQ(text(key.value), "text");
    ASSERT_EQ(key.values.size(), 2u);
    EXPECT_EQ(key.values[0].name, "One");
    EXPECT_EQ(text(key.values[0].value), "first");
    EXPECT_EQ(text(key.values[1].value), "42");
    EXPECT_TRUE(std::holds_alternative<std::uint32_t>(key.values[1].value));
    ASSERT_EQ(key.keys.size(), 2u);
    EXPECT_EQ(text(key.keys[0].value), "deep");
    EXPECT_EQ(key.keys[0].keys.at(0).name, "Deeper");
    EXPECT_EQ(text(key.keys[1].value), "(none)");
}

TEST(RegistrationScript, attributes_stand_before_the_name) {
    const RegistrationKey key = key_of("NoRemove CLSID { ForceRemove {1-2} Plain }");
    EXPECT_TRUE(key.is_kept);
    EXPECT_FALSE(key.is_replaced);
    EXPECT_EQ(key.keys.at(0).name, "{1-2}");
    EXPECT_TRUE(key.keys.at(0).is_replaced);
    EXPECT_FALSE(key.keys.at(1).is_kept);
    EXPECT_FALSE(key.keys.at(1).is_replaced);
}

TEST(RegistrationScript, brace_within_a_word_is_part_of_a_name) {
    const RegistrationKey key = key_of("{66DA35EC} = s '{1}' { Below }");
    EXPECT_EQ(key.name, "{66DA35EC}");
    EXPECT_EQ(text(key.value), "{1}");
    EXPECT_EQ(key.keys.size(), 1u);
}

TEST(RegistrationScript, quotes_hold_blanks_words_and_two_quotes_for_one) {
    const RegistrationKey key = key_of("'A name' = s 'it''s { val } NoRemove' { 'val' 'ForceRemove' = s '' }");
    EXPECT_EQ(key.name, "A name");
    EXPECT_EQ(text(key.value), "it's { val } NoRemove");
    EXPECT_EQ(key.keys.at(0).name, "val");
    EXPECT_EQ(key.keys.at(1).name, "ForceRemove");
    EXPECT_EQ(text(key.keys.at(1).value), "");
}

TEST(RegistrationScript, line_ends_of_every_kind_are_blanks) {
    EXPECT_EQ(parse_registration_script("HKCR\r\n{\r\n\tA = s 'x'\r\n}\r\n\r\n").at(0).name, "A");
}

TEST(RegistrationScript, what_is_no_script_is_refused_with_its_line) {
    EXPECT_EQ(error_of(""), "line 1: HKCR expected, not ''");
    EXPECT_EQ(error_of("HKLM\n{\n}"), "line 1: HKCR expected, not 'HKLM'");
    EXPECT_EQ(error_of("HKCR"), "line 1: { expected, not ''");
    EXPECT_EQ(error_of("HKCR\n{\nA = s 'x\n"), "line 4: a quote expected, not 'x\n'");
    EXPECT_EQ(error_of("HKCR\n{\nA = x 'x'\n}"), "line 3: s or d expected, not 'x'");
    EXPECT_EQ(error_of("HKCR\n{\nval A = d 'x'\n}").substr(0, 24), "line 4: a number expecte");
    EXPECT_EQ(error_of("HKCR\n{\nA = s 'x'\n").substr(0, 22), "line 4: a name expecte");
    EXPECT_EQ(error_of("HKCR\n{\n} more"), "line 3: the end expected, not 'more'");
    EXPECT_EQ(error_of("HKCR\n{\nval A = s 'x'\n}").substr(0, 21), "line 4: a key expecte");
    EXPECT_EQ(error_of("HKCR\n{\n= s 'x'\n}"), "line 3: a name expected, not '='");
}
