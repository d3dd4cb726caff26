#include "App/System/linux/SessionInhibitor.h"

#include "Core/Scheduling/MainThread.h"

#include <algorithm>

namespace vespra {

InhibitService InhibitService::sessionManager(unsigned flags)
{
    return {.target = {QStringLiteral("org.gnome.SessionManager"),
                QStringLiteral("/org/gnome/SessionManager"),
                QStringLiteral("org.gnome.SessionManager")},
        .flags = flags,
        .release = QStringLiteral("Uninhibit")};
}

InhibitService InhibitService::powerManagement()
{
    return {.target = {QStringLiteral("org.freedesktop.PowerManagement"),
                QStringLiteral("/org/freedesktop/PowerManagement/Inhibit"),
                QStringLiteral("org.freedesktop.PowerManagement.Inhibit")},
        .flags = {},
        .release = QStringLiteral("UnInhibit")};
}

InhibitService InhibitService::screenSaver()
{
    return {.target = {QStringLiteral("org.freedesktop.ScreenSaver"),
                QStringLiteral("/org/freedesktop/ScreenSaver"),
                QStringLiteral("org.freedesktop.ScreenSaver")},
        .flags = {},
        .release = QStringLiteral("UnInhibit")};
}

SessionInhibitor::SessionInhibitor(QString application, std::vector<InhibitService> services,
    std::unique_ptr<Inhibition> otherwise, TaskScheduling& tasks, SystemLog log)
    : application_{std::move(application)}
    , tasks_{tasks}
    , log_{std::move(log)}
    , otherwise_{std::move(otherwise)}
{
    for (auto& service : services)
        candidates_.push_back({.service = std::move(service)});
    if (dbus::sessionBus().isConnected())
        for (std::size_t each = 0; each < candidates_.size(); ++each)
            ask(each);
    else
        candidates_.clear();
}

void SessionInhibitor::ask(std::size_t candidate)
{
    auto& [service, isOwned, question, watch] = candidates_[candidate];
    watch = std::make_unique<dbus::NameWatch>(
        dbus::sessionBus(), service.target.service, [this, candidate](bool owned) { ownerChanged(candidate, owned); });
    question = dbus::call(dbus::sessionBus(),
        dbus::bus().method(QStringLiteral("NameHasOwner"), {service.target.service}),
        dbus::readingTimeout,
        [this, candidate](const QDBusMessage& reply) {
            candidates_[candidate].question.reset();
            candidates_[candidate].isOwned = reply.arguments().value(0).toBool();
            reconcile();
        });
}

void SessionInhibitor::ownerChanged(std::size_t candidate, bool owned)
{
    candidates_[candidate].question.reset();
    candidates_[candidate].isOwned = owned;
    // A cookie of the previous owner is gone with that process, unless it lives on without the name.
    if (held_ && held_->candidate == candidate)
        giveBack(*std::exchange(held_, std::nullopt));
    if (asked_ == candidate) {
        asked_.reset();
        outdated_.emplace(question_++, std::move(pending_));
    }
    reconcile();
}

void SessionInhibitor::hold(const std::string& why)
{
    mainThread::check();
    why_ = why;
    reconcile();
}

void SessionInhibitor::drop()
{
    mainThread::check();
    why_.reset();
    retry_.reset();
    hasLoggedFailure_ = false;
    reconcile();
}

void SessionInhibitor::verify()
{
    reconcile();
    if (otherwise_)
        otherwise_->verify();
}

std::optional<std::size_t> SessionInhibitor::best() const
{
    const auto isUnknown = [](const Candidate& candidate) { return !candidate.isOwned; };
    if (std::ranges::any_of(candidates_, isUnknown))
        return {};
    const auto found = std::ranges::find_if(candidates_, [](const Candidate& candidate) { return *candidate.isOwned; });
    return found == candidates_.end() ? std::nullopt : std::optional{std::size_t(found - candidates_.begin())};
}

/// Gives back what is not to be held any more, then asks for what is; while an answer is on its way only the former.
void SessionInhibitor::reconcile()
{
    const auto chosen = best();
    if (held_ && (!why_ || (chosen && chosen != held_->candidate)))
        giveBack(*std::exchange(held_, std::nullopt));
    const bool isNoneThere
        = std::ranges::all_of(candidates_, [](const Candidate& candidate) { return candidate.isOwned == false; });
    if (otherwise_ && !(why_ && isNoneThere))
        otherwise_->drop();
    else if (otherwise_)
        otherwise_->hold(*why_);
    if (why_ && chosen && !held_ && !pending_)
        request(*chosen);
}

void SessionInhibitor::request(std::size_t candidate)
{
    retry_.reset();
    const auto& service = candidates_[candidate].service;
    QVariantList arguments{application_};
    if (service.flags)
        arguments << 0U;
    arguments << QString::fromStdString(*why_);
    if (service.flags)
        arguments << *service.flags;
    asked_ = candidate;
    pending_ = dbus::call(dbus::sessionBus(),
        service.target.method(QStringLiteral("Inhibit"), arguments),
        dbus::untilAnswered,
        [this, candidate, question = question_](const QDBusMessage& reply) { received(candidate, question, reply); });
}

void SessionInhibitor::received(std::size_t candidate, int question, const QDBusMessage& reply)
{
    std::optional<Held> granted;
    const auto cookie = reply.arguments().value(0);
    if (reply.type() == QDBusMessage::ReplyMessage && cookie.metaType() == QMetaType::fromType<unsigned>())
        granted = Held{candidate, reply.service(), cookie.toUInt()};
    if (question != question_) {
        outdated_.erase(question);
        if (granted)
            giveBack(*granted);
        return;
    }
    pending_.reset();
    asked_.reset();
    if (granted) {
        held_ = granted;
        hasLoggedFailure_ = false;
        return reconcile();
    }
    if (!why_)
        return;
    if (!std::exchange(hasLoggedFailure_, true))
        log_.error("Inhibition par " + candidates_[candidate].service.target.service.toStdString()
            + " impossible : " + reply.errorName().toStdString() + " " + reply.errorMessage().toStdString());
    retry_ = tasks_.schedule(retryDelay, [this] { reconcile(); });
}

void SessionInhibitor::giveBack(const Held& held)
{
    const auto& [target, flags, release] = candidates_[held.candidate].service;
    const dbus::Target grantor{held.grantor, target.path, target.interface};
    dbus::sessionBus().send(grantor.method(release, {held.cookie}));
}

} // namespace vespra
