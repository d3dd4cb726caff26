#pragma once

#include "Tests/Support/TextFiles.h"

#include <functional>
#include <gtest/gtest.h>
#include <sstream>

namespace vespra {

/// Plays the courses in the file `path`. A course begins with a line that says what rule it shows; in each indented
/// line below it stands what happens, as words for `does`, and after " > " what `seen` says then.
inline void playCourses(const char* path, const std::function<void()>& begin,
    const std::function<void(const std::string& word)>& does, const std::function<std::string()>& seen)
{
    std::istringstream lines{textOf(path).value()};
    std::string rule;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('#') || line.empty())
            continue;
        if (!line.starts_with(' ')) {
            rule = line;
            begin();
            continue;
        }
        const auto split = line.find(" > ");
        std::istringstream words{line.substr(0, split)};
        for (std::string word; words >> word;)
            does(word);
        EXPECT_EQ(seen(), line.substr(split + 3)) << rule << ": " << line;
    }
}

} // namespace vespra
