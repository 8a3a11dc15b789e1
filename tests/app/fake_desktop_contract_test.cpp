// SPDX-License-Identifier: MIT
#include "tests/support/contracts/event_poster_contract.h"
#include "tests/support/contracts/event_source_contract.h"
#include "tests/support/contracts/input_sources_contract.h"
#include "tests/support/contracts/pasteboard_contract.h"
#include "tests/support/contracts/workspace_contract.h"
#include "tests/support/fake_desktop/fake_desktop.h"

namespace kelvora::contract {
namespace {

class FakeRig final : public DesktopRig {
public:
    Desktop services() override { return desktop_.services(); }
    void press(KeyCode keyCode) override { desktop_.keyboard.press(keyCode); }
    void release(KeyCode keyCode) override { desktop_.keyboard.release(keyCode); }
    void click() override { desktop_.keyboard.click(EventType::leftMouseDown); }
    void focusOtherEditor() override { desktop_.windows.focus(fake::Windows::otherEditor); }
    std::u16string text() override { return desktop_.windows.text(); }
    std::u16string otherText() override {
        return desktop_.windows.text(fake::Windows::otherEditor);
    }
    void onWorker(const std::function<void()>& work) override {
        desktop_.scheduler.postToWorker(work);
        desktop_.run();
    }
    bool becomes(const std::function<bool()>& condition) override {
        desktop_.run();
        return condition();
    }
    void rest() override { desktop_.run(); }

private:
    fake::FakeDesktop desktop_;
};

const RigFactory rig{"FakeDesktop", [] { return std::make_unique<FakeRig>(); }};

INSTANTIATE_TEST_SUITE_P(Each, EventPosterContract, testing::Values(rig), factoryName);
INSTANTIATE_TEST_SUITE_P(Each, EventSourceContract, testing::Values(rig), factoryName);
INSTANTIATE_TEST_SUITE_P(Each, WorkspaceContract, testing::Values(rig), factoryName);

class FakeSources final : public InputSourcesWorld {
public:
    FakeSources() { desktop_.layouts.enabled.push_back(fake::greekLayout()); }
    InputSources& sources() override { return desktop_.layouts; }
    const KeyTranslator& translator() override { return desktop_.translator; }

private:
    fake::FakeDesktop desktop_;
};

INSTANTIATE_TEST_SUITE_P(Each, InputSourcesContract,
                         testing::Values(InputSourcesFactory{
                             "FakeDesktop", [] { return std::make_unique<FakeSources>(); }}),
                         factoryName);

class FakePasteboard final : public PasteboardRig {
public:
    Pasteboard& pasteboard() override { return pasteboard_; }
    void onWorker(const std::function<void()>& work) override { work(); }
    void copyElsewhere(std::u16string_view text) override { pasteboard_.copyText(text); }
    std::optional<std::u16string> pasteElsewhere() override { return pasteboard_.paste(); }

private:
    fake::Pasteboard pasteboard_;
};

INSTANTIATE_TEST_SUITE_P(Each, PasteboardContract,
                         testing::Values(PasteboardRigFactory{
                             "FakeDesktop", [] { return std::make_unique<FakePasteboard>(); }}),
                         factoryName);

} // namespace
} // namespace kelvora::contract
