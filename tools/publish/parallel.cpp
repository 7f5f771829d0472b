#include "parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <map>
#include <mutex>
#include <thread>

namespace Publish {

std::vector<std::string> ForEach(std::size_t count, unsigned threads,
                                 const std::function<void(std::size_t index)>& work) {
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    std::map<std::size_t, std::string> problems;
    const auto run = [&] {
        for (std::size_t index = next++; index < count; index = next++) {
            try {
                work(index);
            } catch (const std::exception& problem) {
                const std::lock_guard guard(mutex);
                problems.emplace(index, problem.what());
            }
        }
    };
    {
        std::vector<std::jthread> running;
        for (std::size_t i = 1; i < std::min<std::size_t>(threads, count); ++i) {
            running.emplace_back(run);
        }
        run();
    }
    std::vector<std::string> texts;
    texts.reserve(problems.size());
    for (auto& [index, text] : problems)
        texts.push_back(std::move(text));
    return texts;
}

}  // namespace Publish
