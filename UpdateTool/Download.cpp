#include "UpdateTool/Download.h"

#include "HelperProtocol/Brand.h"

#include <memory>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QSslConfiguration>
#include <QTimer>

namespace vespra {

namespace {

    using Result = std::expected<void, updateMessage::Failed>;

    std::chrono::milliseconds milliseconds(Seconds length)
    {
        return std::chrono::ceil<std::chrono::milliseconds>(length);
    }

    QNetworkRequest makeRequest(const QUrl& url, const DownloadLimits& limits)
    {
        constexpr int redirects = 5;
        QNetworkRequest request{url};
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
        request.setMaximumRedirectsAllowed(redirects);
        for (const auto cookies : {QNetworkRequest::CookieLoadControlAttribute,
                 QNetworkRequest::CookieSaveControlAttribute,
                 QNetworkRequest::AuthenticationReuseAttribute})
            request.setAttribute(cookies, QNetworkRequest::Manual);
        request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
        request.setTransferTimeout(static_cast<int>(milliseconds(limits.silence).count()));
        // Qt would tell the user's language and its own version. Nothing compressed: a limit counts what is kept.
        request.setRawHeader("User-Agent", QByteArray::fromStdString(Brand::appName()));
        request.setRawHeader("Accept-Language", "*");
        request.setRawHeader("Accept-Encoding", "identity");
        auto security = QSslConfiguration::defaultConfiguration();
        security.setProtocol(QSsl::TlsV1_2OrLater);
        if (!limits.authorities.isEmpty())
            security.setCaCertificates(limits.authorities);
        request.setSslConfiguration(security);
        return request;
    }

    /// One download, in an event loop of its own.
    class Transfer {
    public:
        Transfer(QIODevice& target, const DownloadLimits& limits, const std::function<void(std::int64_t)>& onProgress)
            : target_{target}
            , limits_{limits}
            , onProgress_{onProgress}
        {
        }

        Result run(const QUrl& url)
        {
            reply_.reset(network_.get(makeRequest(url, limits_)));
            // Left to itself Qt would take in all that comes, however slowly it is written.
            reply_->setReadBufferSize(readBuffer);
            QEventLoop loop;
            QObject::connect(reply_.get(), &QNetworkReply::metaDataChanged, [this] { checkAnnounced(); });
            QObject::connect(reply_.get(), &QNetworkReply::readyRead, [this] { take(); });
            QObject::connect(reply_.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
            QTimer::singleShot(milliseconds(limits_.total), reply_.get(), [this] {
                stop(UpdateFailure::unreachable, "it takes too long");
            });
            if (!reply_->isFinished())
                loop.exec();
            take();
            return result();
        }

    private:
        static constexpr qint64 readBuffer = 1 << 18;

        void checkAnnounced()
        {
            const auto length = reply_->header(QNetworkRequest::ContentLengthHeader);
            if (length.isValid() && length.toLongLong() > limits_.bytes)
                stop(UpdateFailure::tooLarge, "it announces " + length.toString().toStdString() + " bytes");
        }

        /// What a redirect brings along is none of the content.
        void take()
        {
            if (failed_ || reply_->error() != QNetworkReply::NoError)
                return;
            const auto bytes = reply_->readAll();
            count_ += bytes.size();
            if (count_ > limits_.bytes)
                return stop(UpdateFailure::tooLarge, "more than " + std::to_string(limits_.bytes) + " bytes came");
            if (target_.write(bytes) != bytes.size())
                return stop(UpdateFailure::notSaved, target_.errorString().toStdString());
            if (onProgress_ && !bytes.isEmpty())
                onProgress_(count_);
        }

        void stop(UpdateFailure reason, const std::string& detail)
        {
            if (failed_)
                return;
            failed_ = {reason, detail};
            reply_->abort();
        }

        Result result() const
        {
            constexpr int ok = 200;
            if (failed_)
                return std::unexpected{*failed_};
            if (reply_->error() != QNetworkReply::NoError)
                return std::unexpected{
                    updateMessage::Failed{UpdateFailure::unreachable, reply_->errorString().toStdString()}};
            const auto status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
            if (status != ok)
                return std::unexpected{
                    updateMessage::Failed{UpdateFailure::unreachable, "status " + std::to_string(status)}};
            return {};
        }

        QIODevice& target_;
        const DownloadLimits& limits_;
        const std::function<void(std::int64_t)>& onProgress_;
        QNetworkAccessManager network_;
        std::unique_ptr<QNetworkReply> reply_;
        std::int64_t count_ = 0;
        std::optional<updateMessage::Failed> failed_;
    };

} // namespace

Result download(const QUrl& url, QIODevice& target, const DownloadLimits& limits,
    const std::function<void(std::int64_t)>& onProgress)
{
    if (url.scheme() != QStringLiteral("https"))
        return std::unexpected{updateMessage::Failed{UpdateFailure::untrusted, "the address is no HTTPS"}};
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    return Transfer{target, limits, onProgress}.run(url);
}

} // namespace vespra
