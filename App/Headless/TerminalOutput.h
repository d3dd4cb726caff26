#pragma once

#include <string>

namespace vespra {

/// Standard output and standard error: lines that stay and, on a terminal, one live line below them, which is redrawn
/// while the program is in the foreground. Also keeps what the main thread writes with `standardError::write` apart
/// from the live line. One per process; main thread only.
class TerminalOutput {
public:
    TerminalOutput();
    /// Removes the live line.
    ~TerminalOutput();
    TerminalOutput(const TerminalOutput&) = delete;
    TerminalOutput& operator=(const TerminalOutput&) = delete;

    /// Whether somebody watches a terminal that can erase a line.
    bool isTerminal() const { return isTerminal_; }

    void printLine(const std::string& text);
    /// On standard error, for it is no event of the session.
    void printNote(const std::string& text);
    /// Cut to the terminal's width; empty removes it. Without a terminal it does nothing.
    void showLive(const std::string& text);

private:
    void eraseLive();
    void drawLive();

    bool isTerminal_;
    std::string live_;
    bool isDrawn_ = false;
};

} // namespace vespra
