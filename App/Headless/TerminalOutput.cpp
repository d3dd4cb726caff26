#include "App/Headless/TerminalOutput.h"

#include <cstdio>
#include <sys/ioctl.h>
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

    /// The front of UTF-8 `text` with at most `count` characters.
    std::string cut(const std::string& text, std::size_t count)
    {
        std::size_t characters = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const bool continues = (static_cast<unsigned char>(text[i]) & 0xC0U) == 0x80U;
            if (!continues && ++characters > count)
                return text.substr(0, i);
        }
        return text;
    }

} // namespace

TerminalOutput::TerminalOutput()
    : isTerminal_{isatty(STDOUT_FILENO) == 1}
{
}

TerminalOutput::~TerminalOutput() { showLive({}); }

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
    if (!live_.empty())
        std::fputs("\r\033[K", stdout);
}

void TerminalOutput::drawLive()
{
    // One less than the width: a full line would wrap, and could not be erased.
    if (!live_.empty())
        std::fputs(cut(live_, terminalWidth() - 1).c_str(), stdout);
    std::fflush(stdout);
}

} // namespace vespra
