#include "App/Headless/TerminalOutput.h"

#include "Log/StandardError.h"

#include <QString>

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string_view>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace vespra {

namespace {

    std::size_t terminalWidth()
    {
        constexpr std::size_t usual = 80;
        winsize size{};
        return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
    }

    /// The most columns that a character can take: two if the system does not know it.
    std::size_t columns(char32_t character)
    {
        // In some terminals it widens the character before it.
        constexpr char32_t emojiSelector = 0xFE0F;
        if (character == emojiSelector)
            return 1;
        const int width = wcwidth(static_cast<wchar_t>(character));
        return width < 0 ? 2 : static_cast<std::size_t>(width);
    }

    /// The front of UTF-8 `text` that takes at most `width` columns.
    std::string cut(const std::string& text, std::size_t width)
    {
        const auto characters = QString::fromStdString(text).toStdU32String();
        std::size_t count = 0, taken = 0;
        while (count < characters.size() && (taken += columns(characters[count])) <= width)
            ++count;
        return QString::fromStdU32String(characters.substr(0, count)).toStdString();
    }

    bool canEraseLines()
    {
        const char* const terminal = std::getenv("TERM"); // NOLINT(concurrency-mt-unsafe): nothing changes it
        return isatty(STDOUT_FILENO) == 1 && terminal && *terminal && std::string_view{terminal} != "dumb";
    }

    /// While in the background nothing may be drawn: the terminal belongs to another program.
    bool isInForeground() { return tcgetpgrp(STDOUT_FILENO) == getpgrp(); }

} // namespace

TerminalOutput::TerminalOutput()
    : isTerminal_{canEraseLines()}
{
    if (!isTerminal_)
        return;
    standardError::redirect([this, thread = std::this_thread::get_id()](const std::string& line) {
        if (std::this_thread::get_id() == thread)
            printNote(line);
        else
            std::fprintf(stderr, "%s\n", line.c_str());
    });
}

TerminalOutput::~TerminalOutput()
{
    showLive({});
    if (isTerminal_)
        standardError::redirect({});
}

void TerminalOutput::printLine(const std::string& text)
{
    eraseLive();
    std::printf("%s\n", text.c_str());
    drawLive();
}

void TerminalOutput::printNote(const std::string& text)
{
    eraseLive();
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n", text.c_str());
    drawLive();
}

void TerminalOutput::showLive(const std::string& text)
{
    if (!isTerminal_ || text == live_)
        return;
    eraseLive();
    live_ = text;
    drawLive();
}

void TerminalOutput::eraseLive()
{
    if (std::exchange(isDrawn_, false) && isInForeground())
        std::fputs("\r\033[K", stdout);
}

void TerminalOutput::drawLive()
{
    // One less than the width: a full line would wrap, and could not be erased.
    isDrawn_ = !live_.empty() && isInForeground();
    if (isDrawn_)
        std::fputs(cut(live_, terminalWidth() - 1).c_str(), stdout);
    std::fflush(stdout);
}

} // namespace vespra
