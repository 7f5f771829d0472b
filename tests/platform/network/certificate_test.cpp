#include <gtest/gtest.h>

#include "support/http_get.h"
#include "support/test_server.h"

namespace {

using Platform::CertificatePolicy;
using Platform::Error;
using namespace TestServer;

Error Try(const std::wstring& url, CertificatePolicy policy) {
    return HttpGet(url, policy).Run().error;
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
