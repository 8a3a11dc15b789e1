// SPDX-License-Identifier: MIT
#pragma once

#include "core/text/encoding.h"
#include "host/linux/atspi/atspi_connection.h"
#include "host/linux/atspi/atspi_reference.h"
#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/real_desktop.h"
#include "tests/support/real_desktop/wait_until.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>

namespace kelvora {

/// What an application does wrong when its text is changed.
struct Misdeed {
    enum class Insertion { whole, refused, ignored, cut, altered } insertion{};
    enum class Deletion { whole, ignored, corrected } deletion{};
    /// From where on it answers nothing until `goOn`.
    enum class Stop { never, atInsertion, afterInsertion, atDeletion } stop{};
    bool isTypedInto = false; ///< its user replaces the selection just before
    bool refusesToRead = false;
    bool countsUnits = false;      ///< of UTF-16, and not code points
    const char* toolkit = nullptr; ///< one whose fields have no marks for one line or for many
    std::uint32_t role = 61;       ///< a text, or a password (40)
};

/// An accessibility bus with one application on it, whose one text is "one two three" with "two"
/// selected; it is a paragraph between two others. It is this process's
/// accessibility bus while it exists.
class HostileApplication {
public:
    explicit HostileApplication(Misdeed misdeed = {}) : misdeed_(misdeed) {
        setenv("AT_SPI_BUS_ADDRESS", address_.c_str(), 1);
        static_cast<void>(
            real::waitUntil([this] { return BusConnection::open(address_) != nullptr; }));
        const char* unique = "";
        const auto onCall = [](sd_bus_message* message, void* self, sd_bus_error*) {
            return static_cast<HostileApplication*>(self)->serve(message);
        };
        if (sd_bus_new(&bus_) < 0 || sd_bus_set_address(bus_, address_.c_str()) < 0 ||
            sd_bus_set_bus_client(bus_, 1) < 0 || sd_bus_start(bus_) < 0 ||
            sd_bus_get_unique_name(bus_, &unique) < 0 ||
            sd_bus_add_fallback(bus_, nullptr, "/", onCall, this) < 0)
            std::abort();
        object_ = {unique, "/text"};
        thread_ = std::thread([this] {
            constexpr std::uint64_t shortWait = 2000;
            while (!isEnding_)
                if (sd_bus_process(bus_, nullptr) == 0)
                    sd_bus_wait(bus_, shortWait);
        });
    }
    ~HostileApplication() {
        isEnding_ = true;
        thread_.join();
        sd_bus_close_unref(bus_);
        unsetenv("AT_SPI_BUS_ADDRESS");
    }

    [[nodiscard]] AtspiReference object() const { return object_; }
    /// Does all that it was asked to meanwhile.
    void goOn() { isStopped_ = false; }
    [[nodiscard]] std::u16string text() const {
        const std::lock_guard guard(mutex_);
        return joined(text_);
    }
    void setText(std::u16string_view text) {
        const std::lock_guard guard(mutex_);
        text_ = counted(text);
    }
    /// With the caret at the end. Empty: what is selected is in both neighbours.
    void select(int begin, int end) {
        const std::lock_guard guard(mutex_);
        selectionBegin_ = begin;
        selectionEnd_ = caret_ = end;
    }
    /// Calls that wait for an answer, so far.
    [[nodiscard]] int callCount() const { return callCount_; }

private:
    using Insertion = Misdeed::Insertion;
    using Deletion = Misdeed::Deletion;

