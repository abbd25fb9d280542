// The converter's own main() in this process: command lines made of pieces that the input
// chooses, and texts of the input as files. What it writes is compared with what the
// library's coders give, one fault after the other.
//
// The first byte of the input chooses between any command line and a conversion that is
// known to be right. The program never sees a path outside a scratch folder, which is the
// current one.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include <kiv/charset.h>

#include "fuzz_support.h"

// tools/kivconv/main.cpp, compiled with this name.
int kivconv_main(int argc, char** argv);

namespace {

using namespace kivfuzz;
using kiv::Charset;

// --- What the program sees -------------------------------------------------------------

void write_file(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios_base::binary) << bytes;
}

std::string read_file(const std::string& path)
{
    std::ifstream in(path, std::ios_base::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Standard input and output are files, and standard error a stream in memory: this is
// how messages of sanitizers still come through.
class Redirected {
public:
    Redirected() : m_stderr(stderr)
    {
        replace(STDIN_FILENO, ::open("in", O_RDONLY | O_CLOEXEC));
        replace(STDOUT_FILENO,
                ::open("out", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        stderr = ::open_memstream(&m_text, &m_size);
    }
    ~Redirected()
    {
        std::fclose(stderr);
        stderr = m_stderr;
        std::free(m_text);
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO}) {
            ::dup2(m_saved[descriptor], descriptor);
            ::close(m_saved[descriptor]);
        }
    }
    bool has_message()
    {
        std::fflush(stderr);
        return m_size > 0;
    }

private:
    void replace(int descriptor, int file)
    {
        require(file >= 0);
        m_saved[descriptor] = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 3);
        ::dup2(file, descriptor);
        ::close(file);
    }

    int m_saved[2];
    std::FILE* m_stderr;
    char* m_text = nullptr;
    std::size_t m_size = 0;
};

struct Run {
    int status;
    bool message;
    std::string output;
};

Run run(std::vector<std::string> line, const std::string& in)
{
    write_file("in", in);
    std::vector<char*> arguments;
    line.insert(line.begin(), "kivconv");
    for (std::string& argument : line)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    Run result;
    {
        Redirected redirected;
        result.status = kivconv_main(static_cast<int>(line.size()), arguments.data());
        result.message = redirected.has_message();
    }
    result.output = read_file("out");
    require(result.status >= 0 && result.status <= 2);
    return result;
}

void clean_folder()
{
    for (const auto& entry : std::filesystem::directory_iterator("."))
        require(entry.path() == "./in" || entry.path() == "./out" ||
                std::filesystem::remove_all(entry.path()) > 0);
}

// --- Any command line
// --------------------------------------------------------------------

// Slashes lead out of the folder, but not from behind these options.
std::string argument_from(Bytes& bytes)
{
    static constexpr const char* PIECES[] = {
        "-f",
        "-t",
        "utf-8",
        "latin1",
        "-c",
        "--list",
        "--on-error",
        "replace",
        "skip",
        "report",
        "-o",
        "a",
        "b",
        "-",
        "--",
        "-s",
        "--progress",
        "--version",
        "--help",
        "--replacement",
        "-fgbk",
        "-tutf16le",
        "-oa",
        "--from=UTF-16BE",
        "--to=cesu8//IGNORE",
    };
    const unsigned which = bytes.below(std::size(PIECES) + 6);
    if (which < std::size(PIECES))
        return PIECES[which];
    const std::string text = bytes.text(bytes.byte() % 32).c_str();
    switch (which - std::size(PIECES)) {
    case 0:
        return "--from=" + text;
    case 1:
        return "--to=" + text;
    case 2:
        return "--replacement=" + text;
    case 3:
        return "--on-error=" + text;
    default:
        std::string plain = text;
        std::replace(plain.begin(), plain.end(), '/', '|');
        return plain;
    }
}

void check_any_line(Bytes& bytes)
{
    std::vector<std::string> line(bytes.below(8));
    for (std::string& argument : line)
        argument = argument_from(bytes);
    const std::string text = bytes.rest();
    write_file("a", text);
    write_file("b", text.substr(text.size() / 2));
    const Run result = run(line, text);
    require(result.status != 2 || result.message);
}

// --- Conversions
// -------------------------------------------------------------------------

enum Action { REPORT, REPLACE, SKIP };

// A coder that reports, faults that are dealt with here: the text up to a fault ends.
class Model {
public:
    Model(const Charset& from, const Charset& to, Action action)
        : m_decoder(from.newDecoder()), m_encoder(to.newEncoder()), m_action(action)
    {
        const kiv::char16 character = u'\uFFFD';
        if (action == REPLACE)
            m_replacement = m_encoder->canEncode(character)
                                ? m_encoder->encode({&character, 1})
                                : m_encoder->replacement();
    }

    // False at the first fault that is to be reported.
    bool convert(const std::string& bytes)
    {
        m_decoder->reset();
        kiv::Buffer<const unsigned char> in(
            reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
        std::vector<kiv::char16> room(2 * bytes.size() + 2);
        for (;;) {
            kiv::Buffer<kiv::char16> out(room.data(), room.size());
            const kiv::CoderResult result = m_decoder->decode(in, out, true);
            require(!result.isOverflow());
            if (!encode({room.data(), out.position()}))
                return false;
            if (!result.isError())
                return true;
            in.position(in.position() + result.length());
            if (!skip())
                return false;
        }
    }
    const std::string& output() const { return m_output; }
    bool had_faults() const { return m_had_faults; }

private:
    bool encode(kiv::basic_string_ref<kiv::char16> text)
    {
        m_encoder->reset();
        kiv::Buffer<const kiv::char16> in(text.data(), text.size());
        std::vector<unsigned char> room(6 * text.size() + 6);
        for (;;) {
            kiv::Buffer<unsigned char> out(room.data(), room.size());
            const kiv::CoderResult result = m_encoder->encode(in, out, true);
            require(!result.isOverflow());
            m_output.append(room.data(), room.data() + out.position());
            if (!result.isError())
                return true;
            in.position(in.position() + result.length());
            if (!skip())
                return false;
        }
    }
    bool skip()
    {
        m_output += m_replacement;
        m_had_faults = true;
        return m_action != REPORT;
    }

    std::unique_ptr<kiv::CharsetDecoder> m_decoder;
    std::unique_ptr<kiv::CharsetEncoder> m_encoder;
    Action m_action;
    std::string m_replacement, m_output;
    bool m_had_faults = false;
};

void check_conversion(Bytes& bytes)
{
    static const auto charsets = Charset::availableCharsets();
    static constexpr const char* ACTIONS[] = {"report", "replace", "skip"};
    const Charset& from = *charsets[bytes.byte() % charsets.size()];
    const Charset& to = *charsets[bytes.byte() % charsets.size()];
    const auto action = static_cast<Action>(bytes.below(3));
    const unsigned how = bytes.byte();
    std::string text = bytes.rest();
    // The program converts blocks of 64 KB: now and then the text lies across the end.
    if (how % 8 == 7)
        text.insert(0, std::string(0x10000 - how / 8, 'a'));
    const std::string second = text.substr(text.size() / 2);

    Model model(from, to, action);
    const bool converted = model.convert(text) && (how % 2 == 0 || model.convert(second));
    std::vector<std::string> line = {"-f",         Charset::UTF_8->encode(from.name()),
                                     "-t",         Charset::UTF_8->encode(to.name()),
                                     "--on-error", ACTIONS[action],
                                     "-"};
    write_file("a", "as before");
    write_file("b", second);
    if (how % 2 != 0)
        line.push_back("b");
    const bool to_file = how % 4 >= 2;
    if (to_file)
        line.push_back("--output=a");
    const Run result = run(line, text);
    require(result.status == (converted ? 0 : 1));
    require(result.message == model.had_faults());
    if (to_file)
        require(result.output.empty() &&
                read_file("a") == (converted ? model.output() : "as before"));
    else
        require(result.output == model.output());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const ScratchFolder folder;
    static const bool inside = [] {
        ::unsetenv("KIV_DEFAULT_CHARSET");
        std::filesystem::current_path(folder.path());
        return true;
    }();
    if (!inside || size < 2)
        return 0;
    Bytes bytes(data, size);
    if (bytes.one_in(2))
        check_any_line(bytes);
    else
        check_conversion(bytes);
    clean_folder();
    return 0;
}
