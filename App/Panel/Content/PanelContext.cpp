#include "App/Panel/Content/PanelContext.h"

#include <QAccessible>
#include <QTextBoundaryFinder>

namespace vespra {

namespace {

    /// Longer words may be broken.
    constexpr qsizetype longestWord = 14;
    constexpr QChar zeroWidthSpace{0x200B};

    QString brokenUp(const QString& word)
    {
        QString text;
        QTextBoundaryFinder graphemes{QTextBoundaryFinder::Grapheme, word};
        for (qsizetype from = 0, to = 0; (to = graphemes.toNextBoundary()) >= 0; from = to)
            text += (from > 0 ? QString{zeroWidthSpace} : QString{}) + word.mid(from, to - from);
        return text;
    }

    bool hasFocusInside(const QWidget& part)
    {
        const auto* focused = part.window()->focusWidget();
        return focused && (focused == &part || part.isAncestorOf(focused));
    }

} // namespace

void PanelContext::setShown(QWidget& part, bool isShown) const
{
    // A part that was never hidden comes with its parent; shown without one, it would be a window.
    const bool isHidden = part.isHidden() && part.testAttribute(Qt::WA_WState_ExplicitShowHide);
    if (isHidden != isShown)
        return;
    if (!isShown && hasFocusInside(part))
        notify(takeFocus);
    part.setVisible(isShown);
}

void announce(QWidget& part)
{
    QAccessibleEvent event{&part, QAccessible::Alert};
    QAccessible::updateAccessibility(&event);
}

std::string breakable(const std::string& text)
{
    auto words = qtText(text).split(QLatin1Char(' '));
    for (auto& word : words)
        if (word.size() > longestWord)
            word = brokenUp(word);
    return words.join(QLatin1Char(' ')).toStdString();
}

} // namespace vespra