    /// One item for each that the application counts.
    [[nodiscard]] std::u32string counted(std::u16string_view text) const {
        std::u32string items;
        for (std::size_t i = 0; i < text.size(); ++i)
            if (!misdeed_.countsUnits && (text[i] & 0xFC00) == 0xD800)
                items += (text[i] - 0xD800U) * 0x400U + text[i + 1] - 0xDC00U + 0x10000U, ++i;
            else
                items += text[i];
        return items;
    }
    [[nodiscard]] static std::u16string joined(const std::u32string& items) {
        std::u16string text;
        for (const char32_t item : items)
            if (item > 0xFFFF)
                text += {static_cast<char16_t>((item - 0x10000) / 0x400 + 0xD800),
                         static_cast<char16_t>((item - 0x10000) % 0x400 + 0xDC00)};
            else
                text += static_cast<char16_t>(item);
        return text;
    }
    void stopAt(Misdeed::Stop place) {
        isStopped_ = misdeed_.stop == place;
        while (isStopped_ && !isEnding_)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    int serve(sd_bus_message* message) {
        if (sd_bus_message_get_expect_reply(message) > 0)
            ++callCount_;
        const std::string member = sd_bus_message_get_member(message);
        if (member == "InsertText" || member == "DeleteText")
            return member == "InsertText" ? insertText(message) : deleteText(message);
        const std::lock_guard guard(mutex_);
        const auto answer = [message](const char* types, auto... values) {
            return sd_bus_reply_method_return(message, types, values...);
        };
        const bool isNeighbour = object_.path != sd_bus_message_get_path(message);
        const bool isSelected = selectionEnd_ > selectionBegin_;
        const bool hasMarks = misdeed_.toolkit == nullptr;
        if (member == "Get") {
            const char* interface = nullptr;
            const char* name = nullptr;
            sd_bus_message_read(message, "ss", &interface, &name);
            const std::string property = name;
            if (property == "ToolkitName")
                return answer("v", "s", hasMarks ? "none known" : misdeed_.toolkit);
            if (property == "Parent")
                return answer("v", "(so)", object_.busName.c_str(), "/");
            return answer("v", "i",
                          property == "CaretOffset" ? caret_ : static_cast<int>(text_.size()));
        }
        if (member == "GetRole")
            return answer("u", hasMarks ? 73U : misdeed_.role); // a paragraph
        if (member == "GetIndexInParent")
            return answer("i", 1);
        if (member == "GetChildAtIndex")
            return answer("(so)", object_.busName.c_str(), "/neighbour");
        if (member == "GetState")
            return answer("au", 2U, 1U << 7U | 1U << 8U | 1U << 12U | (hasMarks ? 1U << 17U : 0U),
                          0U);
        if (member == "GetInterfaces")
            return answer("as", 2, atspi::text, atspi::editableText);
        if (member == "GetApplication")
            return answer("(so)", object_.busName.c_str(), "/");
        if (member == "GetNSelections")
            return answer("i", isNeighbour != isSelected ? 1 : 0);
        if (member == "GetSelection")
            return answer("ii", selectionBegin_, selectionEnd_);
        if (member == "RemoveSelection" || member == "SetCaretOffset") {
            selectionBegin_ = selectionEnd_ = 0;
            return answer("b", 1);
        }
        if (member == "GetText" && misdeed_.refusesToRead)
            return sd_bus_reply_method_errorf(message, "org.example.No", "no");
        if (member == "GetText") {
            int begin = 0;
            int end = 0;
            sd_bus_message_read(message, "ii", &begin, &end);
            begin = std::clamp(begin, 0, static_cast<int>(text_.size()));
            end = std::clamp(end, begin, static_cast<int>(text_.size()));
            return answer("s", toUtf8(joined({text_, static_cast<std::size_t>(begin),
                                              static_cast<std::size_t>(end - begin)}))
                                   .c_str());
        }
        return 0;
    }

    int deleteText(sd_bus_message* message) {
        int begin = 0;
        int end = 0;
        sd_bus_message_read(message, "ii", &begin, &end);
        stopAt(Misdeed::Stop::atDeletion);
        if (misdeed_.deletion != Deletion::ignored || begin != selectionBegin_)
            edit(begin, end, {});
        if (misdeed_.deletion == Deletion::corrected)
            edit(begin, begin, U"#");
        return sd_bus_reply_method_return(message, "b", 1);
    }

    int insertText(sd_bus_message* message) {
        int place = 0;
        const char* utf8 = nullptr;
        sd_bus_message_read(message, "isi", &place, &utf8, nullptr);
        std::u32string added = counted(toUtf16(utf8));
        stopAt(Misdeed::Stop::atInsertion);
        switch (misdeed_.insertion) {
        case Insertion::whole:
            break;
        case Insertion::refused:
            return sd_bus_reply_method_errorf(message, "org.example.No", "no");
        case Insertion::ignored:
            added.clear();
            break;
        case Insertion::cut: // to what its greatest length leaves
            added.resize(2);
            break;
        case Insertion::altered:
            added.assign(added.size(), U'#');
            break;
        }
        if (misdeed_.isTypedInto)
            edit(selectionBegin_, selectionEnd_, U"z");
        edit(place, place, added);
        const int result = sd_bus_reply_method_return(message, "b", 1);
        stopAt(Misdeed::Stop::afterInsertion);
        return result;
    }

    void edit(int begin, int end, const std::u32string& replacement) {
        const std::lock_guard guard(mutex_);
        text_.replace(std::min(static_cast<std::size_t>(begin), text_.size()),
                      static_cast<std::size_t>(end - begin), replacement);
    }

    Misdeed misdeed_;
    real::TemporaryDirectory directory_;
    const std::string address_ = "unix:path=" + (directory_.path() / "bus").string();
    real::ChildProcess daemon_{
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address_},
        {.environment = {{"PATH", "/usr/bin:/bin"}}}};
    AtspiReference object_;
    sd_bus* bus_ = nullptr;
    std::atomic<bool> isStopped_ = false;
    std::atomic<bool> isEnding_ = false;
    std::atomic<int> callCount_ = 0;
    mutable std::mutex mutex_;
    std::u32string text_ = U"one two three";
    int selectionBegin_ = 4;
    int selectionEnd_ = 7;
    int caret_ = 7;
    std::thread thread_;
};

} // namespace kelvora
