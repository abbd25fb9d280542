// progress.h - how far the conversion is, on standard error.

#ifndef KIVCONV_PROGRESS_H
#define KIVCONV_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace kivconv {

enum class ShowProgress {
    NEVER,
    IF_LONG,  // once a second has passed
    ALWAYS    // a last line too, however short it took
};

// Keeps one line up to date on a terminal; writes a line now and then elsewhere.
class Progress {
public:
    // The number of input bytes, if it is known.
    Progress(ShowProgress show, std::optional<std::uint64_t> total);

    void advance(std::size_t bytes);

    // Removes the line from the terminal: something else is to be written.
    void clear();

    void finish();

private:
    using Clock = std::chrono::steady_clock;

    void show();
    std::string line() const;

    ShowProgress m_show;
    bool m_on_terminal;
    bool m_visible = false;
    std::optional<std::uint64_t> m_total;
    std::uint64_t m_done = 0;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_next;
};

// IF_LONG if somebody watches and the text itself goes elsewhere, else NEVER.
ShowProgress progress_if_watched(int output_descriptor);

}  // namespace kivconv

#endif
