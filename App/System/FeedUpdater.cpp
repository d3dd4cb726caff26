#include "App/System/FeedUpdater.h"

#include "Core/Coding/JSONSource.h"
#include "Core/Files/SafeWriting.h"
#include "Core/Updates/UpdateSchedule.h"
#include "HelperProtocol/Brand.h"

#include <nlohmann/json.hpp>

namespace vespra {

namespace {

    constexpr const char *checksKey = "automaticallyChecks", *installsKey = "automaticallyInstalls",
                         *lastCheckKey = "lastCheck";

    updateMessage::Failed noAnswer() { return {UpdateFailure::unreachable, "no answer"}; }

} // namespace

FeedUpdater::FeedUpdater(Environment environment)
    : environment_{std::move(environment)}
    , log_{Brand::appBundleID(), "updates"}
{
    readRecord();
    planCheck();
}

/// What is missing or malformed counts as its default.
void FeedUpdater::readRecord()
{
    const auto file = systemFiles().read(environment_.record);
    const auto json = file && *file ? parsedJSON((*file)->bytes) : std::nullopt;
    if (!json)
        return;
    const auto read = decoded(JSONSource{*json}, [](const JSONSource& source) {
        const auto last = source.optional(lastCheckKey);
        return Record{.checks = source.required(checksKey).boolean(),
            .installs = source.required(installsKey).boolean(),
            .lastCheck = last ? Instant::fromISO8601(last->string()) : std::nullopt};
    });
    record_ = read.value_or(Record{});
}

void FeedUpdater::save()
{
    JSON json{{checksKey, record_.checks}, {installsKey, record_.installs}};
    if (record_.lastCheck)
        json[lastCheckKey] = record_.lastCheck->iso8601();
    auto& files = systemFiles();
    auto saved = createDirectories(files, environment_.record.parent_path());
    if (saved)
        saved = writeSafely(files, environment_.record, json.dump() + "\n", {});
    if (!saved)
        log_.error("Réglages des mises à jour non enregistrés : " + saved.error().message());
}

void FeedUpdater::setAutomaticallyChecks(bool checks)
{
    record_.checks = checks;
    save();
    planCheck();
}

void FeedUpdater::setAutomaticallyInstalls(bool installs)
{
    record_.installs = installs;
    save();
}

void FeedUpdater::planCheck()
{
    nextCheck_.reset();
    if (!record_.checks)
        return;
    const auto wait
        = updateSchedule::untilNextCheck(environment_.clock.now(), record_.lastCheck, failures_, environment_.chance());
    nextCheck_ = environment_.tasks.schedule(wait, [this] { check(false); });
}

void FeedUpdater::checkForUpdates() { check(true); }

void FeedUpdater::check(bool isAskedFor)
{
    if (doing_ == Doing::fetching)
        return;
    if (doing_ == Doing::checking) {
        // What began by itself is the user's from now on.
        if (isAskedFor && !std::exchange(isAskedFor_, true))
            setState(update::Checking{});
        return;
    }
    isAskedFor_ = isAskedFor;
    if (isAskedFor)
        setState(update::Checking{});
    run(Doing::checking, {"check"}, {}, &FeedUpdater::checked);
}

void FeedUpdater::run(
    Doing what, const std::vector<std::string>& arguments, const std::string& input, void (FeedUpdater::*onEnd)())
{
    stopRun();
    doing_ = what;
    answer_ = noAnswer();
    const auto end = [this, onEnd] {
        doing_ = Doing::nothing;
        (this->*onEnd)();
    };
    run_ = environment_.tools->run(
        arguments,
        input,
        [this](const UpdateMessage& message) { received(message); },
        [this, end] { end_ = environment_.tasks.schedule(0s, end); });
}

void FeedUpdater::stopRun()
{
    run_.reset();
    end_.reset();
    doing_ = Doing::nothing;
}

void FeedUpdater::received(const UpdateMessage& message)
{
    answer_ = message;
    const auto* const progress = std::get_if<updateMessage::Progress>(&message);
    if (progress && doing_ == Doing::fetching)
        setState(update::Downloading{offer_->displayVersion, progress->fraction});
}

void FeedUpdater::checked()
{
    const auto* const offer = std::get_if<UpdateOffer>(&answer_);
    const bool isUpToDate = std::holds_alternative<updateMessage::UpToDate>(answer_);
    if (offer || isUpToDate) {
        failures_ = 0;
        record_.lastCheck = environment_.clock.now();
        save();
    }
    if (offer) {
        found(UpdateOffer{*offer});
    } else if (isUpToDate) {
        offer_.reset();
        package_.reset();
        setState(isAskedFor_ ? UpdateState{update::UpToDate{}} : settled());
    } else {
        ++failures_;
        const auto* const failure = std::get_if<updateMessage::Failed>(&answer_);
        failed(failure ? *failure : noAnswer());
    }
    notify(onCycleFinished);
    planCheck();
}

void FeedUpdater::found(const UpdateOffer& offer)
{
    if (offer_ != offer)
        package_.reset();
    offer_ = offer;
    setState(settled());
    notify(onWillShowUpdate, offer.displayVersion, isAskedFor_);
    if (isAskedFor_)
        notify(onUpdateSeen);
    if (record_.installs && !package_)
        fetch(false);
}

UpdateState FeedUpdater::settled() const
{
    if (!offer_)
        return update::Idle{};
    return update::Available{offer_->displayVersion, offer_->notes, package_.has_value()};
}

void FeedUpdater::install()
{
    if (!offer_)
        return;
    notify(onUpdateSeen);
    if (package_)
        return openPackage();
    if (doing_ == Doing::fetching) {
        isAskedFor_ = true;
        return;
    }
    stopRun();
    planCheck();
    fetch(true);
}

void FeedUpdater::fetch(bool isAskedFor)
{
    isAskedFor_ = isAskedFor;
    setState(update::Downloading{offer_->displayVersion, 0});
    run(Doing::fetching, {"download", "--into", environment_.folder.string()}, encoded(*offer_), &FeedUpdater::fetched);
}

void FeedUpdater::fetched()
{
    planCheck(); // one may have come due meanwhile
    const auto* const package = std::get_if<updateMessage::Package>(&answer_);
    if (!package) {
        const auto* const failure = std::get_if<updateMessage::Failed>(&answer_);
        return failed(failure ? *failure : noAnswer());
    }
    package_ = package->path;
    setState(settled());
    if (isAskedFor_)
        openPackage();
}

void FeedUpdater::openPackage()
{
    // It may have been cleared away.
    if (std::error_code ignored; !std::filesystem::exists(*package_, ignored)) {
        package_.reset();
        return fetch(true);
    }
    environment_.tools->open(*package_, lifetime_.guard([this](bool opened) {
        if (!opened) {
            isAskedFor_ = true;
            failed({UpdateFailure::notOpened, ""});
        }
    }));
}

void FeedUpdater::failed(const updateMessage::Failed& failure)
{
    log_.notice("Mise à jour : " + std::string{rawValue(failure.reason)} + " (" + failure.detail + ")");
    setState(isAskedFor_ ? UpdateState{update::Failed{failure.reason}} : settled());
}

void FeedUpdater::cancel()
{
    if (doing_ == Doing::nothing)
        return;
    stopRun();
    setState(settled());
    planCheck();
}

} // namespace vespra
