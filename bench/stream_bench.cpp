// UTF-16 streams beside the wide streams of the standard library, which do the
// same work with units of twice the size.

#include <benchmark/benchmark.h>
#include <kiv/stream.h>
#include <kiv/string_ref.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "corpora.h"

namespace {

constexpr std::size_t ITEMS = 1000;
constexpr std::size_t FILE_BYTES = 1 << 20;

struct Utf16 {
    using string = kiv::ustring;
    using view = kiv::basic_string_ref<kiv::char16>;
    using ostringstream = kiv::uostringstream;
    using istringstream = kiv::uistringstream;
    using ifstream = kiv::uifstream;
    static constexpr const char* NAME = "/kivxx/";
    static ifstream open(const std::string& path) { return ifstream(path); }
};

struct Wide {
    using string = std::wstring;
    using view = std::wstring_view;
    using ostringstream = std::wostringstream;
    using istringstream = std::wistringstream;
    using ifstream = std::wifstream;
    static constexpr const char* NAME = "/wide/";
    static ifstream open(const std::string& path)
    {
        ifstream in;
        in.imbue(std::locale("C.UTF-8"));
        in.open(path);
        return in;
    }
};

template <class Peer>
typename Peer::string widen(const std::string& ascii)
{
    return {ascii.begin(), ascii.end()};
}

// --- Values: the same for both, of every size ------------------------------------

template <class Peer, class T>
std::vector<T> make_values()
{
    std::mt19937_64 random(7);
    std::vector<T> values;
    for (std::size_t i = 0; i < ITEMS; ++i) {
        const auto bits = static_cast<std::int64_t>(random() >> (random() % 64));
        if constexpr (std::is_same_v<T, double>)
            values.push_back(static_cast<double>(bits % 100000000) / 1000);
        else if constexpr (std::is_same_v<T, int>)
            values.push_back(static_cast<int>(bits));
        else
            values.push_back(widen<Peer>("word" + std::to_string(bits)));
    }
    return values;
}

template <class Peer, class T>
typename Peer::string joined()
{
    typename Peer::ostringstream out;
    for (const T& value : make_values<Peer, T>())
        out << value << ' ';
    return out.str();
}

// --- Loops -----------------------------------------------------------------------

// Written over and over into a buffer that has grown.
template <class Peer, class T>
void insert(benchmark::State& state)
{
    using Item = std::conditional_t<std::is_class_v<T>, typename Peer::view, T>;
    const std::vector<T> values = make_values<Peer, T>();
    const std::vector<Item> items(values.begin(), values.end());
    typename Peer::ostringstream out;
    for (auto _ : state) {
        out.seekp(0);
        for (const Item& item : items)
            out << item;
        benchmark::DoNotOptimize(out.rdbuf());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(ITEMS));
}

template <class Peer, class T>
void extract(benchmark::State& state)
{
    typename Peer::istringstream in(joined<Peer, T>());
    for (auto _ : state) {
        in.clear();
        in.seekg(0);
        T value{};
        for (std::size_t i = 0; i < ITEMS; ++i)
            in >> value;
        benchmark::DoNotOptimize(value);
        if (!in)
            state.SkipWithError("the text does not hold the values");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(ITEMS));
}

// What a stream that lives for one number costs.
template <class Peer>
void format_one(benchmark::State& state)
{
    for (auto _ : state) {
        typename Peer::ostringstream out;
        out << 42;
        benchmark::DoNotOptimize(out.str());
    }
}

template <class Peer>
void read_lines(benchmark::State& state, const std::string& path)
{
    for (auto _ : state) {
        typename Peer::ifstream in = Peer::open(path);
        typename Peer::string line;
        std::size_t units = 0;
        while (getline(in, line))
            units += line.size() + 1;
        if (units < FILE_BYTES / 4)
            state.SkipWithError("the file could not be read to its end");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(FILE_BYTES));
}

// --- Registration ----------------------------------------------------------------

// Text files of UTF-8 with lines of about 60 bytes, for the life of the program.
class TextFiles {
public:
    TextFiles()
    {
        m_folder = std::filesystem::temp_directory_path() /
                   ("kivxx_stream_bench_" + std::to_string(std::random_device()()));
        std::filesystem::create_directory(m_folder);
    }
    TextFiles(const TextFiles&) = delete;
    TextFiles& operator=(const TextFiles&) = delete;
    ~TextFiles() { std::filesystem::remove_all(m_folder); }

    std::string write(const kivbench::Corpus& corpus) const
    {
        std::string text;
        while (text.size() < FILE_BYTES)
            text += kivbench::make_text(corpus, 60 + text.size() % 7) + '\n';
        text.resize(FILE_BYTES - 1);
        const std::filesystem::path path = m_folder / corpus.name;
        std::ofstream(path, std::ios::binary) << text;
        return path.string();
    }

private:
    std::filesystem::path m_folder;
};

template <class Peer>
void add_peer()
{
    const auto add = [](const std::string& subject, const std::string& tail, auto loop) {
        benchmark::RegisterBenchmark((subject + Peer::NAME + tail).c_str(), loop);
    };
    add("insert", "int/1000", insert<Peer, int>);
    add("insert", "double/1000", insert<Peer, double>);
    add("insert", "view/1000", insert<Peer, typename Peer::string>);
    add("extract", "int/1000", extract<Peer, int>);
    add("extract", "double/1000", extract<Peer, double>);
    add("extract", "string/1000", extract<Peer, typename Peer::string>);
    add("format", "int/1", format_one<Peer>);
    static const TextFiles files;
    for (const kivbench::Corpus& corpus : kivbench::corpora)
        add("lines", corpus.name + std::string("/1048576"),
            [path = files.write(corpus)](benchmark::State& state) {
                read_lines<Peer>(state, path);
            });
}

[[maybe_unused]] const bool added = (add_peer<Utf16>(), add_peer<Wide>(), true);

}  // namespace
