// SPDX-License-Identifier: MIT
#include "host/linux/secure_entry_gate.h"

#include <string.h>

#include <type_traits>
#include <utility>

namespace kelvora {
namespace {

/// A report may overtake the window change that it is about, by less than this.
constexpr std::chrono::milliseconds longestLead{100};

bool isMouseDown(const InputEvent& event) {
    return event.type == EventType::leftMouseDown || event.type == EventType::rightMouseDown ||
           event.type == EventType::otherMouseDown;
}

/// Whatever is not plain text may: Tab, Return, an arrow, a shortcut, a function key.
bool mayMoveFocus(const InputEvent& event) {
    if (isMouseDown(event))
        return true;
    if (event.type != EventType::keyDown || event.keyCode == keyCode::backspace)
        return false;
    const std::u16string_view text = event.text.view();
    return (event.flags & (eventFlag::control | eventFlag::command)) != 0 || text.empty() ||
           text.front() < u' ' || text.front() == u'\x7F';
}

void wipe(InputEvent& event) {
    static_assert(std::is_trivially_copyable_v<InputEvent>);
    explicit_bzero(&event, sizeof event);
}

} // namespace

SecureEntryGate::SecureEntryGate(SecureEntry* secureEntry, Outputs outputs)
    : secureEntry_(secureEntry), outputs_(std::move(outputs)) {
    if (secureEntry_ == nullptr)
        return;
    secrecy_ = secureEntry_->secrecy();
    secureEntry_->add(*this);
}

SecureEntryGate::~SecureEntryGate() {
    if (secureEntry_ != nullptr)
        secureEntry_->remove(*this);
    clear();
}

void SecureEntryGate::handleEvent(const InputEvent& event, Time now) {
    if (secureEntry_ != nullptr)
        secureEntry_->fetch();
    if (secrecy_ == FocusSecrecy::untold) {
        outputs_.deliver(event);
        return;
    }
    releaseDue(now);
    if (now < holdEnd_) {
        hold(event);
    } else {
        InputEvent copy = event;
        decide(copy, epoch_, now);
    }
    // The program's own keys correct a text and leave the focus where it is.
    if (event.sourceUserData != 0)
        return;
    if (event.type == EventType::keyDown || isMouseDown(event))
        lastAct_ = now;
    if (mayMoveFocus(event))
        beginEpoch(now);
}

void SecureEntryGate::handleWindowChange(Time now) {
    clear();
    outputs_.onFocusChanged();
    if (secrecy_ == FocusSecrecy::untold)
        return;
    const bool isConfirmed = toldAt_ && now - *toldAt_ < longestLead;
    if (secrecy_ == FocusSecrecy::secret && !isConfirmed && !secretEnd_)
        secretEnd_ = now + longestSilence;
    lastAct_ = now;
    beginEpoch(now);
}

void SecureEntryGate::handleFence(Time now) {
    releaseDue(now);
    if (held_.empty())
        outputs_.onFencePassed();
    else
        hold(Fence{});
}

void SecureEntryGate::handleTimer(Time now) {
    if (secureEntry_ != nullptr)
        secureEntry_->fetch();
    releaseDue(now);
}

void SecureEntryGate::clear() {
    for (Held& held : std::exchange(held_, {})) {
        if (InputEvent* event = std::get_if<InputEvent>(&held.item))
            wipe(*event);
        else
            outputs_.onFencePassed();
    }
}

void SecureEntryGate::onFocusReport(const FocusReport& report, Time now) {
    const FocusSecrecy before = std::exchange(secrecy_, report.secrecy);
    toldAt_ = now;
    secretEnd_.reset();
    // What is held back from before the last move is dropped even if the focus has gone on since.
    if (secrecy_ == FocusSecrecy::secret)
        lastSecretEpoch_ = epoch_ - 1;
    const bool isSecretChange =
        (before == FocusSecrecy::secret) != (secrecy_ == FocusSecrecy::secret);
    const bool isUnexpected = report.isOtherText && (!lastAct_ || now - *lastAct_ > longestEffect);
    if (isSecretChange || isUnexpected)
        outputs_.onFocusChanged();
    if (secrecy_ == FocusSecrecy::untold) {
        if (before == FocusSecrecy::secret)
            clear();
        holdEnd_ = now;
        releaseDue(Time::max());
    }
}

void SecureEntryGate::beginEpoch(Time now) {
    if (secrecy_ == FocusSecrecy::secret)
        lastSecretEpoch_ = epoch_;
    ++epoch_;
    holdEnd_ = now + longestHold;
}

void SecureEntryGate::hold(std::variant<InputEvent, Fence> item) {
    held_.push_back({std::move(item), epoch_, holdEnd_});
    if (held_.size() == 1)
        outputs_.setTimer(holdEnd_);
}

void SecureEntryGate::releaseDue(Time now) {
    if (held_.empty())
        return;
    while (!held_.empty() && held_.front().end <= now) {
        Held held = held_.front();
        if (InputEvent* event = std::get_if<InputEvent>(&held_.front().item))
            wipe(*event);
        held_.pop_front();
        if (InputEvent* event = std::get_if<InputEvent>(&held.item))
            decide(*event, held.epoch, now);
        else
            outputs_.onFencePassed();
    }
    if (!held_.empty())
        outputs_.setTimer(held_.front().end);
}

void SecureEntryGate::decide(InputEvent& event, Epoch epoch, Time now) {
    const bool isTyping = event.type == EventType::keyDown && event.sourceUserData == 0;
    if (isSecret(epoch, now)) {
        if (isTyping)
            incompleteEpoch_ = epoch;
    } else {
        if (isTyping && epoch == incompleteEpoch_)
            event.text = {};
        outputs_.deliver(event);
    }
    wipe(event);
}

bool SecureEntryGate::isSecret(Epoch epoch, Time now) const {
    if (epoch < epoch_ && epoch <= lastSecretEpoch_)
        return true;
    return secrecy_ == FocusSecrecy::secret && !(secretEnd_ && now >= *secretEnd_);
}

} // namespace kelvora
