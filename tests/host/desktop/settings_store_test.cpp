// SPDX-License-Identifier: MIT
#include "host/linux/desktop/settings_store.h"

#include "tests/host/desktop/temporary_directory.h"
#include "tests/support/fake_desktop/recording_log.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <limits>
#include <thread>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

class SettingsStoreTest : public testing::Test {
protected:
    [[nodiscard]] fs::path file() const { return directory_.path / "config/settings.json"; }
    [[nodiscard]] std::size_t errors() const {
        return log_.messages("Settings", LogLevel::error).size();
    }
    [[nodiscard]] SettingsStore reopened() { return SettingsStore(file(), log_); }

    TemporaryDirectory directory_;
    fake::RecordingLog log_;
};

/// What each way of reading makes of a value.
std::string readings(UserDefaults& defaults, std::string_view key) {
    const auto boolean = defaults.boolean(key);
    const auto number = defaults.number(key);
    return std::string(!boolean   ? "-"
                       : *boolean ? "true"
                                  : "false") +
           " " + (number ? std::to_string(*number).substr(0, 4) : "-") + " " +
           defaults.string(key).value_or("-");
}

TEST_F(SettingsStoreTest, ReadsByType) {
    const struct {
        std::string_view json;
        std::string_view expected;
    } cases[] = {
        {"true", "true 1.00 -"},
        {"false", "false 0.00 -"},
        {"1", "true 1.00 -"},
        {"0.0", "false 0.00 -"},
        {"0.25", "- 0.25 -"},
        {"2", "- 2.00 -"},
        {"\"0.3\"", "- - 0.3"},
        {"\"true\"", "- - true"},
        {"\"\"", "- - "},
        {"null", "- - -"},
        {"[1]", "- - -"},
        {"{\"x\":1}", "- - -"},
        {"\"\\u0439\"", "- - \u0439"},
    };
    for (const auto& c : cases) {
        const std::string content = "{\"key\": " + std::string(c.json) + "}";
        directory_.write("config/settings.json", content);
        SettingsStore store = reopened();
        EXPECT_EQ(readings(store, "key"), c.expected) << c.json;
        EXPECT_EQ(readings(store, "other"), "- - -") << c.json;
        EXPECT_EQ(directory_.read("config/settings.json"), content) << "reading wrote";
    }
}

