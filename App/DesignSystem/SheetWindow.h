#pragma once

#include "App/DesignSystem/Buttons.h"
#include "App/DesignSystem/WindowGround.h"

#include <QBoxLayout>
#include <QDialog>

namespace vespra {

/// A small window above another, which waits until it is closed: contents above, buttons in the corner. Escape closes
/// it. It deletes itself when closed.
class SheetWindow final : public QDialog {
public:
    /// `width` in points; it is as high as its contents, up to the height of the screen.
    SheetWindow(const Theme& theme, const std::string& title, double width, QWidget& parent);

    template <class Widget> Widget& add(Widget* widget, int stretch = 0) { return added(*contents_, widget, stretch); }
    /// Closes the sheet and calls `action`, which may be empty. The last primary one is what Return presses.
    Button& addButton(const std::string& text, ButtonKind kind, std::function<void()> action = {});

protected:
    void paintEvent(QPaintEvent*) override { ground_.paint(); }
    bool event(QEvent* event) override;

private:
    const Theme theme_;
    double width_;
    QVBoxLayout* contents_;
    QHBoxLayout* buttons_;
    WindowGround ground_;
};

/// Tells the user what went wrong.
void showAlert(const Theme& theme, QWidget& parent, const std::string& title, const std::string& message);

/// A text in letters of equal width that can be scrolled, selected and copied; `lines` are seen where there is room.
QWidget* makeTextView(const Theme& theme, const std::string& name, const std::string& text, int lines);

} // namespace vespra
