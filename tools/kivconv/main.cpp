// kivconv - converts text from one character encoding to another.

#include <cstdint>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "errors.h"
#include "input.h"
#include "options.h"
#include "output.h"
#include "progress.h"
#include "stream_converter.h"

namespace kivconv {
namespace {

void tell(const std::string& message) noexcept
{
    std::fprintf(stderr, "kivconv: %s\n", message.c_str());
}

std::optional<std::uint64_t> total_size(const Options& options)
{
    std::uint64_t total = 0;
    for (const std::string& path : options.inputs) {
        const std::optional<std::uint64_t> size = size_of_input(path);
        if (!size)
            return std::nullopt;
        total += *size;
    }
    return total;
}

ShowProgress how_to_show_progress(const Options& options, const Output& output)
{
    if (options.progress)
        return ShowProgress::ALWAYS;
    return options.silent ? ShowProgress::NEVER
                          : progress_if_watched(output.descriptor());
}

std::string summary(const std::string& name, const Tally& tally, OnFault action)
{
    return name + ": " + std::to_string(tally.faults) +
           (action == OnFault::SKIP ? " skipped" : " replaced") +
           (tally.faults == 1 ? ": " : ", first ") + tally.first;
}

void convert_files(const Options& options)
{
    Output output(options.output);
    Progress progress(how_to_show_progress(options, output), total_size(options));
    try {
        StreamConverter converter(options, output, progress);
        for (const std::string& path : options.inputs) {
            Input input(path);
            const Tally tally = converter.convert(input);
            if (tally.faults > 0 && !options.silent) {
                progress.clear();
                tell(summary(input.name(), tally, options.on_fault));
            }
        }
        output.commit();
    } catch (...) {
        progress.clear();
        throw;
    }
    progress.finish();
}

int run(int argc, char** argv)
{
    Options options;
    try {
        if (const std::optional<Answer> answer = read_options(argc, argv, options))
            Output("-").write(answer->text.data(), answer->text.size());
        else
            convert_files(options);
        return EXIT_CONVERTED;
    } catch (const UsageError& error) {
        tell(std::string(error.what()) + "\nTry 'kivconv --help'.");
    } catch (const ConversionError& error) {
        if (!options.silent)
            tell(error.what());
        return EXIT_NOT_CONVERTED;
    } catch (const std::exception& error) {
        tell(error.what());
    } catch (...) {
        tell("unknown failure");
    }
    return EXIT_TROUBLE;
}

// A closed descriptor would be given to the next file that is opened: messages
// would go into the output, or the output be read as the input. Opened the
// wrong way round, so that using it fails.
void occupy_standard_descriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(descriptor, F_GETFD) == -1)
            ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

}  // namespace
}  // namespace kivconv

int main(int argc, char** argv)
{
    kivconv::occupy_standard_descriptors();
    return kivconv::run(argc, argv);
}
