// SPDX-License-Identifier: MIT
#include "Support/LoopbackServer.h"
#include "Support/ScopedEnvironment.h"

#include <DiaryUpdates/HttpDownloader.h>

#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace diary {
namespace {

using namespace std::chrono_literals;
using testing::LoopbackServer;
using Reply = LoopbackServer::Reply;

QUrl url(const std::string &address) {
    return QUrl(QString::fromStdString(address), QUrl::StrictMode);
}

class HttpDownloaderTest : public ::testing::Test {
protected:
    // Waits for the answer; an answer that never comes is a failure.
    Downloader::Answer get(const Downloader::Request &request) {
        std::optional<Downloader::Answer> received;
        downloader.get(request, [&](Downloader::Answer answer) {
            EXPECT_FALSE(received) << "answered twice";
            received = std::move(answer);
        });
        EXPECT_FALSE(received) << "answered before the call returned";
        EXPECT_TRUE(QTest::qWaitFor([&] { return received.has_value(); }, 30'000));
        return received.value_or(Downloader::Answer{});
    }
    Downloader::Answer get(const std::string &address) {
        return get({.url = url(address), .timeout = 20s, .largestBody = 1000});
    }

    static std::string errorOf(const Downloader::Answer &answer) {
        EXPECT_TRUE(answer.body.isEmpty());
        return answer.error.value_or(QString()).toStdString();
    }

    HttpDownloader downloader;
};

TEST_F(HttpDownloaderTest, fetchesWhatIsThere) {
    const std::string body = std::string("\0\r\n\xff", 4) + "feed";
    LoopbackServer server([&](const auto &) { return LoopbackServer::ok(body); });
    const auto answer = get(server.address("/a/b.json?v=1.0"));
    EXPECT_EQ(answer.error, std::nullopt);
    EXPECT_EQ(answer.body.toStdString(), body);
    ASSERT_EQ(server.requests().size(), 1U);
    EXPECT_EQ(server.requests()[0].target, "/a/b.json?v=1.0");
}

TEST_F(HttpDownloaderTest, fetchesAnEmptyBody) {
    LoopbackServer server([](const auto &) { return LoopbackServer::ok(""); });
    const auto answer = get(server.address("/"));
    EXPECT_EQ(answer.error, std::nullopt);
    EXPECT_TRUE(answer.body.isEmpty());
}

TEST_F(HttpDownloaderTest, fetchesABodyWithoutAnAnnouncedLengthAndAChunkedOne) {
    LoopbackServer server([](const auto &request) {
        return request.target == "/chunked"
                   ? LoopbackServer::answer("200 OK", "Transfer-Encoding: chunked\r\n",
                                            "3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n")
                   : LoopbackServer::answer("200 OK", "", "abcde");
    });
    EXPECT_EQ(get(server.address("/chunked")).body, "abcde");
    EXPECT_EQ(get(server.address("/plain")).body, "abcde");
}

TEST_F(HttpDownloaderTest, fetchesASecondTimePastAnyCacheAndWithoutCookies) {
    LoopbackServer server([](const auto &) {
        return LoopbackServer::answer(
            "200 OK", "Cache-Control: max-age=1000\r\nSet-Cookie: who=me\r\nContent-Length: 1\r\n", "1");
    });
    EXPECT_EQ(get(server.address("/")).body, "1");
    EXPECT_EQ(get(server.address("/")).body, "1");
    ASSERT_EQ(server.requests().size(), 2U);
    const auto second = server.requests()[1].headers;
    EXPECT_EQ(second.count("cookie"), 0U);
    EXPECT_EQ(second.at("cache-control"), "no-cache");
}

TEST_F(HttpDownloaderTest, asksNoProxyOnThisMachine) {
    const testing::ScopedEnvironment proxy("http_proxy", "http://127.0.0.1:1");
    LoopbackServer server([](const auto &) { return LoopbackServer::ok("here"); });
    EXPECT_EQ(get(server.address("/")).body, "here");
}

TEST_F(HttpDownloaderTest, failsWhenNobodyListens) {
    std::string address;
    {
        const LoopbackServer gone([](const auto &) { return LoopbackServer::ok(""); });
        address = gone.address("/");
    }
    EXPECT_NE(errorOf(get(address)), "");
}

TEST_F(HttpDownloaderTest, failsWithAnyStatusButSuccess) {
    for (const std::string status : {"404 Not Found", "500 Internal Server Error", "401 Unauthorized",
                                     "204 No Content", "206 Partial Content", "304 Not Modified"}) {
        LoopbackServer server(
            [&](const auto &) { return LoopbackServer::answer(status, "Content-Length: 0\r\n"); });
        EXPECT_NE(errorOf(get(server.address("/"))), "") << status;
    }
}

TEST_F(HttpDownloaderTest, failsWhenTheConnectionBreaks) {
    const std::vector<Reply> replies = {
        {.bytes = ""},
        {.bytes = "HTTP/1.1 200 OK\r\nContent-Le"},
        {.bytes = "no web server speaks like this\r\n\r\n"},
        LoopbackServer::answer("200 OK", "Content-Length: 10\r\n", "123456789"),
        LoopbackServer::answer("200 OK", "Content-Length: 10\r\n", ""),
    };
    for (const auto &reply : replies) {
        LoopbackServer server([&](const auto &) { return reply; });
        EXPECT_NE(errorOf(get(server.address("/"))), "") << reply.bytes;
    }
}

TEST_F(HttpDownloaderTest, takesNoMoreThanWasAnnounced) {
    LoopbackServer server(
        [](const auto &) { return LoopbackServer::answer("200 OK", "Content-Length: 4\r\n", "12345678"); });
    const auto answer = get(server.address("/"));
    EXPECT_TRUE(answer.error || answer.body == "1234") << answer.body.toStdString();
}

TEST_F(HttpDownloaderTest, failsWithABodyThatIsAnnouncedTooLarge) {
    LoopbackServer server([](const auto &) {
        return Reply{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 1001\r\n\r\n1", .then = Reply::Then::Stall};
    });
    EXPECT_EQ(errorOf(get(server.address("/"))), "the answer is too large");
}

TEST_F(HttpDownloaderTest, takesTheLargestBodyAndFailsWithOneByteMore) {
    for (const std::size_t size : {1000U, 1001U}) {
        LoopbackServer server(
            [&](const auto &) { return LoopbackServer::answer("200 OK", "", std::string(size, 'x')); });
        const auto answer = get(server.address("/"));
        EXPECT_EQ(answer.body.size(), size == 1000 ? 1000 : 0);
        EXPECT_EQ(answer.error.has_value(), size == 1001);
    }
}

TEST_F(HttpDownloaderTest, failsWithABodyThatNeverEnds) {
    for (const std::string headers : {"", "Transfer-Encoding: chunked\r\n"}) {
        LoopbackServer server([&](const auto &) {
            auto reply = LoopbackServer::answer("200 OK", headers);
            reply.then = Reply::Then::Repeat;
            reply.piece = "400\r\n" + std::string(0x400, 'x') + "\r\n";
            return reply;
        });
        EXPECT_EQ(errorOf(get(server.address("/"))), "the answer is too large") << headers;
    }
}

TEST_F(HttpDownloaderTest, failsWithHeadersThatNeverEnd) {
    LoopbackServer server([](const auto &) {
        return Reply{.bytes = "HTTP/1.1 200 OK\r\n",
                     .then = Reply::Then::Repeat,
                     .piece = "X-More: " + std::string(1000, 'x') + "\r\n",
                     .pause = 1ms};
    });
    EXPECT_NE(errorOf(get({.url = url(server.address("/")), .timeout = 100ms, .largestBody = 10})), "");
}

TEST_F(HttpDownloaderTest, failsWhenNoByteArrivesInTime) {
    const std::vector<std::string> beginnings = {"", "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n",
                                                 "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345"};
    for (const auto &beginning : beginnings) {
        LoopbackServer server(
            [&](const auto &) { return Reply{.bytes = beginning, .then = Reply::Then::Stall}; });
        EXPECT_EQ(errorOf(get({.url = url(server.address("/")), .timeout = 50ms, .largestBody = 1000})),
                  "no answer in time")
            << beginning;
    }
}

TEST_F(HttpDownloaderTest, failsWhenTheWholeTakesTooLong) {
    LoopbackServer server([](const auto &) {
        auto reply = LoopbackServer::answer("200 OK", "Content-Length: 1000\r\n");
        reply.then = Reply::Then::Repeat;
        reply.piece = "1";
        reply.pause = 5ms;
        return reply;
    });
    EXPECT_EQ(errorOf(get(
                  {.url = url(server.address("/")), .timeout = 20s, .longest = 100ms, .largestBody = 1000})),
              "the answer takes too long");
}

TEST_F(HttpDownloaderTest, takesNoCompressedAnswer) {
    LoopbackServer server([](const auto &) {
        return LoopbackServer::answer("200 OK", "Content-Encoding: gzip\r\nContent-Length: 3\r\n", "abc");
    });
    EXPECT_EQ(errorOf(get(server.address("/"))), "the answer is compressed");
    EXPECT_EQ(server.requests()[0].headers.at("accept-encoding"), "identity");
}

TEST_F(HttpDownloaderTest, followsRedirectsOnThisMachine) {
    for (const std::string status : {"301 Moved Permanently", "302 Found", "303 See Other",
                                     "307 Temporary Redirect", "308 Permanent Redirect"}) {
        LoopbackServer target([](const auto &) { return LoopbackServer::ok("there"); });
        LoopbackServer server([&](const auto &request) {
            return request.target == "/start" ? LoopbackServer::redirect("next", status)
                                              : LoopbackServer::redirect(target.address("/end"), status);
        });
        EXPECT_EQ(get(server.address("/start")).body, "there") << status;
        EXPECT_EQ(server.requests().back().target, "/next");
    }
}

TEST_F(HttpDownloaderTest, followsFiveRedirectsAndNoSixth) {
    LoopbackServer server([](const auto &request) {
        const int left = std::stoi(request.target.substr(1));
        return left == 0 ? LoopbackServer::ok("end")
                         : LoopbackServer::redirect("/" + std::to_string(left - 1));
    });
    EXPECT_EQ(get(server.address("/5")).body, "end");
    EXPECT_EQ(errorOf(get(server.address("/6"))), "redirected too often");
}

TEST_F(HttpDownloaderTest, failsWithRedirectsInACircle) {
    LoopbackServer server(
        [](const auto &request) { return LoopbackServer::redirect(request.target == "/a" ? "/b" : "/a"); });
    EXPECT_EQ(errorOf(get(server.address("/a"))), "redirected too often");
    EXPECT_EQ(server.requests().size(), 6U);
}

TEST_F(HttpDownloaderTest, isNotLedAway) {
    const std::vector<std::string> targets = {"file:///etc/passwd",
                                              "http://updates.tavelo.invalid/",
                                              "http://127.0.0.1.tavelo.invalid/",
                                              "http://127.0.0.2/",
                                              "http://user@tavelo.invalid:80/",
                                              "ftp://127.0.0.1/",
                                              "data:text/plain,hello",
                                              "qrc:/x",
                                              "//tavelo.invalid/x"};
    for (const auto &target : targets) {
        LoopbackServer server([&](const auto &) { return LoopbackServer::redirect(target); });
        EXPECT_THAT(errorOf(get(server.address("/"))), ::testing::HasSubstr("not encrypted")) << target;
    }
}

TEST_F(HttpDownloaderTest, failsWithARedirectToNowhere) {
    LoopbackServer server(
        [](const auto &) { return LoopbackServer::answer("302 Found", "Content-Length: 0\r\n"); });
    EXPECT_NE(errorOf(get(server.address("/"))), "");
}

TEST_F(HttpDownloaderTest, asksForNoAddressThatIsNotEncryptedElsewhere) {
    for (const std::string address : {"http://tavelo.invalid/", "file:///etc/passwd", "", "feed.json",
                                      "https:///x", "data:,x", "http://127.0.0.2/"})
        EXPECT_THAT(errorOf(get(address)), ::testing::HasSubstr("not encrypted")) << address;
}

TEST_F(HttpDownloaderTest, failsWhenTheServerDoesNotSpeakTheEncryption) {
    LoopbackServer server([](const auto &) { return LoopbackServer::ok("plain"); });
    EXPECT_NE(errorOf(get("https://127.0.0.1:" + std::to_string(server.port()) + "/")), "");
}

TEST_F(HttpDownloaderTest, fetchesSeveralAtATime) {
    LoopbackServer server([](const auto &request) { return LoopbackServer::ok(request.target); });
    std::vector<std::string> bodies;
    for (int number = 0; number < 5; ++number) {
        downloader.get({.url = url(server.address("/" + std::to_string(number))), .largestBody = 10},
                       [&](const auto &answer) { bodies.push_back(answer.body.toStdString()); });
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return bodies.size() == 5; }, 30'000));
    EXPECT_THAT(bodies, ::testing::UnorderedElementsAre("/0", "/1", "/2", "/3", "/4"));
}

TEST_F(HttpDownloaderTest, answersNobodyOnceItIsGone) {
    LoopbackServer server([](const auto &request) {
        return request.target == "/stall" ? Reply{.bytes = "HTTP/1.1 200 OK\r\n", .then = Reply::Then::Stall}
                                          : LoopbackServer::ok("1");
    });
    bool isAnswered = false;
    auto gone = std::make_unique<HttpDownloader>();
    gone->get({.url = url(server.address("/stall"))}, [&](const auto &) { isAnswered = true; });
    gone->get({.url = url("file:///x")}, [&](const auto &) { isAnswered = true; });
    // The server has seen the request, and the other answer is on its way.
    ASSERT_TRUE(QTest::qWaitFor([&] { return !server.requests().empty() || isAnswered; }, 30'000));
    gone.reset();
    isAnswered = false;
    EXPECT_EQ(get(server.address("/")).body, "1");
    EXPECT_FALSE(isAnswered);
}

TEST_F(HttpDownloaderTest, mayBeDestroyedByItsHandler) {
    LoopbackServer server([](const auto &) { return LoopbackServer::ok("1"); });
    auto own = std::make_unique<HttpDownloader>();
    bool isAnswered = false;
    own->get({.url = url(server.address("/")), .largestBody = 10}, [&](const auto &) {
        own.reset();
        isAnswered = true;
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return isAnswered; }, 30'000));
}

} // namespace
} // namespace diary
