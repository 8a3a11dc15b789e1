// SPDX-License-Identifier: MIT
#include "tests/host/atspi/hostile_application.h"

#include "core/text/encoding.h"
#include "host/linux/atspi/atspi_connection.h"
#include "tests/support/real_desktop/wait_until.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstdlib>
#include <future>
#include <utility>

namespace kelvora {
namespace {

constexpr std::uint32_t textRole = 61;
constexpr std::uint32_t paragraphRole = 73;
constexpr int halvingEnd = 10'000;

std::string encoded(const std::u32string& text) {
    std::u16string units;
    for (const char32_t scalar : text)
        units.push_back(static_cast<char16_t>(scalar)); // nothing beyond U+FFFF is used
    return toUtf8(units);
}

std::u32string decoded(const std::string& utf8) {
    const std::u16string units = toUtf16(utf8);
    return {units.begin(), units.end()};
}

} // namespace

HostileApplication::HostileApplication(Misdeed misdeed) : misdeed_(misdeed) {
    const std::string socket = directory_.path() / "bus";
    const std::string address = "unix:path=" + socket;
    daemon_ = std::make_unique<real::ChildProcess>(
        std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                 "--address=" + address},
        real::ChildProcess::Options{.environment = {{"PATH", "/usr/bin:/bin"}}});
    setenv("AT_SPI_BUS_ADDRESS", address.c_str(), 1);
    static_cast<void>(real::waitUntil([&] { return BusConnection::open(address) != nullptr; }));
    std::promise<std::string> name;
    thread_ = std::thread([this, address, &name] {
        const char* unique = "";
        if (sd_bus_new(&bus_) < 0 || sd_bus_set_address(bus_, address.c_str()) < 0 ||
            sd_bus_set_bus_client(bus_, 1) < 0 || sd_bus_start(bus_) < 0 ||
            sd_bus_get_unique_name(bus_, &unique) < 0 ||
            sd_bus_add_fallback(
                bus_, nullptr, "/",
                [](sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
                    return static_cast<HostileApplication*>(self)->serve(message);
                },
                this) < 0)
            std::abort();
        name.set_value(unique);
        run();
    });
    object_ = {name.get_future().get(), "/text"};
}

HostileApplication::~HostileApplication() {
    isEnding_ = true;
    thread_.join();
    sd_bus_close_unref(bus_);
    unsetenv("AT_SPI_BUS_ADDRESS");
}

std::u32string HostileApplication::text() const {
    const std::lock_guard guard(mutex_);
    return text_;
}

void HostileApplication::setText(std::u32string text) {
    const std::lock_guard guard(mutex_);
    text_ = std::move(text);
}

void HostileApplication::select(int begin, int end) {
    const std::lock_guard guard(mutex_);
    selectionBegin_ = begin;
    selectionEnd_ = caret_ = end;
    isSelectedAround_ = begin == end;
}

void HostileApplication::run() {
    constexpr std::uint64_t shortWait = 2000;
    while (!isEnding_) {
        if (sd_bus_process(bus_, nullptr) == 0)
            sd_bus_wait(bus_, shortWait);
    }
}

