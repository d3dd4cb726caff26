#pragma once

#include <QStringList>

#include <expected>
#include <string>

class QCoreApplication;

namespace vespra {

/// Makes `localized` answer in the first of `languages` (such as "pt-BR", best first) that there is a file for in
/// `folder`: "pt-BR.json", else "pt.json". English needs no file and ends the search. Fails with a sentence that names
/// the file if it is not an object of texts; nothing is installed then. Main thread only.
std::expected<void, std::string> installTranslation(
    QCoreApplication& application, const QStringList& languages, const QString& folder);

/// The same for the user's languages and the translations built into the program.
std::expected<void, std::string> installTranslation(QCoreApplication& application);

} // namespace vespra
