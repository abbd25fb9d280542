#include "progress.h"

#include <unistd.h>
#include <algorithm>
#include <cstdio>

namespace kivconv {
namespace {

constexpr std::chrono::milliseconds FIRST_SHOWN{1000};
constexpr std::chrono::milliseconds BETWEEN_LINES{1000};
constexpr std::chrono::milliseconds BETWEEN_UPDATES{200};

std::string megabytes(double bytes)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MB", bytes / 1e6);
    return text;
}

}  // namespace

ShowProgress progress_if_watched(int output_descriptor)
{
    return ::isatty(STDERR_FILENO) && !::isatty(output_descriptor) ? ShowProgress::IF_LONG
                                                                   : ShowProgress::NEVER;
}

Progress::Progress(ShowProgress show, std::optional<std::uint64_t> total)
    : m_show(show),
      m_on_terminal(::isatty(STDERR_FILENO) != 0),
      m_total(total),
      m_next(m_start + FIRST_SHOWN)
{
}

void Progress::advance(std::size_t bytes)
{
    m_done += bytes;
    if (m_show == ShowProgress::NEVER)
        return;
    const Clock::time_point now = Clock::now();
    if (now < m_next)
        return;
    m_next = now + (m_on_terminal ? BETWEEN_UPDATES : BETWEEN_LINES);
    show();
}

void Progress::clear()
{
    if (m_visible)
        std::fputs("\r\033[K", stderr);
    m_visible = false;
}

void Progress::finish()
{
    if (m_show != ShowProgress::ALWAYS) {
        clear();
        return;
    }
    show();
    if (m_on_terminal)
        std::fputc('\n', stderr);
    m_visible = false;
}

void Progress::show()
{
    clear();
    std::fputs(line().c_str(), stderr);
    if (m_on_terminal)
        m_visible = true;
    else
        std::fputc('\n', stderr);
}

std::string Progress::line() const
{
    const double done = static_cast<double>(m_done);
    const std::chrono::duration<double> elapsed = Clock::now() - m_start;
    std::string text = "kivconv: " + megabytes(done);
    if (m_total && *m_total > 0) {
        const double percent = 100 * done / static_cast<double>(*m_total);
        text += " of " + megabytes(static_cast<double>(*m_total)) + " (" +
                std::to_string(static_cast<int>(std::min(percent, 100.0))) + "%)";
    }
    return text + ", " + megabytes(done / std::max(elapsed.count(), 1e-3)) + "/s";
}

}  // namespace kivconv
