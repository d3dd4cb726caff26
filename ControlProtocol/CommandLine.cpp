#include "ControlProtocol/CommandLine.h"

#include "ControlProtocol/Guess.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <sstream>

namespace vespra::commandLine {

namespace {

    constexpr std::size_t width = 80, labelWidth = 20;

    /// The verbs below `app` but those without a group, which no one is told of.
    std::vector<const CLI::App*> shownVerbs(const CLI::App& app)
    {
        return app.get_subcommands([](const CLI::App* verb) { return !verb->get_group().empty(); });
    }

    /// The front of `text` up to where a line may end: behind a blank, or behind a bar within a long word.
    std::string_view takePiece(std::string_view& text)
    {
        const auto end = text.find_first_of(" |");
        const auto piece = text.substr(0, end == std::string_view::npos ? end : end + 1);
        text.remove_prefix(piece.size());
        return piece;
    }

    /// Adds `text` with its own lines and those that it needs; all but the first begin at the column `indent`.
    void append(std::string& help, std::string_view text, std::size_t indent)
    {
        const auto nextLine = [&help, indent] {
            help.resize(help.find_last_not_of(' ') + 1);
            help += '\n' + std::string(indent, ' ');
            return indent;
        };
        auto column = indent;
        for (auto lines = text; !lines.empty();) {
            auto line = lines.substr(0, lines.find('\n'));
            lines.remove_prefix(std::min(line.size() + 1, lines.size()));
            while (!line.empty()) {
                const auto piece = takePiece(line);
                const auto shown = piece.size() - (piece.ends_with(' ') ? 1 : 0);
                if (column > indent && column + shown > width)
                    column = nextLine();
                help += piece;
                column += piece.size();
            }
            if (!lines.empty())
                column = nextLine();
        }
        help += '\n';
    }

    void appendEntry(std::string& help, const std::string& label, std::string_view description)
    {
        constexpr std::size_t indent = labelWidth + 4;
        help += "  " + label;
        if (!description.empty())
            help += label.size() > labelWidth ? '\n' + std::string(indent, ' ')
                                              : std::string(indent - 2 - label.size(), ' ');
        append(help, description, indent);
    }

    bool isRepeated(const CLI::Option& option) { return option.get_items_expected_max() > 1; }

    /// "LENGTH", "[KEY]", "KEY=VALUE..."; of options "-h, --help", "--timer LENGTH".
    std::string shownName(const CLI::Option& option)
    {
        if (option.get_positional())
            return option.get_name(true) + (isRepeated(option) ? "..." : "");
        std::string names;
        for (const auto& name : option.get_snames())
            names += "-" + name + ", ";
        names += "--" + option.get_lnames().front();
        return option.get_type_size() == 0 ? names : names + " " + option.get_type_name();
    }

    std::string usage(const CLI::App& app, const std::string& name)
    {
        auto line = "Usage: " + name + " [OPTIONS]";
        for (const auto* each : app.get_options([](const CLI::Option* option) { return option->get_positional(); }))
            line += each->get_required() ? " " + shownName(*each) : " [" + shownName(*each) + "]";
        if (!app.get_subcommands({}).empty())
            line += app.get_require_subcommand_min() == 0 ? " [VERB]" : " VERB";
        return line;
    }

    /// Lists what `app` takes, as the programs' own help does: within 80 columns, each kind under its heading.
    class Help final : public CLI::FormatterBase {
        std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode) const override
        {
            std::string help;
            append(help, app->get_description(), 0);
            help += '\n';
            append(help, usage(*app, name), 0);
            appendOptions(help, "Arguments", app->get_options([](auto* option) { return option->get_positional(); }));
            for (const auto& group : app->get_groups())
                appendOptions(help, group, app->get_options([&](auto* option) {
                    return !option->get_positional() && option->get_group() == group;
                }));
            if (const auto verbs = shownVerbs(*app); !verbs.empty()) {
                help += "\nVerbs:\n";
                for (const auto* verb : verbs) {
                    const auto description = verb->get_description();
                    appendEntry(help, verb->get_name(), description.substr(0, description.find('\n')));
                }
            }
            return help;
        }

        static void appendOptions(
            std::string& help, const std::string& heading, const std::vector<const CLI::Option*>& options)
        {
            if (!options.empty())
                help += "\n" + heading + ":\n";
            for (const auto* each : options)
                appendEntry(help, shownName(*each), each->get_description());
        }
    };

    /// The program, and below it the verbs that were given.
    std::vector<const CLI::App*> given(const CLI::App& program)
    {
        std::vector<const CLI::App*> chain{&program};
        for (auto verbs = program.get_subcommands(); !verbs.empty(); verbs = chain.back()->get_subcommands())
            chain.push_back(verbs.back());
        return chain;
    }

    std::string seeHelp(const std::vector<const CLI::App*>& chain)
    {
        std::string command;
        for (const auto* app : chain)
            command += app->get_name() + " ";
        return "\"" + command + "--help\" lists what there is";
    }

