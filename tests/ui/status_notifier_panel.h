// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

// NOLINTBEGIN(bugprone-reserved-identifier): the names that their own headers declare
typedef struct _GDBusConnection GDBusConnection;
typedef struct _GVariant GVariant;
// NOLINTEND(bugprone-reserved-identifier)

namespace kelvora::real {

/// A panel that shows status notifier items, and keeps their registry, on a session bus. It answers
/// while one of its functions runs.
class StatusNotifierPanel {
public:
    /// Aborts the test program when the bus or the name is not to be had.
    explicit StatusNotifierPanel(const std::string& busAddress);
    ~StatusNotifierPanel();
    StatusNotifierPanel(const StatusNotifierPanel&) = delete;
    StatusNotifierPanel& operator=(const StatusNotifierPanel&) = delete;

    /// Waits until an item has registered; the functions below are about it.
    [[nodiscard]] bool waitForItem();
    [[nodiscard]] std::string title();
    /// How many sizes of its icon it offers.
    [[nodiscard]] std::size_t iconCount();
    /// Its menu: "Title", "[x] Title" or "[ ] Title" for items with a check mark, "(Title)" for
    /// disabled ones, "-" for a separator; then the keys, as in "Quit Control+Q".
    [[nodiscard]] std::vector<std::string> menu();
    /// Chooses the entry that `menu` shows as this.
    void choose(const std::string& text);

private:
    struct Unref {
        void operator()(GVariant* variant) const;
    };
    using Variant = std::unique_ptr<GVariant, Unref>;
    struct Entry {
        int id;
        std::string text;
    };

    [[nodiscard]] std::vector<Entry> entries();
    [[nodiscard]] Variant call(const char* path, const char* interface, const char* method,
                               GVariant* arguments);
    [[nodiscard]] Variant callMenu(const char* method, GVariant* arguments);
    [[nodiscard]] Variant property(const char* name);

    GDBusConnection* connection_ = nullptr;
    std::string item_; ///< the bus name that has registered
};

} // namespace kelvora::real
