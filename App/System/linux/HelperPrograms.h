#pragma once

#include <QString>

namespace vespra {

/// The files that say which of the component's programs the system has, and which one the application came with.
struct HelperPrograms {
    static HelperPrograms ofThisSystem();

    /// A registration has put another program into the system than the application's own.
    bool areDifferent() const;
    /// Whether the own program, or a package's, and all that makes it a service is there as it should be. Waits for the
    /// own program to say it, 2 s at most.
    bool areInPlace() const;

    /// Came with the application; empty: none.
    QString own;
    /// Where it is copied to.
    QString installed;
    /// A file that exists exactly where a package has installed the component.
    QString packageMark;
};

} // namespace vespra