void HostileApplication::stop() {
    isStopped_ = true;
    while (isStopped_ && !isEnding_)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

int HostileApplication::serve(sd_bus_message* message) {
    if (sd_bus_message_get_expect_reply(message) > 0)
        ++callCount_;
    const std::string member = sd_bus_message_get_member(message);
    if (member == "InsertText" || member == "DeleteText")
        return edit(message, member == "InsertText");
    const std::lock_guard guard(mutex_);
    const bool isNeighbour = object_.path != sd_bus_message_get_path(message);
    const bool hasMarks = misdeed_ < Misdeed::hasNoMarks;
    if (member == "Get") {
        const char* interface = nullptr;
        const char* name = nullptr;
        sd_bus_message_read(message, "ss", &interface, &name);
        const std::string property = name;
        if (property == "ToolkitName")
            return sd_bus_reply_method_return(message, "v", "s", hasMarks ? "none known" : "GTK");
        if (property == "Parent")
            return sd_bus_reply_method_return(message, "v", "(so)", object_.busName.c_str(), "/");
        return sd_bus_reply_method_return(
            message, "v", "i", property == "CaretOffset" ? caret_ : static_cast<int>(text_.size()));
    }
    if (member == "GetRole")
        return sd_bus_reply_method_return(message, "u", hasMarks ? paragraphRole : textRole);
    if (member == "GetIndexInParent")
        return sd_bus_reply_method_return(message, "i", 1);
    if (member == "GetChildAtIndex")
        return sd_bus_reply_method_return(message, "(so)", object_.busName.c_str(), "/neighbour");
    if (member == "GetState")
        return sd_bus_reply_method_return(
            message, "au", 2U, 1U << 7U | 1U << 8U | 1U << 12U | (hasMarks ? 1U << 17U : 0U), 0U);
    if (member == "GetInterfaces")
        return sd_bus_reply_method_return(message, "as", 2, atspi::text, atspi::editableText);
    if (member == "GetApplication")
        return sd_bus_reply_method_return(message, "(so)", object_.busName.c_str(), "/");
    if (member == "GetNSelections")
        return sd_bus_reply_method_return(
            message, "i",
            isNeighbour ? isSelectedAround_ : static_cast<int>(selectionEnd_ > selectionBegin_));
    if (member == "GetSelection")
        return sd_bus_reply_method_return(message, "ii", selectionBegin_, selectionEnd_);
    if (member == "RemoveSelection" || member == "SetCaretOffset") {
        selectionBegin_ = selectionEnd_ = 0;
        if (member == "SetCaretOffset")
            sd_bus_message_read(message, "i", &caret_);
        return sd_bus_reply_method_return(message, "b", 1);
    }
    if (member == "GetText") {
        int begin = 0;
        int end = 0;
        sd_bus_message_read(message, "ii", &begin, &end);
        if (misdeed_ == Misdeed::refusesToRead ||
            (misdeed_ == Misdeed::refusesHalves && end == halvingEnd))
            return sd_bus_reply_method_errorf(message, "org.example.No", "no");
        const auto size = static_cast<int>(text_.size());
        begin = std::clamp(begin, 0, size);
        end = std::clamp(end, begin, size);
        const std::string part = encoded(
            text_.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin)));
        return sd_bus_reply_method_return(message, "s", part.c_str());
    }
    return 0;
}

int HostileApplication::edit(sd_bus_message* message, bool isInsertion) {
    int first = 0;
    if (!isInsertion) {
        int end = 0;
        sd_bus_message_read(message, "ii", &first, &end);
        if (misdeed_ == Misdeed::stopsAtDeletion)
            stop();
        if (misdeed_ != Misdeed::ignoresDeletion || first != selectionBegin_)
            erase(first, end);
        if (misdeed_ == Misdeed::correctsAtDeletion)
            insert(first, U"#");
        return sd_bus_reply_method_return(message, "b", 1);
    }
    const char* utf8 = nullptr;
    int bytes = 0;
    sd_bus_message_read(message, "isi", &first, &utf8, &bytes);
    std::u32string added = decoded(std::string(utf8, static_cast<std::size_t>(bytes)));
    switch (misdeed_) {
    case Misdeed::refusesInsertion:
        return sd_bus_reply_method_errorf(message, "org.example.No", "no");
    case Misdeed::ignoresInsertion:
        added.clear();
        break;
    case Misdeed::cutsInsertion:
        added.resize(2);
        break;
    case Misdeed::padsInsertion:
        added.push_back(U'#');
        break;
    case Misdeed::altersInsertion:
        added.assign(added.size(), U'#');
        break;
    case Misdeed::stopsAtInsertion:
        stop();
        break;
    case Misdeed::stopsAndRefuses:
        stop();
        return sd_bus_reply_method_errorf(message, "org.example.No", "no");
    case Misdeed::stopsAndCuts:
        stop();
        added.resize(2);
        break;
    case Misdeed::isTypedInto:
        erase(selectionBegin_, selectionEnd_);
        insert(selectionBegin_, U"z");
        break;
    case Misdeed::none:
    case Misdeed::ignoresDeletion:
    case Misdeed::correctsAtDeletion:
    case Misdeed::hasNoMarks:
    case Misdeed::refusesHalves:
    case Misdeed::refusesToRead:
    case Misdeed::stopsAfterInsertion:
    case Misdeed::stopsAtDeletion:
        break;
    }
    insert(first, added);
    const int result = sd_bus_reply_method_return(message, "b", 1);
    if (misdeed_ == Misdeed::stopsAfterInsertion)
        stop();
    return result;
}

void HostileApplication::insert(int position, std::u32string text) {
    const std::lock_guard guard(mutex_);
    text_.insert(std::min(static_cast<std::size_t>(position), text_.size()), text);
}

void HostileApplication::erase(int begin, int end) {
    const std::lock_guard guard(mutex_);
    const std::size_t from = std::min(static_cast<std::size_t>(begin), text_.size());
    text_.erase(from, static_cast<std::size_t>(end - begin));
}

} // namespace kelvora
