#include "App/Wording/SessionWording.h"

#include "App/Wording/Localized.h"

#include <QDateTime>
#include <QLocale>

namespace vespra {

std::string notificationTitle(const EndReason& reason)
{
    const auto ended = [](const auto&) { return localized("Session ended"); };
    return match(
        reason,
        [](const end::LowBattery& low) {
            return localized("Session ended — battery at %1%", {std::to_string(low.level)});
        },
        [&](const end::StoppedByUser& user) { return ended(user); },
        [](const end::TimeElapsed&) { return localized("Session ended — time is up"); },
        [&](const end::SystemSleep& sleep) { return ended(sleep); },
        [&](const end::AppTerminated& quit) { return ended(quit); },
        [](const end::ChargerDisconnected&) { return localized("Session ended — charger unplugged"); },
        [](const end::BatteryTimeLimit&) { return localized("Session ended — battery time limit reached"); },
        [](const end::ClosedLidTimeLimit&) { return localized("Session ended — 4-hour limit reached"); },
        [](const end::Overheating&) { return localized("Session ended — Mac too hot"); },
        [](const end::AgentsFinished&) { return localized("Session ended — agents finished"); },
        [](const end::SafetyCapReached&) { return localized("Session ended — safety limit reached"); });
}

std::string message(const StartRefusal& refusal)
{
    return match(
        refusal,
        [](const refusal::BatteryTooLow& low) {
            return localized("Battery at %1%, too low to start.", {std::to_string(low.level)});
        },
        [](const refusal::AlreadyActive&) { return localized("A session is already running."); },
        [](const refusal::ChargerRequired&) { return localized("Plug in the charger to start."); },
        [](const refusal::TooHot&) { return localized("Mac is too hot for closed-lid mode."); });
}

std::string timeText(Instant instant)
{
    using std::chrono::duration_cast, std::chrono::milliseconds;
    const auto sinceEpoch = duration_cast<milliseconds>(instant.since1970()).count();
    const auto time = QDateTime::fromMSecsSinceEpoch(sinceEpoch).time();
    const auto locale = QLocale::system();
    // The locale without a country shows seconds even in its short form.
    const auto text
        = locale.language() == QLocale::C ? time.toString(QStringLiteral("HH:mm")) : locale.toString(time, QLocale::ShortFormat);
    return text.toStdString();
}

} // namespace vespra
