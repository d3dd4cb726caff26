#pragma once

#include <QKeySequence>

#include <optional>

class QWidget;

namespace vespra::editShortcuts {

/// The edit command that the command key and `character` stand for in a text field, though no menu has it; absent:
/// none.
std::optional<QKeySequence::StandardKey> command(char32_t character, bool hasShift);

/// Has `field` carry it out. False if it does nothing with it, as without a field (null).
bool carryOut(QKeySequence::StandardKey command, QWidget* field);

} // namespace vespra::editShortcuts
