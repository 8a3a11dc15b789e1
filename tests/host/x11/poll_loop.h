// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/event_loop.h"

#include <poll.h>

#include <chrono>
#include <memory>
#include <utility>
#include <vector>

namespace kelvora {

/// A main loop that the test turns itself.
class PollLoop : public EventLoop {
public:
    std::unique_ptr<DescriptorWatch> watchReadable(int descriptor,
                                                   std::function<void()> onReadable) override {
        entries_.push_back(std::make_shared<Entry>(Entry{descriptor, std::move(onReadable)}));
        return std::make_unique<Watch>(entries_.back());
    }

    /// Waits at most `limit` for something to read and serves it.
    void turn(std::chrono::milliseconds limit) {
        std::erase_if(entries_, [](const auto& entry) { return !entry->isWatched; });
        const std::vector<std::shared_ptr<Entry>> entries = entries_;
        std::vector<pollfd> descriptors;
        for (const auto& entry : entries)
            descriptors.push_back({entry->descriptor, POLLIN, 0});
        if (poll(descriptors.data(), descriptors.size(), static_cast<int>(limit.count())) <= 0)
            return;
        for (std::size_t i = 0; i < entries.size(); ++i)
            if (descriptors[i].revents != 0 && entries[i]->isWatched)
                entries[i]->onReadable();
    }

private:
    struct Entry {
        int descriptor;
        std::function<void()> onReadable;
        bool isWatched = true;
    };
    struct Watch : DescriptorWatch {
        explicit Watch(std::shared_ptr<Entry> watched) : entry(std::move(watched)) {}
        ~Watch() override { entry->isWatched = false; }
        std::shared_ptr<Entry> entry;
    };

    std::vector<std::shared_ptr<Entry>> entries_;
};

} // namespace kelvora
