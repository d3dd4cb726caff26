#pragma once

#include "App/DesignSystem/Theme.h"
#include "App/Panel/PanelShadow.h"

#include <functional>

namespace vespra {

class ScrollArea;

/// The ground of the panel, with its edge and the shadow around it, and the content on it. Main thread only.
class PanelFrame final : public QWidget {
public:
    enum class Ground {
        floating, // round, in the middle of its shadow
        square, // where nothing can be seen through a window
        window, // inside the frame of the desktop's windows
    };

    /// `makeContent` is called once, when the content is needed; the frame owns what it makes. Its height is that of
    /// its `sizeHint`, which keeps to its `maximumHeight`; what is lower than its `minimumSizeHint` scrolls.
    PanelFrame(const Theme& theme, std::function<QWidget*()> makeContent);

    void setGround(Ground ground);
    /// Makes the content unless it is there.
    void build();

    /// How large the content is to be, if it may be `maximumHeight` points high.
    QSize contentSize(int maximumHeight);
    /// The frame around a content that is there.
    QRect frameAround(const QRect& content) const;
    QRect contentRect() const;

    QSize sizeHint() const override;

    /// The keyboard's way out.
    std::function<void()> onEscape;
    /// A click beside the content.
    std::function<void()> onPressOutside;
    /// The system closes the window; true if it may.
    std::function<bool()> onClose;
    /// The content asks for another size.
    std::function<void()> onContentResize;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    int margin() const;
    QSize wantedSize() const;

    const Theme theme_;
    std::function<QWidget*()> makeContent_;
    QWidget* content_ = nullptr;
    /// Of the content, for when even its least height is more than there is.
    ScrollArea* scroller_ = nullptr;
    Ground ground_ = Ground::floating;
    PanelShadow shadow_;
    QSize wanted_;
    FollowsLook follows_;
};

} // namespace vespra
