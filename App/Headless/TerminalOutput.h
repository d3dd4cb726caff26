#pragma once

#include <string>

namespace vespra {

/// Standard output and standard error: lines that stay, and on a terminal below them one live line that is drawn again
/// and again while the program is in the foreground. What else the program writes to standard error
/// (`standardError::write`) stays apart from the live line as well, if the main thread writes it. One in a process;
/// main thread only.
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
    /// Cut to the terminal's width; empty removes it. Nothing where there is no terminal.
    void showLive(const std::string& text);

private:
    void eraseLive();
    void drawLive();

    bool isTerminal_;
    std::string live_;
    bool isDrawn_ = false;
};

} // namespace vespra
