#include "tools/documents/outline.h"

#include <CLI/CLI.hpp>

#include "tools/documents/documents.h"
#include "tools/export/export_writer.h"
#include "tools/gate_table.h"
#include "tools/help.h"

namespace tools {
namespace {

Names table_names() {
    Names names;
    for (const auto& table : gate_tables()) names.push_back(table->name());
    return names;
}

Names format_names() {
    Names names;
    for (const ExportFormat& format : export_formats()) names.emplace_back(format.name);
    return names;
}

// What the name of a word, or of an option's value, stands for.
void set_value(OutlineItem& item, const std::string& name, const CLI::App& tree) {
    static constexpr const char* kPaths[] = {"FOLDER", "FILE", "OUT", "A", "B", "BACKUP", "DEST", "NEW"};
    item.value = OutlineItem::Value::kText;
    for (const std::string path : kPaths) {
        if (name == path || name.rfind(path + ".", 0) == 0) item.value = OutlineItem::Value::kPath;
    }
    if (name == "TABLE") item.choices = table_names();
    if (name == "FORM") item.choices = format_names();
    if (name == "COMMAND") item.choices = command_names(tree);
    if (name == "SHELL") item.choices = completion_shells();
    if (!item.choices.empty()) item.value = OutlineItem::Value::kChoice;
}

OutlineItem item_of(const CLI::Option& option, const CLI::App& tree) {
    OutlineItem item;
    item.help = option.get_description();
    item.is_required = option.get_required();
    if (option.get_positional()) {
        item.names.push_back(option.get_name(true, false));
        item.is_repeated = option.get_expected_max() >= CLI::detail::expected_max_vector_size;
        set_value(item, item.names[0], tree);
        return item;
    }
    for (const std::string& name : option.get_snames()) item.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) item.names.push_back("--" + name);
    item.is_repeated = option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
    if (option.get_type_size() == 0 || option.get_type_name().empty()) return item;  // a flag
    item.type = option.get_type_name();
    set_value(item, item.type, tree);
    return item;
}

}  // namespace

Outline outline_of(const CLI::App& tree) {
    Outline outline;
    outline.help = tree.get_description();
    for (const CLI::Option* const option : tree.get_options()) outline.options.push_back(item_of(*option, tree));
    for (const CLI::App* const app : tree.get_subcommands({})) {
        OutlineCommand command{app->get_name(), app->get_group(), app->get_description(), {}, {}};
        for (const CLI::Option* const option : app->get_options()) {
            (option->get_positional() ? command.words : command.options).push_back(item_of(*option, tree));
        }
        outline.commands.push_back(std::move(command));
    }
    return outline;
}

std::string usage_of(const OutlineItem& item, bool is_word) {
    std::string text = is_word ? item.names[0] : item.names.back();
    if (!item.type.empty()) text += " " + item.type;
    if (item.is_repeated) text += " ...";
    return item.is_required ? text : "[" + text + "]";
}

}  // namespace tools
