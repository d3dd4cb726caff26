#include "App/DesignSystem/SheetWindow.h"

#include "App/DesignSystem/Following.h"
#include "App/DesignSystem/Label.h"
#include "App/DesignSystem/ScrollArea.h"
#include "App/Wording/Localized.h"

#include <QFontDatabase>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScreen>

#include <algorithm>

namespace vespra {

namespace {

    constexpr double sheetPadding = 24, sheetGap = 12, sheetButtonGap = 8;
    constexpr double textInset = 4, textPadding = 5;

    /// The ground of a text, with room between it and the corners.
    class TextGround final : public QWidget {
    public:
        TextGround(const Theme& theme, QWidget* view)
            : theme_{theme}
            , follows_{theme, *this}
        {
            const int inset = theme.look.units(textInset);
            auto* column = new QVBoxLayout{this};
            column->setContentsMargins(inset, inset, inset, inset);
            column->addWidget(view);
        }

    protected:
        void paintEvent(QPaintEvent*) override
        {
            QPainter painter{this};
            const auto& look = theme_.look;
            drawButton(painter, rect(), ButtonKind::plain, look.scaled(measure::buttonRadius), {}, look.tokens());
        }

    private:
        const Theme theme_;
        FollowsLook follows_;
    };

    /// As high as its lines where there is room, and never so low that nothing can be read.
    class TextView final : public QPlainTextEdit {
    public:
        explicit TextView(int lines)
            : lines_{lines}
        {
        }

        QSize sizeHint() const override { return {0, heightOf(lines_)}; }
        QSize minimumSizeHint() const override { return {0, heightOf(fewestLines)}; }

    private:
        int heightOf(int lines) const
        {
            const int margins = static_cast<int>(2 * document()->documentMargin());
            return fontMetrics().lineSpacing() * lines + margins;
        }

        static constexpr int fewestLines = 6;
        int lines_;
    };

} // namespace

SheetWindow::SheetWindow(const Theme& theme, const std::string& title, double width, QWidget& parent)
    : QDialog{&parent}
    , theme_{theme}
    , width_{width}
    , contents_{new QVBoxLayout}
    , buttons_{new QHBoxLayout}
    , ground_{theme, *this}
{
    setWindowTitle(qtText(title));
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    const auto& look = theme.look;
    auto* column = new QVBoxLayout{this};
    const int edge = look.units(sheetPadding);
    column->setContentsMargins(edge, edge, edge, edge);
    column->setSpacing(look.units(sheetGap));
    contents_->setSpacing(look.units(sheetGap));
    column->addLayout(contents_, 1);
    column->addLayout(buttons_);
    buttons_->setSpacing(look.units(sheetButtonGap));
    buttons_->addStretch();
}

bool SheetWindow::event(QEvent* event)
{
    constexpr int decoration = 60; // pixels of a title bar, and some air
    const bool isHandled = QDialog::event(event);
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Polish) {
        const int width = theme_.look.units(width_);
        setFixedSize(
            width, std::min(layout()->totalHeightForWidth(width), screen()->availableSize().height() - decoration));
    }
    return isHandled;
}

Button& SheetWindow::addButton(const std::string& text, ButtonKind kind, std::function<void()> action)
{
    auto& button = added(*buttons_, new Button{theme_, kind});
    button.setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    button.setAutoDefault(kind == ButtonKind::primary);
    button.setDefault(kind == ButtonKind::primary);
    button.show(text);
    if (kind == ButtonKind::primary)
        button.setFocus();
    connect(&button, &QPushButton::clicked, this, [this, action = std::move(action)] {
        accept();
        notify(action);
    });
    return button;
}

void showAlert(const Theme& theme, QWidget& parent, const std::string& title, const std::string& message)
{
    constexpr double width = 360;
    auto* alert = new SheetWindow{theme, title, width, parent};
    alert->add(new Label{theme, TextStyle::strong}).show(title);
    alert->add(new Label{theme, TextStyle::body, &Tokens::text2}).show(message);
    alert->addButton(localized("OK"), ButtonKind::primary);
    alert->open();
}

QWidget* makeTextView(const Theme& theme, const std::string& name, const std::string& text, int lines)
{
    auto* view = new TextView{lines};
    dressScrollBars(theme, *view);
    view->setPlainText(qtText(text));
    view->setAccessibleName(qtText(name));
    view->setReadOnly(true);
    view->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    view->setTabChangesFocus(true);
    view->setLineWrapMode(QPlainTextEdit::NoWrap);
    view->setFrameShape(QFrame::NoFrame);
    view->viewport()->setAutoFillBackground(false);
    // Code and licences are written from left to right in every language.
    view->setLayoutDirection(Qt::LeftToRight);
    FocusRing::setRadius(*view, measure::buttonRadius);
    follow(*view, theme, [view, &look = theme.look] {
        auto font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        const auto body = look.font(TextStyle::caption);
        font.setPointSizeF(body.pointSizeF());
        view->setFont(font);
        view->document()->setDocumentMargin(look.scaled(textPadding));
        view->updateGeometry();
        auto colors = view->palette();
        colors.setColor(QPalette::Base, look.tokens().surface2);
        colors.setColor(QPalette::Text, look.tokens().text);
        view->setPalette(colors);
    });
    return new TextGround{theme, view};
}

} // namespace vespra