    std::vector<std::string> known(const std::vector<const CLI::App*>& chain, bool isOption)
    {
        std::vector<std::string> names;
        if (!isOption)
            for (const auto* verb : shownVerbs(*chain.back()))
                names.push_back(verb->get_name());
        else
            for (const auto* app : chain)
                for (const auto* option : app->get_options())
                    for (const auto& name : option->get_lnames())
                        names.push_back("--" + name);
        return names;
    }

    std::string isUnknown(const CLI::App& program, const std::string& word)
    {
        const auto chain = given(program);
        const auto nearest = guess(word.substr(0, word.find('=')), known(chain, word.starts_with('-')));
        return "there is no \"" + word + "\"; " + (nearest ? "did you mean \"" + *nearest + "\"?" : seeHelp(chain));
    }

    /// The first argument that nothing has taken.
    std::optional<std::string> leftOver(const CLI::App& program)
    {
        for (const auto& word : program.remaining(true))
            if (word != "--")
                return word;
        return {};
    }

    /// A word such as "-headless", which reads as "-h" and more.
    std::optional<std::string> longerThanHelp(const std::vector<std::string>& arguments)
    {
        for (const auto& word : arguments) {
            if (word == "--")
                break;
            if (word.starts_with("-h") && word.size() > 2)
                return word;
        }
        return {};
    }

    /// "NAME: expected LENGTH" and "NAME takes no value", in place of the library's words.
    std::string mismatch(std::string text)
    {
        constexpr std::string_view before = ": 1 required ", after = " missing", withValue = " was given a disallowed";
        if (const auto start = text.find(before); start != std::string::npos && text.ends_with(after))
            return text.erase(text.size() - after.size()).replace(start, before.size(), ": expected ");
        if (const auto start = text.find(withValue); start != std::string::npos)
            return "--" + text.substr(0, start) + " takes no value";
        return text;
    }

    std::string complaint(const CLI::App& program, const CLI::ParseError& error)
    {
        const bool isIncomplete = dynamic_cast<const CLI::RequiredError*>(&error);
        if (isIncomplete || dynamic_cast<const CLI::ExtrasError*>(&error))
            if (const auto word = leftOver(program))
                return isUnknown(program, *word);
        const auto chain = given(program);
        if (isIncomplete && chain.back()->get_require_subcommand_min() > 0)
            return "expected a verb; " + seeHelp(chain);
        return dynamic_cast<const CLI::ArgumentMismatch*>(&error) ? mismatch(error.what()) : error.what();
    }

    CLI::Validator validator(std::string expected, std::function<bool(const std::string&)> isFine)
    {
        const auto check = [expected = std::move(expected), isFine = std::move(isFine)](const std::string& text) {
            return isFine(text) ? std::string{} : "expected " + expected + ", not \"" + text + "\"";
        };
        return {check, /*description=*/""};
    }

    /// Through stdio, whose failures the programs look for at their end.
    void print(const CLI::App& program, const CLI::ParseError& asked)
    {
        std::ostringstream text;
        program.exit(asked, text, text);
        std::fputs(text.str().c_str(), stdout);
    }

} // namespace

void complain(std::string_view program, std::string_view message)
{
    std::fprintf(stderr,
        "%.*s: %.*s\n",
        static_cast<int>(program.size()),
        program.data(),
        static_cast<int>(message.size()),
        message.data());
}

void prepare(CLI::App& program)
{
    program.formatter(std::make_shared<Help>());
    // Of an option that is given twice the last one counts.
    program.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)->disable_flag_override();
    program.set_help_flag("-h,--help", "Print this help");
    program.set_version_flag("--version", program.get_name() + " " + VESPRA_VERSION, "Print the version");
}

CLI::Validator oneOf(const std::vector<std::string>& words)
{
    std::string list = words.front();
    for (std::size_t index = 1; index < words.size(); ++index)
        list += (index + 1 == words.size() ? " or " : ", ") + words[index];
    return validator(list, [words](const std::string& text) { return std::ranges::find(words, text) != words.end(); });
}

CLI::Validator directory()
{
    return validator("a directory that exists", [](const std::string& text) {
        std::error_code ignored;
        return std::filesystem::is_directory(text, ignored);
    });
}

std::optional<int> parse(CLI::App& program, int argc, char** argv)
{
    try {
        program.parse(argc, argv);
        return {};
    } catch (const CLI::ParseError& error) {
        constexpr int badInput = 2;
        const bool isAsked = error.get_exit_code() == 0; // for help or the version
        const auto odd = isAsked ? longerThanHelp({argv + 1, argv + argc}) : std::nullopt;
        if (isAsked && !odd) {
            print(program, error);
            return 0;
        }
        complain(program.get_name(), odd ? isUnknown(program, *odd) : complaint(program, error));
        return badInput;
    }
}

} // namespace vespra::commandLine