TEST_F(SettingsStoreTest, KeepsValuesAndTypes) {
    {
        SettingsStore store = reopened();
        store.setBoolean("off", false);
        store.setNumber("third", 1.0 / 3);
        store.setNumber("third", std::numeric_limits<double>::quiet_NaN());
        store.setNumber("infinite", std::numeric_limits<double>::infinity());
        store.setString("text", "us(dvorak) \u0439 \"\\\n");
        store.setString("malformed", "a\xff\xfe");
    }
    SettingsStore store = reopened();
    EXPECT_EQ(readings(store, "off"), "false 0.00 -");
    EXPECT_EQ(store.number("third"), 1.0 / 3);
    EXPECT_EQ(readings(store, "infinite"), "- - -");
    EXPECT_EQ(store.string("text"), "us(dvorak) \u0439 \"\\\n");
    EXPECT_EQ(store.string("malformed").value_or("").substr(0, 1), "a");
    EXPECT_EQ(fs::status(file()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(file().parent_path()).permissions(), fs::perms::owner_all);
    EXPECT_EQ(errors(), 0U);
}

TEST_F(SettingsStoreTest, KeepsADamagedFileAside) {
    const std::string damaged[] = {
        "{\"key\": tr", std::string("\0\xff\x80", 3), "[1, 2]",
        "junk",         std::string(3'000'000, '['),  "{\"key\": 1e999}"};
    for (const std::string& content : damaged) {
        directory_.write("config/settings.json", content);
        SettingsStore store = reopened();
        EXPECT_EQ(readings(store, "key"), "- - -");
        EXPECT_EQ(directory_.read("config/settings.json"), content) << "reading wrote";
        store.setBoolean("key", true);
        EXPECT_EQ(directory_.read("config/settings.json.damaged"), content);
        SettingsStore again = reopened();
        EXPECT_EQ(readings(again, "key"), "true 1.00 -");
    }
    EXPECT_EQ(errors(), std::size(damaged));
    // One backup, the lock and the file: nothing piles up.
    EXPECT_EQ(std::distance(fs::directory_iterator(file().parent_path()), {}), 3);

    // What was read before the file was damaged is not lost with it.
    SettingsStore store = reopened();
    EXPECT_EQ(readings(store, "key"), "true 1.00 -");
    directory_.write("config/settings.json", "");
    EXPECT_EQ(readings(store, "key"), "true 1.00 -");
    store.setNumber("another", 2);
    SettingsStore again = reopened();
    EXPECT_EQ(readings(again, "key"), "true 1.00 -");
    EXPECT_EQ(directory_.read("config/settings.json.damaged"), "{\"key\": 1e999}");
}

TEST_F(SettingsStoreTest, WritesThroughALink) {
    directory_.write("dotfiles/kelvora.json", "{\"theirs\": [1, null], \"key\": 1}");
    fs::create_directories(file().parent_path());
    fs::create_symlink("../dotfiles/kelvora.json", file());
    SettingsStore store = reopened();
    store.setNumber("key", 7);
    EXPECT_TRUE(fs::is_symlink(file()));
    const std::string content = directory_.read("dotfiles/kelvora.json");
    EXPECT_NE(content.find("theirs"), std::string::npos) << content;
    EXPECT_NE(content.find('7'), std::string::npos) << content;
    // A change behind the link is seen as well.
    directory_.write("dotfiles/kelvora.json", "{\"key\": 8}");
    EXPECT_EQ(store.number("key"), 8);
}

TEST_F(SettingsStoreTest, CopiesMergeWhatTheyWrite) {
    constexpr int count = 60;
    SettingsStore reader = reopened();
    EXPECT_EQ(reader.number("one 1"), std::nullopt);
    {
        SettingsStore one = reopened();
        SettingsStore two = reopened();
        const auto write = [](SettingsStore& store, const std::string& prefix) {
            for (int i = 1; i <= count; ++i)
                store.setNumber(prefix + std::to_string(i), i);
        };
        std::thread other([&] { write(one, "one "); });
        write(two, "two ");
        other.join();
    }
    for (int i = 1; i <= count; ++i) {
        EXPECT_EQ(reader.number("one " + std::to_string(i)), i);
        EXPECT_EQ(reader.number("two " + std::to_string(i)), i);
    }
    fs::remove(file());
    EXPECT_EQ(reader.number("one 1"), std::nullopt);
}

TEST_F(SettingsStoreTest, KeepsWhatCannotBeWritten) {
    const auto expectKept = [this](SettingsStore& store, std::size_t expectedErrors) {
        store.setNumber("kept", 3);
        store.setNumber("kept", 4);
        EXPECT_EQ(store.number("kept"), 4);
        EXPECT_EQ(errors(), expectedErrors);
    };
    {
        SettingsStore store(fs::path(), log_); // no home directory
        expectKept(store, 1);
    }
    const std::size_t already = errors();
    {
        directory_.write("plain", "");
        SettingsStore store(directory_.path / "plain/settings.json", log_);
        expectKept(store, already + 1);
        EXPECT_EQ(directory_.read("plain"), "");
    }
    fs::create_directories(file());
    {
        SettingsStore store = reopened();
        expectKept(store, errors() + 1);
        EXPECT_TRUE(fs::is_directory(file()));
        fs::remove(file());
        // The way is free again: the program's end is the last opportunity.
    }
    EXPECT_EQ(reopened().number("kept"), 4);
}

TEST_F(SettingsStoreTest, FullDiskLosesNothing) {
    SettingsStore store = reopened();
    store.setString("old", "value");
    const std::string before = directory_.read("config/settings.json");

    std::signal(SIGXFSZ, SIG_IGN);
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit little{8, usual.rlim_max};
    setrlimit(RLIMIT_FSIZE, &little);
    store.setString("new", "value");
    store.setString("newer", "value");
    setrlimit(RLIMIT_FSIZE, &usual);

    EXPECT_EQ(directory_.read("config/settings.json"), before);
    EXPECT_EQ(std::distance(fs::directory_iterator(file().parent_path()), {}), 2);
    EXPECT_EQ(errors(), 1U);
    EXPECT_EQ(store.string("new"), "value");
    store.setBoolean("last", true);
    SettingsStore again = reopened();
    for (const char* key : {"old", "new", "newer"})
        EXPECT_EQ(again.string(key), "value") << key;
}

} // namespace
} // namespace kelvora
