// SPDX-License-Identifier: MIT
#include <DiaryUpdates/HttpDownloader.h>

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QVariant>

#include <algorithm>
#include <array>
#include <utility>

namespace diary {

namespace {

constexpr qint64 readAhead = qint64{1} << 20U; // bytes
constexpr int statusOfSuccess = 200;
constexpr std::array<int, 5> statusesOfRedirects = {301, 302, 303, 307, 308};

QNetworkRequest requestFor(const QUrl &url) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setRawHeader("Accept-Encoding", "identity");
    request.setRawHeader("Cache-Control", "no-cache");
    request.setRawHeader("User-Agent", "Tavelo");
    return request;
}

} // namespace

// One request with all its redirects.
class HttpDownloader::Transfer {
public:
    Transfer(const Request &request, std::function<void(Answer)> handler, std::function<void()> onDone)
        : m_request(request), m_handler(std::move(handler)), m_onDone(std::move(onDone)) {
        if (Downloader::isOnThisMachine(m_request.url))
            m_manager.setProxy(QNetworkProxy::NoProxy);
        for (auto *timer : {&m_silence, &m_whole})
            timer->setSingleShot(true);
        QObject::connect(&m_silence, &QTimer::timeout, &m_context,
                         [this] { finish(QStringLiteral("no answer in time")); });
        QObject::connect(&m_whole, &QTimer::timeout, &m_context,
                         [this] { finish(QStringLiteral("the answer takes too long")); });
        if (m_request.longest.count() > 0)
            m_whole.start(m_request.longest);
        ask(m_request.url);
    }
    Transfer(const Transfer &) = delete;
    Transfer &operator=(const Transfer &) = delete;
    ~Transfer() { dropReply(); }

    // To be called when it is done, by whoever has taken it out of the others' sight.
    void answer() {
        const auto handler = std::exchange(m_handler, nullptr);
        handler(std::move(m_answer));
    }

private:
    void ask(const QUrl &url) {
        if (!Downloader::mayLead(m_request.url, url))
            return finish(QStringLiteral("the address is not encrypted: ") + url.toDisplayString());
        m_announced.reset();
        m_answer.body.clear();
        m_silence.start(m_request.timeout);
        m_reply = m_manager.get(requestFor(url));
        // Without it the manager's thread would read for as long as a fast server sends, and the manager
        // would wait for that thread when it goes.
        m_reply->setReadBufferSize(readAhead);
        QObject::connect(m_reply, &QNetworkReply::metaDataChanged, &m_context, [this] { readHeaders(); });
        QObject::connect(m_reply, &QNetworkReply::readyRead, &m_context, [this] { readBody(); });
        QObject::connect(m_reply, &QNetworkReply::finished, &m_context, [this] { readEnd(); });
    }

    int status() const { return m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); }

    bool isRedirect() const {
        return std::find(statusesOfRedirects.begin(), statusesOfRedirects.end(), status()) !=
               statusesOfRedirects.end();
    }

    void readHeaders() {
        m_silence.start(m_request.timeout);
        if (isRedirect())
            return redirect();
        const auto encoding = m_reply->rawHeader("Content-Encoding");
        if (!encoding.isEmpty() && encoding.compare("identity", Qt::CaseInsensitive) != 0)
            return finish(QStringLiteral("the answer is compressed"));
        const auto announced = m_reply->header(QNetworkRequest::ContentLengthHeader);
        if (!announced.isValid())
            return;
        m_announced = announced.toLongLong();
        if (*m_announced > m_request.largestBody)
            return finish(QStringLiteral("the answer is too large"));
        if (*m_announced > 0)
            m_answer.body.reserve(static_cast<qsizetype>(*m_announced));
    }

    void redirect() {
        if (++m_redirects > mostRedirects)
            return finish(QStringLiteral("redirected too often"));
        const auto target = m_reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
        const auto url = m_reply->url().resolved(target);
        dropReply();
        if (target.isEmpty())
            return finish(QStringLiteral("redirected to nowhere"));
        ask(url);
    }

    void readBody() {
        m_silence.start(m_request.timeout);
        // Before anything is taken in: what waits may be large already.
        if (m_answer.body.size() + m_reply->bytesAvailable() > m_request.largestBody)
            return finish(QStringLiteral("the answer is too large"));
        m_answer.body += m_reply->readAll();
    }

    void readEnd() {
        if (m_reply->error() != QNetworkReply::NoError)
            return finish(m_reply->errorString());
        if (status() != statusOfSuccess)
            return finish(QStringLiteral("the server answers with %1").arg(status()));
        if (m_announced && m_answer.body.size() != *m_announced)
            return finish(QStringLiteral("the answer is not as long as announced"));
        finish({});
    }

    void finish(const QString &error) {
        dropReply();
        m_silence.stop();
        m_whole.stop();
        if (!error.isEmpty())
            m_answer = {.body = {}, .error = error};
        m_onDone();
    }

    void dropReply() {
        auto *reply = std::exchange(m_reply, nullptr);
        if (!reply)
            return;
        QObject::disconnect(reply, nullptr, &m_context, nullptr);
        reply->abort();
        // It may be the one that calls.
        reply->deleteLater();
    }

    Request m_request;
    std::function<void(Answer)> m_handler;
    std::function<void()> m_onDone;
    Answer m_answer;
    std::optional<qint64> m_announced; // bytes
    int m_redirects = 0;
    QTimer m_silence;
    QTimer m_whole;
    QNetworkAccessManager m_manager;
    QNetworkReply *m_reply = nullptr; // the manager's
    QObject m_context;
};

HttpDownloader::HttpDownloader() = default;
HttpDownloader::~HttpDownloader() = default;

void HttpDownloader::get(const Request &request, std::function<void(Answer)> handler) {
    // A transfer can be done before it was kept.
    auto &kept = m_transfers.emplace_back();
    const auto self = std::make_shared<const Transfer *>(nullptr);
    const auto onDone = [this, self] {
        QMetaObject::invokeMethod(
            &m_context, [this, self] { deliver(*self); }, Qt::QueuedConnection);
    };
    kept = std::make_unique<Transfer>(request, std::move(handler), onDone);
    *self = kept.get();
}

void HttpDownloader::deliver(const Transfer *transfer) {
    const auto found = std::find_if(m_transfers.begin(), m_transfers.end(),
                                    [&](const auto &kept) { return kept.get() == transfer; });
    const auto done = std::move(*found);
    m_transfers.erase(found);
    // Last: the handler may destroy this.
    done->answer();
}

} // namespace diary
