// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_input_sources.h"

#include "core/mapping/input_source_switcher.h"
#include "host/linux/xkb/key_layout_data.h"
#include "tests/host/x11/layout_server.h"
#include "tests/support/contracts/input_sources_contract.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kelvora {
namespace {

class X11World : public contract::InputSourcesWorld {
public:
    X11World() { server_.setLayouts("us,ru,de"); }
    InputSources& sources() override { return *sources_; }
    const KeyTranslator& translator() override { return reader_; }

    LayoutServer server_;
    std::unique_ptr<X11InputSources> sources_ = server_.inputSources();
    KeyLayoutReader reader_;
};

} // namespace

namespace contract {
INSTANTIATE_TEST_SUITE_P(X11, InputSourcesContract,
                         testing::Values(InputSourcesFactory{
                             "X11", [] { return std::make_unique<X11World>(); }}),
                         [](const auto& suite) { return suite.param.name; });
} // namespace contract

namespace {

class X11InputSourcesTest : public testing::Test, protected X11World {
protected:
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
}

TEST_F(X11InputSourcesTest, selectionsSurviveAnotherListAndOnlyWhatIsInItIsSelected) {
    server_.setLayouts("us,de,ru");
    ASSERT_TRUE(InputSourceSwitcher::select(*server_.inputSources(), "ru"));
    EXPECT_EQ(currentID(), "ru") << "another program's selection";
    server_.setLayouts("ru,us");
    EXPECT_TRUE(InputSourceSwitcher::select(*sources_, "us"));
    EXPECT_EQ(currentID(), "us");
    EXPECT_FALSE(InputSourceSwitcher::select(*sources_, "de"));
    EXPECT_EQ(currentID(), "us");
    server_.setLayouts("fr"); // the server still reports the second group
    EXPECT_EQ(currentID(), "fr");
    const std::vector<InputSourceChoice> expected{{"fr", "French"}};
    EXPECT_EQ(layouts(), expected);
    EXPECT_TRUE(InputSourceSwitcher::select(*sources_, "fr"));
}

TEST_F(X11InputSourcesTest, thePropertyTellsTheModelAndMayBeDamaged) {
    server_.setLayouts("us,ru", "", "jp106");
    EXPECT_EQ(reader_.layoutType(sources_->keyboardType()), PhysicalLayoutType::jis);
    for (const char* damaged : {"\xFF\xFE,,,,,,,,,,", "one string of several, commas"}) {
        server_.run({"xprop", "-root", "-f", "_XKB_RULES_NAMES", "8s", "-set", "_XKB_RULES_NAMES",
                     damaged});
        const auto list = sources_->enabledSources();
        ASSERT_TRUE(list);
        ASSERT_EQ(list->size(), 2u);
        EXPECT_EQ(list->at(1).id, "ru");
    }
}

TEST_F(X11InputSourcesTest, aPollAsksTheServerOnlyAfterAChange) {
    XcbConnectionPtr own = connectX11(server_.display().c_str());
    xcb_connection_t* const connection = own.get();
    sources_ = X11InputSources::create(std::move(own));
    ASSERT_TRUE(sources_);
    const auto requestsSoFar = [&] { return xcb_no_operation(connection).sequence; };
    for (const std::size_t count : {3U, 2U}) {
        server_.setLayouts(count == 3 ? "us,ru,de" : "us,fr");
        ASSERT_TRUE(real::waitUntil([&] { return layouts().size() == count; })) << count;
        EXPECT_TRUE(sources_->currentSource()); // brings all notices of the change
        layouts();
        const unsigned before = requestsSoFar();
        layouts();
        layouts();
        EXPECT_EQ(requestsSoFar(), before + 1) << count;
    }
    server_.kill();
    EXPECT_TRUE(real::waitUntil([&] { return layouts().empty(); }));
}

TEST_F(X11InputSourcesTest, withoutAServerEverythingIsAbsent) {
    const auto list = sources_->enabledSources();
    ASSERT_TRUE(list);
    server_.kill();
    EXPECT_FALSE(sources_->enabledSources());
    EXPECT_FALSE(sources_->currentSource());
    EXPECT_FALSE(sources_->select(list->at(1)));
    EXPECT_EQ(sources_->keyboardType(), keyboardTypeCode::unknown);
    EXPECT_FALSE(sources_->isConnected());
    sources_->processEvents();
    EXPECT_FALSE(connectX11(server_.display().c_str()));
}

} // namespace
} // namespace kelvora
