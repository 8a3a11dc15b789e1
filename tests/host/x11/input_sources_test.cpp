// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_input_sources.h"

#include "core/mapping/input_source_switcher.h"
#include "host/linux/xkb/key_layout_data.h"
#include "tests/host/x11/layout_server.h"
#include "tests/support/contracts/input_sources_contract.h"

#include <fstream>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <vector>

namespace kelvora {
namespace {

constexpr const char* customKeymap = R"keymap(xkb_keymap {
    xkb_keycodes { include "evdev+aliases(qwerty)" };
    xkb_types { include "complete" };
    xkb_compat { include "complete" };
    xkb_symbols {
        include "pc+us+ru:2+inet(evdev)"
        name[Group2] = "My Russian";
        key <AC01> { [ x, X ], [ Cyrillic_io, Cyrillic_IO ] };
    };
};
)keymap";

class X11World final : public contracts::InputSourcesWorld {
public:
    X11World() {
        server_.setLayouts("us,ru,de");
        sources_ = server_.inputSources();
    }
    InputSources& sources() override { return *sources_; }
    const KeyTranslator& translator() override { return reader_; }

private:
    LayoutServer server_;
    std::unique_ptr<X11InputSources> sources_;
    KeyLayoutReader reader_;
};

} // namespace

namespace contracts {
INSTANTIATE_TEST_SUITE_P(X11, InputSourcesContract,
                         testing::Values(InputSourcesFactory{
                             "X11", [] { return std::make_unique<X11World>(); }}),
                         [](const auto& suite) { return suite.param.name; });
} // namespace contracts

namespace {

class X11InputSourcesTest : public testing::Test {
protected:
    LayoutServer server_;
    std::unique_ptr<X11InputSources> sources_ = server_.inputSources();
    KeyLayoutReader reader_;

    void SetUp() override { ASSERT_TRUE(sources_); }

