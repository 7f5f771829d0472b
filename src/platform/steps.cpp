#include "platform/steps.h"

#include "deployment_values.h"

#if TOLVAN_DEVELOPER_BUILD

#include <cstdlib>
#include <mutex>
#include <span>

#include "platform/files.h"
#include "platform/paths.h"
#include "platform/processes.h"
#include "platform/text.h"

namespace Platform {

namespace {

class Steps {
public:
    Steps() : killAt_(std::atoll(Utf8FromWide(GetEnvironmentText(L"TOLVAN_KILL_AT")).c_str())) {
        const std::wstring log = GetEnvironmentText(L"TOLVAN_STEP_LOG");
        if (log.empty()) return;
        // Without the file the steps are counted all the same.
        (void)log_.Open(log + L"." + std::to_wstring(OwnProcessId()),
                        {.access = AccessWrite, .disposition = Disposition::CreateAlways});
    }

    bool AreCounted() const { return killAt_ != 0 || log_.IsOpen(); }

    void Count(const char* what, const std::wstring& subject) {
        const std::scoped_lock lock(lock_);
        ++count_;
        if (log_.IsOpen()) {
            const std::string line =
                std::to_string(count_) + " " + what + " " + Utf8FromWide(subject) + "\n";
            (void)log_.Write(std::as_bytes(std::span(line)));
        }
        if (count_ == killAt_) EndOwnProcess();
    }

private:
    std::mutex lock_;  ///< guards what follows
    long long count_ = 0;
    const long long killAt_;
    File log_;
};

/// Steps that the counting itself takes are none of the program's.
thread_local bool g_counts = false;

}  // namespace

void CountStep(const char* what, const std::wstring& subject) {
    if (g_counts) return;
    g_counts = true;
    static Steps steps;
    if (steps.AreCounted()) steps.Count(what, subject);
    g_counts = false;
}

}  // namespace Platform

#else

void Platform::CountStep(const char*, const std::wstring&) {}

#endif
