#include "App/System/linux/HelperPrograms.h"

#include "HelperProtocol/linux/InstallationNames.h"

#include <cstring>
#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>

namespace vespra {

namespace {

    constexpr int verifyLimit = 2000; // milliseconds

    /// In the build it lies with the application, installed below libexec.
    QString ownProgram()
    {
        const auto programs = QCoreApplication::applicationDirPath();
        for (const auto& path : {programs + QStringLiteral("/vespra-helper"),
                 programs + QLatin1Char{'/'} + QLatin1String{installation::helperFromPrograms}})
            if (QFileInfo{path}.isExecutable())
                return QFileInfo{path}.canonicalFilePath();
        return {};
    }

    /// A file that cannot be read counts as equal: there is no other way to tell.
    bool haveOneContent(QFile&& one, QFile&& other)
    {
        if (!one.open(QFile::ReadOnly) || !other.open(QFile::ReadOnly))
            return true;
        if (one.size() != other.size())
            return false;
        const auto* first = one.map(0, one.size());
        const auto* second = other.map(0, other.size());
        return !first || !second || std::memcmp(first, second, static_cast<std::size_t>(one.size())) == 0;
    }

} // namespace

HelperPrograms HelperPrograms::ofThisSystem()
{
    return {ownProgram(),
        QString::fromLatin1(installation::localProgram),
        QString::fromLatin1(installation::packagedActivation)};
}

bool HelperPrograms::areDifferent() const
{
    return !QFileInfo::exists(packageMark) && !haveOneContent(QFile{own}, QFile{installed});
}

bool HelperPrograms::areInPlace() const
{
    QProcess process;
    process.start(own, {QStringLiteral("--verify")});
    return process.waitForFinished(verifyLimit) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == EXIT_SUCCESS;
}

} // namespace vespra
