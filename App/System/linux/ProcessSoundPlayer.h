#pragma once

#include "App/System/SoundPlayer.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainLoop.h"
#include "Log/SystemLog.h"

#include <filesystem>
#include <optional>
#include <QProcess>
#include <vector>

namespace vespra {

/// Plays a file with the first of several programs that is there and succeeds.
class ProcessSoundPlayer final : public SoundPlayer {
public:
    /// A program, looked for in PATH at each play, and what it takes before the file.
    struct Program {
        QString name;
        QStringList arguments;
    };

    /// `programs` in the order of preference. `sound` is absent where the file is missing; then nothing is played.
    ProcessSoundPlayer(
        std::optional<std::filesystem::path> sound, std::vector<Program> programs, MainLoop& mainLoop, SystemLog log);
    ~ProcessSoundPlayer() override;

    /// Those that desktops and sound servers bring along.
    static std::vector<Program> systemPrograms();

    void play(std::function<void()> completion) override;
    void stop() override;

private:
    void startFrom(std::size_t program);
    void start(const QString& path, std::size_t program);
    void ended(QProcess& process, std::size_t program, bool succeeded);
    void finish();
    void logFailure();

    std::optional<std::filesystem::path> sound_;
    std::vector<Program> programs_;
    MainLoop& mainLoop_;
    SystemLog log_;
    bool hasLoggedFailure_ = false;
    bool isPlaying_ = false;
    std::function<void()> completion_;
    /// Owns all processes, the one that plays and those that have been killed and are still to end.
    QObject processes_;
    QProcess* process_ = nullptr;
    Lifetime lifetime_;
};

} // namespace vespra
