#include "options.h"

#include <map>

#include <CLI/CLI.hpp>

#include "charset_names.h"
#include "errors.h"

namespace kivconv {
namespace {

constexpr const char* DESCRIPTION =
    "Converts text from one character encoding to another.\n"
    "Reads the files one after the other, or standard input, and writes to standard\n"
    "output. Stops at the first thing that does not convert and says where it is.";

constexpr const char* EXAMPLES =
    "Examples:\n"
    "  kivconv -f latin1 -t utf-8 old.txt > new.txt\n"
    "  kivconv -f latin1 -t utf-8 -o page.html page.html     (in place)\n"
    "  kivconv -f utf-8 -t us-ascii --replacement '[?]' notes.txt\n"
    "  some-command | kivconv -t utf-16le -o export.txt\n"
    "  kivconv --list\n"
    "\n"
    "Charset names match whatever their case and punctuation: utf8, UTF_8 and Utf-8\n"
    "are one. Without -f or -t: the charset of the locale, UTF-8 if it names none.\n"
    "\n"
    "Exit status: 0 all was converted (or skipped or replaced, as asked),\n"
    "1 something does not convert, 2 wrong usage or a file that fails.";

OnFault on_fault_of(const std::string& action)
{
    static const std::map<std::string, OnFault> actions = {{"report", OnFault::REPORT},
                                                           {"replace", OnFault::REPLACE},
                                                           {"skip", OnFault::SKIP}};
    const auto found = actions.find(action);
    if (found == actions.end())
        throw UsageError("--on-error=" + action + ": must be report, replace or skip");
    return found->second;
}

// What the command line says, before its parts are weighed against each other.
struct CommandLine {
    std::string from;
    std::string to;
    std::string on_error;
    std::string replacement;
    bool skip = false;
    bool list = false;
};

void declare(CLI::App& app, CommandLine& line, Options& options)
{
    app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    app.set_version_flag("-V,--version", "kivconv " KIVCONV_VERSION, "Show the version");
    app.set_help_flag("-h,--help,-?", "Show this help");
    app.footer(EXAMPLES);
    app.get_formatter()->column_width(32);

    app.add_option("-f,--from,--from-code", line.from, "Charset of the input")
        ->type_name("NAME");
    app.add_option("-t,--to,--to-code", line.to, "Charset of the output")
        ->type_name("NAME");
    app.add_option("-o,--output", options.output,
                   "Write to FILE, which changes only when\nall has been converted")
        ->type_name("FILE");
    app.add_flag("-c", line.skip, "Skip what does not convert, as\n--on-error=skip does");
    app.add_option("--on-error", line.on_error,
                   "What becomes of input that does not\n"
                   "convert: report (stop there, the default),\nreplace or skip")
        ->type_name("ACTION");
    app.add_option("--replacement", line.replacement,
                   "Replace it by TEXT, given in UTF-8, not\n"
                   "by U+FFFD (or by what NAME has for it)")
        ->type_name("TEXT");
    app.add_flag("-l,--list", line.list, "List the charsets: name, MIBenum, aliases");
    app.add_flag("--progress,--verbose", options.progress,
                 "Show progress even if standard error is\nnot a terminal");
    app.add_flag("-s,--silent", options.silent,
                 "No progress, no messages about text that\ndoes not convert");
    app.add_option("files", options.inputs, "Input files; '-' is standard input")
        ->type_name("");
}

void settle_fault_action(const CLI::App& app, const CommandLine& line, bool ignore_suffix,
                         Options& options)
{
    if (app.count("--on-error") > 0)
        options.on_fault = on_fault_of(line.on_error);
    if (line.skip || ignore_suffix) {
        if (app.count("--on-error") > 0 && options.on_fault != OnFault::SKIP)
            throw UsageError(std::string(line.skip ? "-c" : "//IGNORE") +
                             " contradicts --on-error=" + line.on_error);
        options.on_fault = OnFault::SKIP;
    }
    if (app.count("--replacement") == 0)
        return;
    if (options.on_fault == OnFault::SKIP ||
        (options.on_fault == OnFault::REPORT && app.count("--on-error") > 0))
        throw UsageError("--replacement is of use only with --on-error=replace");
    options.on_fault = OnFault::REPLACE;
    options.replacement = line.replacement;
}

}  // namespace

std::optional<Answer> read_options(int argc, char** argv, Options& options)
{
    CLI::App app(DESCRIPTION, "kivconv");
    CommandLine line;
    declare(app, line, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return Answer{app.help()};
    } catch (const CLI::CallForVersion& version) {
        return Answer{std::string(version.what()) + "\n"};
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }
    if (line.list)
        return Answer{charset_list()};

    const CharsetChoice from = choose_charset(line.from);
    const CharsetChoice to = choose_charset(line.to);
    options.from = from.charset;
    options.to = to.charset;
    settle_fault_action(app, line, from.ignore_faults || to.ignore_faults, options);
    if (options.inputs.empty())
        options.inputs.push_back("-");
    if (options.output.empty())
        throw UsageError("--output: the file name is empty");
    return std::nullopt;
}

}  // namespace kivconv
