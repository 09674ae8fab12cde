// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/UpdateTools.h>

#include <deque>
#include <functional>
#include <utility>
#include <vector>

namespace diary::testing {

// Remembers what it was asked for, and answers when told to.
class FakeDownloader : public Downloader {
public:
    // What a test keeps, since the downloader belongs to whoever it was made for.
    struct Log {
        std::vector<Request> requests;
        std::deque<std::function<void(Answer)>> waiting;

        void answer(const QByteArray &body) { answerWith({.body = body, .error = {}}); }
        void fail(const QString &error) { answerWith({.body = {}, .error = error}); }

    private:
        void answerWith(const Answer &answer) {
            const auto handler = std::move(waiting.front());
            waiting.pop_front();
            handler(answer);
        }
    };

    explicit FakeDownloader(Log &log) : m_log(log) {}
    FakeDownloader(const FakeDownloader &) = delete;
    FakeDownloader &operator=(const FakeDownloader &) = delete;
    ~FakeDownloader() override { m_log.waiting.clear(); }

    void get(const Request &request, std::function<void(Answer)> handler) override {
        m_log.requests.push_back(request);
        m_log.waiting.push_back(std::move(handler));
    }

private:
    Log &m_log;
};

} // namespace diary::testing
