#include "support/helper_process.h"

#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/processes.h"
#include "platform/resources.h"
#include "support/test_files.h"

namespace TestSupport {

using namespace Platform;

namespace {

void InstallProgram(std::uint16_t resource, const std::wstring& path) {
    const std::span<const std::byte> program = FindOwnResource(resource);
    ASSERT_FALSE(program.empty());
    File file;
    ASSERT_EQ(file.Open(path, {.access = AccessWrite, .disposition = Disposition::CreateAlways}),
              Error::None);
    ASSERT_EQ(file.Write(program), Error::None);
}

}  // namespace

void InstallHelper(const std::wstring& path) {
    InstallProgram(HelperResource, path);
}

void InstallSampleGame(const std::wstring& path) {
    InstallProgram(SampleGameResource, path);
}

HelperProcess::~HelperProcess() {
    Kill();
}

Error HelperProcess::Start(const std::wstring& program, std::initializer_list<std::wstring> words,
                           const std::wstring& workingFolder) {
    Kill();
    std::wstring line = L'"' + program + L"\" ";
    for (const std::wstring& word : words) {
        if (&word != words.begin()) line += L'|';
        line += word;
    }
    return StartProcess({program, line, workingFolder}, id_);
}

void HelperProcess::Kill() {
    if (id_ == 0 || HasProcessEnded(id_)) return;
    KillProcess(id_);
    EXPECT_TRUE(WaitForEnd());
}

bool HelperProcess::WaitForEnd() const {
    return WaitUntil([this] { return HasProcessEnded(id_); });
}

}  // namespace TestSupport
