#pragma once

#include "App/DesignSystem/IconLabel.h"

#include <QHBoxLayout>

namespace vespra {

enum class NoteKind { info, ok, warn, bad };

/// What the user should know now: an icon, a title, what explains it, and perhaps a control.
class Note final : public QWidget {
public:
    /// `control` may be null; the note owns it.
    Note(const Theme& theme, NoteKind kind, QWidget* control = nullptr);

    /// Without a `text` there is the title alone, not in bold.
    void show(std::string_view icon, const std::string& title, const std::string& text = {});

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme theme_;
    NoteKind kind_;
    QHBoxLayout* row_;
    IconLabel* icon_;
    Label* title_;
    Label* text_;
    FollowsLook follows_;
};

} // namespace vespra
