#pragma once

#include "App/DesignSystem/Buttons.h"
#include "App/DesignSystem/Label.h"
#include "App/Settings/SettingsSurface.h"

namespace vespra {

/// Shows the keys of the session's shortcut, and records others: the next that are pressed. Escape leaves them as they
/// are.
class ShortcutRecorder final : public QWidget {
public:
    explicit ShortcutRecorder(const SettingsSurface& surface);
    ~ShortcutRecorder() override;

    /// Why the keys do not work, or what is wrong with those that were pressed last. Empty: nothing is. Followed by
    /// observation loops.
    std::string problem() const;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void record();
    void stop();
    void show(const std::string& keys, bool isRecorded);
    void apply();

    SessionShortcut& shortcut_;
    QWidget* field_;
    Label* keys_;
    Button* record_;
    Button* clear_;
    Observed<bool> isRecording_;
    /// The keys have been taken, and are still held down.
    bool isRecorded_ = false;
    Observed<bool> isRefused_;
};

} // namespace vespra
