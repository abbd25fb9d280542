// Reads the files below data/unicode for tests, without a line in common with
// the generators: a fault there must not hide itself here.

#ifndef KIV_TESTS_COMPANION_UNICODE_DATA_H
#define KIV_TESTS_COMPANION_UNICODE_DATA_H

#include <cstdint>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kivtest {

constexpr std::uint32_t CODE_SPACE = 0x110000;

// Calls row(first, last, rest of the line after ';') for every line of data.
template <typename Row>
void for_each_row(const std::string& file, Row row)
{
    std::ifstream in(std::string(KIV_DATA_DIR "/unicode/") + file);
    std::string line;
    std::size_t rows = 0;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        const std::size_t semicolon = line.find(" ; ");
        if (semicolon == std::string::npos)
            throw std::runtime_error("a line without a value in " + file);
        const std::size_t dots = line.find("..");
        const auto first = static_cast<std::uint32_t>(std::stoul(line, nullptr, 16));
        const auto last = dots == std::string::npos
                              ? first
                              : static_cast<std::uint32_t>(
                                    std::stoul(line.substr(dots + 2), nullptr, 16));
        row(first, last, std::string_view(line).substr(semicolon + 3));
        ++rows;
    }
    if (rows == 0)
        throw std::runtime_error("no data in " + file);
}

// The two-letter general category of each code point.
inline std::vector<std::string> read_categories(const std::string& file)
{
    std::vector<std::string> categories(CODE_SPACE);
    for_each_row(file,
                 [&](std::uint32_t first, std::uint32_t last, std::string_view name) {
                     for (std::uint32_t cp = first; cp <= last; ++cp)
                         categories.at(cp) = name;
                 });
    return categories;
}

// For each property of the file, whether each code point has it.
inline std::map<std::string, std::vector<bool>> read_properties(const std::string& file)
{
    std::map<std::string, std::vector<bool>> properties;
    for_each_row(file,
                 [&](std::uint32_t first, std::uint32_t last, std::string_view name) {
                     std::vector<bool>& members = properties[std::string(name)];
                     members.resize(CODE_SPACE);
                     for (std::uint32_t cp = first; cp <= last; ++cp)
                         members.at(cp) = true;
                 });
    return properties;
}

}  // namespace kivtest

#endif
