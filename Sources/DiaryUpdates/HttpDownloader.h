// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/UpdateTools.h>

#include <QObject>

#include <memory>
#include <vector>

namespace diary {

// A downloader over HTTP. It keeps nothing: no cache, no cookies, no passwords. An answer is taken as it
// comes over the wire, so a compressed one cannot grow, and any status but 200 is an error.
//
// On this machine no proxy is asked.
class HttpDownloader : public Downloader {
public:
    // How often one request may be sent on to another address.
    static constexpr int mostRedirects = 5;

    HttpDownloader();
    ~HttpDownloader() override;

    void get(const Request &request, std::function<void(Answer)> handler) override;

private:
    class Transfer;

    void deliver(const Transfer *transfer);

    QObject m_context; // of what is posted
    std::vector<std::unique_ptr<Transfer>> m_transfers;
};

} // namespace diary
