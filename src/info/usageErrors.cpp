// SPDX-License-Identifier: Apache-2.0
#include "info/usageErrors.h"

#include "info/check/similarNames.h"

#include <CLI/CLI.hpp>

namespace Zorvane {

namespace {

// The innermost subcommand that the command line came to.
const CLI::App& reached(const CLI::App& app) {
    const std::vector<CLI::App*> parsed = app.get_subcommands();
    return parsed.empty() ? app : reached(*parsed.back());
}

std::string pathOf(const CLI::App& app) {
    return (app.get_parent() ? pathOf(*app.get_parent()) + " " : "") + app.get_name();
}

std::vector<std::string> subcommandsOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* each : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(each->get_name());
    return names;
}

// Without those that every subcommand has.
std::string usageOf(const CLI::App& app) {
    std::string usage = pathOf(app), choice;
    for (const std::string& name : subcommandsOf(app))
        choice += (choice.empty() ? "" : "|") + name;
    if (!choice.empty())
        usage += app.get_parent() ? " [" + choice + "]" : " " + choice;
    for (const CLI::Option* option : app.get_options()) {
        if (option == app.get_help_ptr() || !app.get_parent())
            continue;
        const std::string full = option->get_items_expected_max() == 0 ? "" : option->get_type_name();
        const std::string type = full.substr(0, full.find(':')); // behind it stands the range
        const std::string text = option->get_positional() ? (type.empty() ? option->get_name() : type)
                                 : type.empty()           ? option->get_name()
                                                          : option->get_name() + " " + type;
        usage += option->get_required() ? " " + text : " [" + text + "]";
    }
    return usage + (app.get_allow_extras() ? " OPTIONS of zorb2v" : "");
}

std::string unexpected(const std::string& word, const CLI::App& app) {
    std::vector<std::string> known = subcommandsOf(app);
    const bool isSubcommand = !known.empty() && !word.starts_with('-');
    for (const CLI::App* each = &app; each; each = each->get_parent())
        for (const CLI::Option* option : each->get_options())
            for (const std::string& name : option->get_lnames())
                known.push_back("--" + name);
    const std::vector<std::string> near = similarNames(word, known);
    return "\"" + word + "\" is " + (isSubcommand ? "no subcommand of " + pathOf(app) : "not expected") +
           (near.empty() ? "" : "; did you mean \"" + near.front() + "\"?");
}

} // namespace

std::string textOf(const CLI::ParseError& error, const CLI::App& app) {
    const CLI::App& command = reached(app);
    const std::vector<std::string> extras = app.remaining(true);
    const bool isExtra = dynamic_cast<const CLI::ExtrasError*>(&error) && !extras.empty();
    const std::string what = isExtra ? unexpected(extras.front(), command) : error.what();
    return what + (what.ends_with('?') || what.ends_with('.') ? " " : ". ") + "Usage: " + usageOf(command) +
           "; see " + pathOf(command) + " --help";
}

} // namespace Zorvane
