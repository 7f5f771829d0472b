#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <string>
#include <thread>

#include "input.h"
#include "progress.h"
#include "publisher.h"

namespace {

enum ExitCode { Done = 0, Failed = 1, InputRefused = 2 };

constexpr const char* Footer =
    "What is not given stays as it is published now. Every run makes a release of its own, in "
    "which\n"
    "files that did not change take no room, and then serves it at one instant: let the web "
    "server\n"
    "serve TREE/current. See docs/operating-a-patch-server.md.\n\n"
    "Exit codes: 0 done, or nothing to do; 1 the disk refused or another run holds the tree; 2 "
    "the\n"
    "input cannot be published, and every reason is listed; above 100 wrong arguments.";

void AddOptions(CLI::App& app, Publish::Options& options, bool& rollback, bool& list) {
    app.add_option("TREE", options.tree, "Folder of the published tree; made when it is missing")
        ->required();
    app.add_option("--game", options.game, "Folder of the game's files, as they are to lie in Data")
        ->check(CLI::ExistingDirectory);
    app.add_option("--base", options.base, "Folder of the files that an installation begins with")
        ->check(CLI::ExistingDirectory);
    for (std::size_t i = 0; i < Publish::Programs.size(); ++i) {
        const Publish::Program& program = Publish::Programs[i];
        app.add_option(std::string(program.option), options.programs[i],
                       "File to publish as " + std::string(program.path))
            ->check(CLI::ExistingFile);
    }
    app.add_flag("--dry-run", options.dryRun, "Tell what would change, and write nothing");
    app.add_option("--keep-releases", options.keepReleases, "How many releases stay on the disk")
        ->capture_default_str()
        ->check(CLI::Range(1u, 1000u));
    app.add_option("--keep-removed", options.keepRemovedDays,
                   "Days for which a removed file can still be fetched")
        ->capture_default_str();
    options.threads = std::max(std::thread::hardware_concurrency(), 1u);
    app.add_option("--threads", options.threads, "How many files are read at a time")
        ->capture_default_str()
        ->check(CLI::Range(1u, 256u));
    app.add_flag("--rollback", rollback, "Serve the release before the one that is served now");
    app.add_flag("--list", list, "List the releases; * marks the one that is served");
    app.footer(Footer);
}

const char* Word(Publish::Fate fate) {
    constexpr std::array Words = {"new", "changed", "unchanged", "removed"};
    return Words.at(static_cast<std::size_t>(fate));
}

void PrintReport(const Publish::Report& report, bool dryRun) {
    std::array<std::size_t, 4> counts{};
    for (const auto& [path, fate] : report.fates) {
        ++counts.at(static_cast<std::size_t>(fate));
        if (dryRun && fate != Publish::Fate::Unchanged) {
            std::printf("%-8s %s\n", Word(fate), Publish::Printable(path).c_str());
        }
    }
    std::printf("%zu new, %zu changed, %zu unchanged, %zu removed; %s in all, %s %s\n", counts[0],
                counts[1], counts[2], counts[3], Publish::Megabytes(report.bytesServed).c_str(),
                Publish::Megabytes(report.bytesWritten).c_str(), dryRun ? "to write" : "written");
    if (!report.gameFiles) std::puts("There is no list of game files yet: give --game.");
    const std::string name = report.release ? Publish::ReleaseName(*report.release) : "";
    if (!report.release) {
        std::puts("Nothing differs from what is served: no new release.");
    } else if (dryRun) {
        std::printf("This would be release %s. Nothing was written.\n", name.c_str());
    } else {
        std::printf("Release %s is served.\n", name.c_str());
    }
}

int RollBack(const Publish::Options& options) {
    const Publish::ReleaseStore store(options.tree, Publish::Access::Write);
    const auto releases = store.Releases();
    const auto current = store.Current();
    const auto next = std::ranges::lower_bound(releases, current.value_or(0));
    if (next == releases.begin()) {
        std::fputs("tolvan-publish: there is no earlier release\n", stderr);
        return Failed;
    }
    store.Serve(*std::prev(next));
    std::printf("Release %s is served.\n", Publish::ReleaseName(*std::prev(next)).c_str());
    return Done;
}

int List(const Publish::Options& options) {
    const Publish::ReleaseStore store(options.tree, Publish::Access::Read);
    for (const unsigned release : store.Releases()) {
        std::printf("%s%s\n", Publish::ReleaseName(release).c_str(),
                    release == store.Current() ? " *" : "");
    }
    return Done;
}

int Run(int argc, char** argv) {
    CLI::App app(
        "Makes of a folder of game files, client builds and a launcher the tree that a web "
        "server serves.",
        "tolvan-publish");
    Publish::Options options;
    bool rollback = false;
    bool list = false;
    AddOptions(app, options, rollback, list);
    try {
        app.parse(argc, argv);
        if (rollback) return RollBack(options);
        if (list) return List(options);
        PrintReport(Publish::Run(options), options.dryRun);
        return Done;
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
    } catch (const Publish::Refused& refused) {
        std::fputs("tolvan-publish: this cannot be published:\n", stderr);
        for (const std::string& problem : refused.problems) {
            std::fprintf(stderr, "  %s\n", problem.c_str());
        }
        return InputRefused;
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tolvan-publish: %s\n", error.what());
        return Failed;
    }
}
