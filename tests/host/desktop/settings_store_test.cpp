// SPDX-License-Identifier: MIT
#include "host/linux/desktop/settings_store.h"

#include "tests/host/desktop/temporary_directory.h"
#include "tests/support/fake_desktop/recording_log.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cmath>
#include <csignal>
#include <thread>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

class SettingsStoreTest : public testing::Test {
protected:
    [[nodiscard]] std::size_t errors() const {
        return log_.messages("Settings", LogLevel::error).size();
    }
    [[nodiscard]] SettingsStore open() { return SettingsStore(file_, log_); }
    [[nodiscard]] std::string content() const { return directory_.read("config/settings.json"); }
    void write(std::string_view content) const {
        directory_.write("config/settings.json", content);
    }

    TemporaryDirectory directory_;
    fs::path file_ = directory_.path / "config/settings.json";
    fake::RecordingLog log_;
};

TEST_F(SettingsStoreTest, KeepsValuesAndTypes) {
    for (const std::string json : {"2", "\"true\"", "null", "[true]"}) {
        write("{\"key\": " + json + "}");
        EXPECT_EQ(open().boolean("key"), std::nullopt) << json;
        EXPECT_EQ(open().number("key"), json == "2" ? std::optional(2.0) : std::nullopt) << json;
        EXPECT_EQ(content(), "{\"key\": " + json + "}") << "reading wrote";
    }
    open().setNumber("third", 1.0 / 3);
    open().setNumber("third", std::nan(""));
    open().setString("text", "us(dvorak) \u0439 \"\\\n");
    EXPECT_EQ(open().number("third"), 1.0 / 3);
    EXPECT_EQ(open().string("text"), "us(dvorak) \u0439 \"\\\n");
    EXPECT_EQ(fs::status(file_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(SettingsStoreTest, KeepsADamagedFileAside) {
    const std::string damaged[] = {
        "{\"key\": tr", {"\0\xff\x80", 3}, std::string(3'000'000, '['), "{\"key\": 1e999}"};
    for (const std::string& bad : damaged) {
        write(bad);
        SettingsStore store = open();
        EXPECT_EQ(store.boolean("key"), std::nullopt);
        EXPECT_EQ(content(), bad) << "reading wrote";
        store.setBoolean("key", true);
        EXPECT_EQ(directory_.read("config/settings.json.damaged"), bad);
        EXPECT_EQ(open().boolean("key"), true);
    }
    EXPECT_EQ(errors(), std::size(damaged));
    // One backup, the lock and the file: nothing piles up.
    EXPECT_EQ(std::distance(fs::directory_iterator(file_.parent_path()), {}), 3);
    // What was read before the file was emptied is not lost with it.
    SettingsStore store = open();
    EXPECT_EQ(store.boolean("key"), true);
    write("");
    store.setNumber("another", 2);
    EXPECT_EQ(open().boolean("key"), true);
}

TEST_F(SettingsStoreTest, WritesThroughALinkAndKeepsWhatIsOthers) {
    directory_.write("dotfiles/kelvora.json", "{\"theirs\": [1, null], \"key\": 1}");
    fs::create_directories(file_.parent_path());
    fs::create_symlink("../dotfiles/kelvora.json", file_);
    SettingsStore store = open();
    store.setNumber("key", 7);
    EXPECT_TRUE(fs::is_symlink(file_));
    EXPECT_NE(directory_.read("dotfiles/kelvora.json").find("theirs"), std::string::npos);
    // A change behind the link is seen as well.
    directory_.write("dotfiles/kelvora.json", "{\"key\": 8}");
    EXPECT_EQ(store.number("key"), 8);
}

TEST_F(SettingsStoreTest, CopiesMergeWhatTheyWrite) {
    constexpr int count = 60;
    SettingsStore reader = open();
    const auto write = [this](const std::string& prefix) {
        SettingsStore store = open();
        for (int i = 1; i <= count; ++i)
            store.setNumber(prefix + std::to_string(i), i);
    };
    std::thread other([&] { write("one "); });
    write("two ");
    other.join();
    for (int i = 1; i <= count; ++i)
        for (const char* prefix : {"one ", "two "})
            EXPECT_EQ(reader.number(prefix + std::to_string(i)), i);
}

TEST_F(SettingsStoreTest, FullDiskLosesNothing) {
    SettingsStore store = open();
    store.setString("old", "value");
    const std::string before = content();

    std::signal(SIGXFSZ, SIG_IGN);
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit little{8, usual.rlim_max};
    setrlimit(RLIMIT_FSIZE, &little);
    store.setString("new", "value");
    setrlimit(RLIMIT_FSIZE, &usual);

    EXPECT_EQ(content(), before);
    EXPECT_EQ(errors(), 1U);
    EXPECT_EQ(store.string("new"), "value");
    store.setBoolean("last", true);
    for (const char* key : {"old", "new"})
        EXPECT_EQ(open().string(key), "value") << key;
}

} // namespace
} // namespace kelvora
