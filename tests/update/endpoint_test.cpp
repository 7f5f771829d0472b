#include "update/endpoint.h"

#include <gtest/gtest.h>

#include "update/client_update.h"

namespace Launcher {
namespace {

TEST(Endpoint, TheLaunchersAnswerBeginsWithItsCrc) {
    const std::pair<const char*, std::optional<std::uint32_t>> cases[] = {
        {"12345\r\n", 12345}, {"12x", 12},           {"4294967295", 4294967295U},
        {"4294967297", 1},    {"x12", std::nullopt}, {"0", std::nullopt},
        {"", std::nullopt},   {" 12", std::nullopt}, {"-12", std::nullopt},
    };
    for (const auto& [answer, crc] : cases)
        EXPECT_EQ(ParseLauncherAnswer(answer), crc) << answer;
}

TEST(Endpoint, TheClientsAnswerHoldsCrcAndSize) {
    const std::pair<const char*, std::optional<std::pair<std::uint32_t, std::uint64_t>>> cases[] = {
        {"123 456\r\n", {{123, 456}}},
        {"123\t\t 456", {{123, 456}}},
        {"4294967295 5000000000", {{4294967295U, 5000000000U}}},
        {"123", std::nullopt},
        {"123 ", std::nullopt},
        {"123 x", std::nullopt},
        {"123 0", std::nullopt},
        {"123x 5", std::nullopt},
        {"4294967296 5", std::nullopt},
        {"1 99999999999999999999999", std::nullopt},
        {"", std::nullopt},
        {"<html>", std::nullopt},
    };
    for (const auto& [answer, expected] : cases) {
        const std::optional<PublishedClient> client = ParseClientAnswer(answer);
        ASSERT_EQ(client.has_value(), expected.has_value()) << answer;
        if (client) {
            EXPECT_EQ(std::pair(client->crc, client->size), *expected) << answer;
        }
    }
}

TEST(ClientArchitecture, FollowsTheMachine) {
    EXPECT_TRUE(Wants64BitClient(Platform::Architecture::Arm64, 0));
    EXPECT_FALSE(Wants64BitClient(Platform::Architecture::X86, 0));
}

}  // namespace
}  // namespace Launcher
