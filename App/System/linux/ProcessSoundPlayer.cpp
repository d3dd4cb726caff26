#include "App/System/linux/ProcessSoundPlayer.h"

#include "Core/Scheduling/MainThread.h"

#include <QStandardPaths>

#include <climits>
#include <unistd.h>

namespace vespra {

ProcessSoundPlayer::ProcessSoundPlayer(
    std::optional<std::filesystem::path> sound, std::vector<Program> programs, MainLoop& mainLoop, SystemLog log)
    : sound_{std::move(sound)}
    , programs_{std::move(programs)}
    , mainLoop_{mainLoop}
    , log_{std::move(log)}
{
}

ProcessSoundPlayer::~ProcessSoundPlayer()
{
    constexpr int killed = 1000; // milliseconds, within which the kernel ends a killed process
    for (auto* process : processes_.findChildren<QProcess*>()) {
        process->disconnect();
        process->kill();
        process->waitForFinished(killed);
    }
}

std::vector<ProcessSoundPlayer::Program> ProcessSoundPlayer::systemPrograms()
{
    return {{QStringLiteral("canberra-gtk-play"), {QStringLiteral("--file")}},
        {QStringLiteral("pw-play"), {}},
        {QStringLiteral("paplay"), {}},
        {QStringLiteral("aplay"), {QStringLiteral("--quiet")}}};
}

void ProcessSoundPlayer::play(std::function<void()> completion)
{
    stop();
    isPlaying_ = true;
    completion_ = std::move(completion);
    startFrom(0);
}

void ProcessSoundPlayer::stop()
{
    mainThread::check();
    if (process_) {
        process_->disconnect();
        // Not by `finished`, which a program that cannot be started never emits.
        QObject::connect(
            process_, &QProcess::stateChanged, process_, [process = process_](QProcess::ProcessState state) {
                if (state == QProcess::NotRunning)
                    process->deleteLater();
            });
        std::exchange(process_, nullptr)->kill();
    }
    finish();
}

void ProcessSoundPlayer::startFrom(std::size_t program)
{
    for (; sound_ && program < programs_.size(); ++program)
        if (const auto path = QStandardPaths::findExecutable(programs_[program].name); !path.isEmpty())
            return start(path, program);
    logFailure();
    finish();
}

void ProcessSoundPlayer::start(const QString& path, std::size_t program)
{
    process_ = new QProcess{&processes_};
    process_->setStandardInputFile(QProcess::nullDevice());
    process_->setStandardOutputFile(QProcess::nullDevice());
    process_->setStandardErrorFile(QProcess::nullDevice());
    // Descriptors that a library has left open must not be inherited.
    process_->setChildProcessModifier([] { close_range(STDERR_FILENO + 1, UINT_MAX, CLOSE_RANGE_CLOEXEC); });
    // Queued: a program that cannot be started says so inside `start`.
    QObject::connect(
        process_,
        &QProcess::errorOccurred,
        process_,
        [this, &process = *process_, program](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                ended(process, program, false);
        },
        Qt::QueuedConnection);
    QObject::connect(
        process_, &QProcess::finished, [this, &process = *process_, program](int status, QProcess::ExitStatus exit) {
            ended(process, program, exit == QProcess::NormalExit && status == 0);
        });
    process_->start(
        path, programs_[program].arguments + QStringList{QString::fromStdString(sound_->string())}, QIODevice::NotOpen);
}

void ProcessSoundPlayer::ended(QProcess& process, std::size_t program, bool succeeded)
{
    // Not for a process stopped meanwhile: `stop` has seen to that.
    if (&process != process_)
        return;
    std::exchange(process_, nullptr)->deleteLater();
    if (!succeeded)
        return startFrom(program + 1);
    hasLoggedFailure_ = false;
    finish();
}

void ProcessSoundPlayer::finish()
{
    if (std::exchange(isPlaying_, false))
        mainLoop_.post(lifetime_.guard([completion = std::exchange(completion_, nullptr)] { notify(completion); }));
}

void ProcessSoundPlayer::logFailure()
{
    if (std::exchange(hasLoggedFailure_, true))
        return;
    if (!sound_)
        return log_.error("Alarme : son introuvable");
    std::string names;
    for (const auto& program : programs_)
        names += (names.empty() ? "" : ", ") + program.name.toStdString();
    log_.error("Alarme : aucun lecteur de sons n'a réussi (" + names + ")");
}

} // namespace vespra
