#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/http_get.h"
#include "support/test_server.h"

namespace {

using Platform::CertificatePolicy;
using Platform::Error;
using testing::AnyOf;
using testing::Matcher;
using namespace TestServer;

Error Try(const std::wstring& url, CertificatePolicy policy) {
    return HttpGet(url, policy).Run().error;
}

TEST(Certificates, AreJudgedByThePolicy) {
    Put("certified", "text");
    const std::wstring path = L"certified";
    // Where no chain leads to a trusted root, some systems say that revocation cannot be checked.
    const auto refused = AnyOf(Error::HttpCertificateIssuer, Error::HttpCertificateUnchecked);
    struct Case {
        std::wstring url;
        Matcher<Error> strict;
        Matcher<Error> lenient;
    };
    const Case cases[] = {
        {Https(path), Error::None, Error::None},
        {HttpsWith(L"WRONG_NAME", path), Error::HttpCertificateName, Error::None},
        {HttpsWith(L"EXPIRED", path), Error::HttpCertificateDate, Error::None},
        {HttpsWith(L"UNKNOWN_ISSUER", path), refused, refused},
        {HttpsWith(L"SELF_SIGNED", path), refused, refused},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::PrintToString(row.url));
        EXPECT_THAT(Try(row.url, CertificatePolicy::Strict), row.strict);
        EXPECT_THAT(Try(row.url, CertificatePolicy::IgnoreNameAndDate), row.lenient);
    }
}

// A kept connection was verified as the request that made it wanted.
TEST(Certificates, StrictRequestsNeverRideOnLenientConnections) {
    Put("certified", "text");
    for (const wchar_t* certificate : {L"WRONG_NAME", L"EXPIRED"}) {
        const std::wstring url = HttpsWith(certificate, L"certified");
        for (int turn = 0; turn < 2; ++turn) {
            EXPECT_EQ(Try(url, CertificatePolicy::IgnoreNameAndDate), Error::None);
            EXPECT_NE(Try(url, CertificatePolicy::Strict), Error::None);
        }
    }
}

TEST(Certificates, AreJudgedAgainWhereARedirectLeads) {
    Put("certified", "text");
    const std::wstring wide = HttpsWith(L"WRONG_NAME", L"certified");
    const Misbehaviour away("away=redirect:" + std::string(wide.begin(), wide.end()));
    for (int turn = 0; turn < 2; ++turn) {
        EXPECT_EQ(Try(Https(L"away"), CertificatePolicy::IgnoreNameAndDate), Error::None);
        EXPECT_EQ(Try(Https(L"away"), CertificatePolicy::Strict), Error::HttpCertificateName);
    }
    EXPECT_EQ(Try(Http(L"away"), CertificatePolicy::IgnoreNameAndDate), Error::HttpCertificateName);
}

}  // namespace
