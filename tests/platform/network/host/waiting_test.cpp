#include <atomic>
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include "platform/clock.h"
#include "platform/network/host/listener.h"
#include "support/http_get.h"
#include "support/test_server.h"

namespace {

using Platform::CertificatePolicy;
using Platform::Error;
using Platform::HttpTimeouts;
using Platform::MonotonicSeconds;
using namespace TestServer;
using namespace std::chrono_literals;

constexpr double CancelLimit = 0.25;  // seconds

/// A wait that is cancelled once the server has come to the point that a line of its log names.
struct Cancelling {
    std::atomic<bool> flag{false};
    std::atomic<double> when{0.0};

    std::function<bool()> Asker() {
        return [this] { return flag.load(); };
    }
    /// Runs the wait and answers how long after the cancel it ended.
    double Measure(const std::string& line, const std::function<void()>& wait) {
        const LogMark log;
        std::thread canceller([&] {
            log.WaitFor(line);
            when = MonotonicSeconds();
            flag = true;
        });
        wait();
        const double end = MonotonicSeconds();
        canceller.join();
        return end - when;
    }
};

TEST(HttpCancel, WakesARequestWhereverItWaits) {
    struct Case {
        const char* rule;
        std::wstring url;
        const char* line;
    };
    const Case cases[] = {
        {"@https=stall", Https(L"wait"), "listener=https"},  // in the handshake
        {"wait=stall", Http(L"wait"), "GET /wait"},
        {"wait=junk:1M,stall:headers", Http(L"wait"), "GET /wait"},
        {"wait=junk:1M,stall:300K", Https(L"wait"), "GET /wait"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.rule);
        const Misbehaviour misbehaviour(row.rule);
        DropConnections();
        Cancelling cancelling;
        HttpGet get(row.url);
        get.request.CancelWhen(cancelling.Asker());
        EXPECT_LT(cancelling.Measure(row.line, [&] { get.Run(); }), CancelLimit);
        EXPECT_EQ(get.error, Error::HttpOperationCancelled);
    }
}

TEST(HttpCancel, WakesAConnectionThatDoesNotComeAbout) {
    const FullListener listener;
    const double start = MonotonicSeconds();
    const auto soon = [&] { return MonotonicSeconds() > start + 0.1; };
    EXPECT_EQ(Platform::CheckConnection(listener.Url(), soon), Error::HttpOperationCancelled);
    EXPECT_LT(MonotonicSeconds() - start, 0.1 + CancelLimit);
}

TEST(HttpTimeout, EndsSilenceAndNothingElse) {
    constexpr HttpTimeouts timeouts{5s, 5s, 400ms};
    struct Case {
        const char* rule;
        Error send;
        Error end;
    };
    const Case cases[] = {
        {"silent=stall", Error::HttpTimeout, Error::HttpTimeout},
        {"silent=junk:1M,stall:headers", Error::None, Error::HttpTimeout},
        {"silent=junk:1M,stall:300K", Error::None, Error::HttpTimeout},
        {"silent=junk:100K,trickle:100K", Error::None, Error::None},  // a second, never silent
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.rule);
        const Misbehaviour misbehaviour(row.rule);
        HttpGet get(Https(L"silent"), CertificatePolicy::Strict, timeouts);
        const double start = MonotonicSeconds();
        EXPECT_EQ(get.Send().error, row.send);
        EXPECT_EQ(get.ReadAll().error, row.end);
        EXPECT_GT(MonotonicSeconds() - start, 0.4);
        EXPECT_LT(MonotonicSeconds() - start, 4.0);
    }
}

TEST(HttpTimeout, DoesNotCountTheReadersOwnPauses) {
    constexpr HttpTimeouts timeouts{5s, 5s, 200ms};
    const Misbehaviour misbehaviour("pause=junk:1M");
    HttpGet get(Https(L"pause"), CertificatePolicy::Strict, timeouts);
    ASSERT_EQ(get.Send().error, Error::None);
    Platform::SleepMilliseconds(300);  // the reader's own pause is what is tested
    EXPECT_EQ(get.ReadAll().error, Error::None);
    EXPECT_EQ(get.body.size(), 1024u * 1024u);
}

TEST(HttpTimeout, EndsAConnectionThatDoesNotComeAbout) {
    constexpr HttpTimeouts timeouts{300ms, 5s, 5s};
    const FullListener listener;
    const Misbehaviour misbehaviour("@https=stall");
    DropConnections();
    for (const std::wstring& url : {listener.Url(), Https(L"x")}) {
        const double start = MonotonicSeconds();
        HttpGet get(url, CertificatePolicy::Strict, timeouts);
        EXPECT_EQ(get.Run().error, Error::HttpTimeout);
        EXPECT_LT(MonotonicSeconds() - start, 3.0);
    }
}

}  // namespace