    std::u16string convert(const char* firstID, const char* secondID, std::u16string_view text) {
        const auto mapping = InputSourceSwitcher::mapping(*sources_, reader_, firstID, secondID);
        return mapping ? mapping->convert(text, 0) : u"<no mapping>";
    }
    std::vector<InputSourceChoice> layouts() {
        return InputSourceSwitcher::enabledLayouts(*sources_);
    }
    std::string currentID() { return InputSourceSwitcher::currentID(*sources_).value_or("<none>"); }
};

TEST_F(X11InputSourcesTest, aCallRightAfterAChangeSeesTheNewLayouts) {
    for (int round = 0; round < 5; ++round) {
        server_.setLayouts("us,ru");
        EXPECT_EQ(convert("us", "ru", u"ghbdtn"), u"привет");
        EXPECT_EQ(convert("us", "ru(phonetic)", u"ghbdtn"), u"<no mapping>");
        server_.setLayouts("us,ru", ",phonetic");
        EXPECT_EQ(convert("us", "ru", u"ghbdtn"), u"<no mapping>");
        EXPECT_EQ(convert("us", "ru(phonetic)", u"priwet"), u"привет");
    }
    const std::vector<InputSourceChoice> expected{{"us", "English (US)"},
                                                  {"ru(phonetic)", "Russian (phonetic)"}};
    EXPECT_EQ(layouts(), expected);
}

TEST_F(X11InputSourcesTest, identifiersDoNotDependOnThePlaceInTheList) {
    server_.setLayouts("us,de,ru");
    EXPECT_TRUE(InputSourceSwitcher::select(*sources_, "ru"));
    EXPECT_EQ(currentID(), "ru");
    server_.setLayouts("ru,us");
    EXPECT_TRUE(InputSourceSwitcher::select(*sources_, "us"));
    EXPECT_EQ(currentID(), "us");
    EXPECT_FALSE(InputSourceSwitcher::select(*sources_, "de"));
    EXPECT_EQ(currentID(), "us");
    EXPECT_TRUE(InputSourceSwitcher::select(*sources_, "ru"));
    EXPECT_EQ(currentID(), "ru");
}

TEST_F(X11InputSourcesTest, anotherProgramsSelectionIsSeenAtOnce) {
    server_.setLayouts("us,ru,de");
    const auto other = server_.inputSources();
    for (const char* id : {"de", "ru", "us", "ru"}) {
        ASSERT_TRUE(InputSourceSwitcher::select(*other, id));
        EXPECT_EQ(currentID(), id);
    }
}

TEST_F(X11InputSourcesTest, aShorterListLeavesNoDanglingSelection) {
    server_.setLayouts("us,ru,de");
    ASSERT_TRUE(InputSourceSwitcher::select(*sources_, "de"));
    server_.setLayouts("fr");
    const std::vector<InputSourceChoice> expected{{"fr", "French"}};
    EXPECT_EQ(layouts(), expected);
    EXPECT_EQ(currentID(), "fr");
    EXPECT_TRUE(InputSourceSwitcher::select(*sources_, "fr"));
    EXPECT_EQ(convert("fr", "fr", u"azerty"), u"azerty");
}

TEST_F(X11InputSourcesTest, theModelTellsTheShapeOfTheKeyboard) {
    struct {
        const char* model;
        PhysicalLayoutType type;
    } const cases[] = {{"pc105", PhysicalLayoutType::iso},
                       {"jp106", PhysicalLayoutType::jis},
                       {"pc104", PhysicalLayoutType::ansi}};
    for (const auto& c : cases) {
        server_.setLayouts("us", "", c.model);
        EXPECT_EQ(reader_.layoutType(sources_->keyboardType()), c.type) << c.model;
    }
}

TEST_F(X11InputSourcesTest, aKeymapLoadedPastTheRulesIsNamedByItsOwnNames) {
    server_.setLayouts("us");
    const std::string file = testing::TempDir() + "/custom" + server_.display().substr(1) + ".xkb";
    std::ofstream(file) << customKeymap;
    server_.run({"xkbcomp", "-w0", file, server_.display()});
    const std::vector<InputSourceChoice> expected{{"us", "English (US)"},
                                                  {"My Russian", "My Russian"}};
    EXPECT_EQ(layouts(), expected);
    EXPECT_EQ(convert("us", "My Russian", u"xs"), u"ёы");
    EXPECT_TRUE(InputSourceSwitcher::select(*sources_, "My Russian"));
    EXPECT_EQ(currentID(), "My Russian");
}

TEST_F(X11InputSourcesTest, aDamagedPropertyLeavesTheKeymapsNames) {
    server_.setLayouts("us,ru");
    server_.run({"xprop", "-root", "-f", "_XKB_RULES_NAMES", "8s", "-set", "_XKB_RULES_NAMES",
                 "\xFF\xFE,,,,,,,,,,"});
    ASSERT_EQ(layouts().size(), 2u);
    EXPECT_EQ(layouts()[1].id, "ru");
    server_.run({"xprop", "-root", "-remove", "_XKB_RULES_NAMES"});
    EXPECT_EQ(layouts()[1].id, "ru");
    server_.run({"xprop", "-root", "-f", "_XKB_RULES_NAMES", "8s", "-set", "_XKB_RULES_NAMES",
                 "one string of several, commas"});
    EXPECT_EQ(layouts()[1].id, "ru");
}

TEST_F(X11InputSourcesTest, changesAreAnnouncedToTheLoop) {
    server_.setLayouts("us,ru");
    ASSERT_EQ(layouts().size(), 2u);
    int announced = 0;
    sources_->setOnLayoutsChanged([&] { ++announced; });
    ASSERT_TRUE(InputSourceSwitcher::select(*sources_, "ru"));
    sources_->processEvents();
    EXPECT_EQ(announced, 0) << "the list is the same";
    server_.setLayouts("us,ru,de");
    pollfd readable{sources_->fileDescriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&readable, 1, 10'000), 1);
    EXPECT_TRUE(real::waitUntil([&] {
        sources_->processEvents();
        return announced > 0;
    }));
}

TEST_F(X11InputSourcesTest, withoutAServerEverythingIsAbsent) {
    server_.setLayouts("us,ru");
    const auto list = sources_->enabledSources();
    ASSERT_TRUE(list);
    server_.kill();
    EXPECT_FALSE(sources_->enabledSources());
    EXPECT_FALSE(sources_->currentSource());
    EXPECT_FALSE(sources_->select(list->at(1)));
    EXPECT_EQ(sources_->keyboardType(), keyboardTypeCode::unknown);
    EXPECT_FALSE(sources_->isConnected());
    sources_->processEvents();
    EXPECT_TRUE(layouts().empty());
    EXPECT_EQ(convert("us", "ru", u"a"), u"<no mapping>");
    EXPECT_FALSE(connectX11(server_.display().c_str()));
}

} // namespace
} // namespace kelvora
