#include "App/Panel/EditShortcuts.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QWidget>

namespace vespra::editShortcuts {

std::optional<QKeySequence::StandardKey> command(char32_t character, bool hasShift)
{
    struct Shortcut {
        char32_t character;
        bool hasShift;
        QKeySequence::StandardKey command;
    };
    constexpr Shortcut shortcuts[] = {
        {U'x', false, QKeySequence::Cut},
        {U'c', false, QKeySequence::Copy},
        {U'v', false, QKeySequence::Paste},
        {U'a', false, QKeySequence::SelectAll},
        {U'z', false, QKeySequence::Undo},
        {U'z', true, QKeySequence::Redo},
    };
    for (const auto& shortcut : shortcuts)
        if (shortcut.character == character && shortcut.hasShift == hasShift)
            return shortcut.command;
    return {};
}

bool carryOut(QKeySequence::StandardKey command, QWidget* field)
{
    const QKeySequence keys{command};
    if (!field || keys.isEmpty())
        return false;
    QKeyEvent press{QEvent::KeyPress, keys[0].key(), keys[0].keyboardModifiers()};
    press.ignore();
    QCoreApplication::sendEvent(field, &press);
    return press.isAccepted();
}

} // namespace vespra::editShortcuts
