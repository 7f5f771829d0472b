#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "platform/error.h"

/// A second process for tests: the helper program (helper_program.cpp), which a test binary carries
/// in itself as a resource: tolvan_resources(my_test ${TOLVAN_HELPER_RESOURCE} ...).
namespace TestSupport {

/// The resource that holds the helper program.
inline constexpr std::uint16_t HelperResource = 60000;

/// The resource that holds the sample game, of a test that was made with
/// ${TOLVAN_SAMPLE_GAME_RESOURCE}.
inline constexpr std::uint16_t SampleGameResource = 60001;

/// Writes the helper program to the path.
void InstallHelper(const std::wstring& path);
void InstallSampleGame(const std::wstring& path);

/// Ends a process as hard as the system can: it runs no more code of its own.
void KillProcess(std::uint32_t processId);

/// A run of the helper program, which is killed at the latest with this object.
class HelperProcess {
public:
    HelperProcess() = default;
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    /// Starts the program at the path, where InstallHelper put it, with its command and the
    /// command's arguments, which the helper program tells. workingFolder may be empty.
    [[nodiscard]] Platform::Error Start(const std::wstring& program,
                                        std::initializer_list<std::wstring> words,
                                        const std::wstring& workingFolder = {});
    std::uint32_t Id() const { return id_; }
    void Kill();
    /// Waits until it has ended. False when it did not in time.
    bool WaitForEnd() const;

private:
    std::uint32_t id_ = 0;
};

}  // namespace TestSupport
