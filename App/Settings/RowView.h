#pragma once

#include "App/DesignSystem/Card.h"

namespace vespra {

/// One row of a page: a title, what explains it, and controls at the side. It grows with its texts. For a screen reader
/// the control carries both texts.
class RowView final : public QWidget {
public:
    /// The row owns `control`; null: none.
    RowView(const Theme& theme, const std::string& title, QWidget* control);

    /// Empty: no line.
    void showSubtitle(const std::string& text);
    /// Before the texts.
    void setLeading(QWidget* leading);
    /// Below the title.
    void addBelow(QWidget* line);
    /// Below all texts.
    void addAtEnd(QWidget* line);

private:
    const Theme theme_;
    QWidget* control_;
    QHBoxLayout* layout_;
    QVBoxLayout* texts_;
    Label* title_;
    Label* subtitle_;
};

} // namespace vespra
