// SPDX-License-Identifier: MIT
#include "host/linux/secure_entry_gate.h"

#include <algorithm>
#include <cstring>
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

bool isText(const InputEvent& event) {
    const std::u16string_view text = event.text.view();
    return event.type == EventType::keyDown &&
           (event.composition == Composition::underWay ||
            (!text.empty() && text.front() >= u' ' && text.front() != u'\x7F'));
}

void wipe(InputEvent& event) {
    static_assert(std::is_trivially_copyable_v<InputEvent>);
    explicit_bzero(&event, sizeof event);
}

} // namespace

bool mayMoveFocus(const InputEvent& event) {
    if (isMouseDown(event))
        return true;
    if (event.type != EventType::keyDown || event.keyCode == keyCode::backspace)
        return false;
    return (event.flags & (eventFlag::control | eventFlag::command)) != 0 || !isText(event);
}

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
    lastAct_ = now;
    if (secrecy_ == FocusSecrecy::untold) {
        if (!isTextRequired_)
            outputs_.deliver(event);
        return;
    }
    releaseDue(now);
    const Time end = isText(event) ? textHoldEnd_ : holdEnd_;
    if (!held_.empty() || now < releaseTime(end)) {
        hold(event, end);
    } else {
        InputEvent copy = event;
        decide(copy, epoch_, now);
    }
    // The program's own keys correct a text and leave the focus where it is.
    if (event.sourceUserData == 0 && mayMoveFocus(event))
        beginEpoch(now);
}

void SecureEntryGate::handleWindowChange(Time now) {
    windowChangedAt_ = now;
    loseKeyboard(FocusChange::keysSeen, now);
    if (secrecy_ == FocusSecrecy::secret && secureEntry_ != nullptr)
        secureEntry_->confirm();
}

void SecureEntryGate::handleGrab(Time now) {
    loseKeyboard(FocusChange::keysMissed, now);
}

void SecureEntryGate::loseKeyboard(FocusChange change, Time now) {
    const std::size_t held = held_.size();
    const std::vector<std::uint8_t> fences = dropHeld();
    // Whoever waits for a fence must find the change told already.
    outputs_.onFocusChanged(held > fences.size() ? FocusChange::keysMissed : change);
    for (const std::uint8_t fence : fences)
        outputs_.onFencePassed(fence);
    lastAct_ = now;
    if (secrecy_ != FocusSecrecy::untold)
        beginEpoch(now);
}

void SecureEntryGate::handleFocusClient(std::uint32_t client, Time now) {
    const std::uint32_t before = std::exchange(focusClient_, client);
    if (before == client)
        return;
    if (secretEnd_) {
        if (client == secretClient_)
            secretEnd_.reset();
        return;
    }
    if (before == 0)
        return;
    const bool isConfirmed =
        toldAt_ && windowChangedAt_ && *windowChangedAt_ - *toldAt_ < longestLead;
    if (isWithheld() && !isConfirmed) {
        secretEnd_ = now + longestSilence;
        secretClient_ = before;
    }
}

void SecureEntryGate::handleFence(std::uint8_t fence, Time now) {
    releaseDue(now);
    if (held_.empty())
        outputs_.onFencePassed(fence);
    else
        hold(Fence{fence}, holdEnd_);
}

void SecureEntryGate::handleTimer(Time now) {
    if (secureEntry_ != nullptr)
        secureEntry_->fetch();
    releaseDue(now);
}

void SecureEntryGate::clear() {
    for (const std::uint8_t fence : dropHeld())
        outputs_.onFencePassed(fence);
}

std::vector<std::uint8_t> SecureEntryGate::dropHeld() {
    std::vector<std::uint8_t> fences;
    for (Held& held : held_) {
        if (InputEvent* event = std::get_if<InputEvent>(&held.item))
            wipe(*event);
        else
            fences.push_back(std::get<Fence>(held.item).number);
    }
    held_.clear();
    return fences;
}

void SecureEntryGate::onFocusReport(const FocusReport& report, Time now) {
    const FocusSecrecy before = std::exchange(secrecy_, report.secrecy);
    isText_ = report.isText;
    toldAt_ = now;
    secretEnd_.reset();
    if (secrecy_ == FocusSecrecy::pending && before != FocusSecrecy::pending) {
        pendingEnd_ = now + longestPending;
        isPendingUnexpected_ = isLongAfterAct(now);
    }
    // What is held back from before the last move is dropped even if the focus has gone on since.
    if (secrecy_ == FocusSecrecy::secret)
        lastSecretEpoch_ = epoch_ - 1;
    const bool isSecretChange =
        (before == FocusSecrecy::secret) != (secrecy_ == FocusSecrecy::secret);
    const bool isUnexpected =
        report.isOtherText &&
        (before == FocusSecrecy::pending ? isPendingUnexpected_ : isLongAfterAct(now));
    if (isSecretChange || isUnexpected)
        outputs_.onFocusChanged(isSecretChange ? FocusChange::keysMissed : FocusChange::keysSeen);
    if (secrecy_ == FocusSecrecy::untold) {
        if (before == FocusSecrecy::secret || before == FocusSecrecy::pending)
            clear();
        holdEnd_ = now;
        textHoldEnd_ = now;
        releaseDue(Time::max());
    }
    // Not at once: the next report may already be there, and say that the focus has moved on.
    if (!held_.empty())
        outputs_.setTimer(std::max(now, releaseTime(held_.front().end)));
}

void SecureEntryGate::beginEpoch(Time now) {
    if (secrecy_ == FocusSecrecy::secret)
        lastSecretEpoch_ = epoch_;
    ++epoch_;
    holdEnd_ = now + longestHold;
    textHoldEnd_ = now + longestTextHold;
}

void SecureEntryGate::hold(std::variant<InputEvent, Fence> item, Time end) {
    held_.push_back({item, epoch_, end});
    if (held_.size() == 1)
        outputs_.setTimer(releaseTime(end));
}

SecureEntryGate::Time SecureEntryGate::releaseTime(Time end) const {
    if (secrecy_ != FocusSecrecy::pending)
        return end;
    return std::max(end, std::min(pendingEnd_, secretEnd_.value_or(Time::max())));
}

void SecureEntryGate::releaseDue(Time now) {
    if (held_.empty())
        return;
    while (!held_.empty() && releaseTime(held_.front().end) <= now) {
        Held held = held_.front();
        if (InputEvent* event = std::get_if<InputEvent>(&held_.front().item))
            wipe(*event);
        held_.pop_front();
        if (InputEvent* event = std::get_if<InputEvent>(&held.item))
            decide(*event, held.epoch, now);
        else
            outputs_.onFencePassed(std::get<Fence>(held.item).number);
    }
    if (!held_.empty())
        outputs_.setTimer(releaseTime(held_.front().end));
}

void SecureEntryGate::decide(InputEvent& event, Epoch epoch, Time now) {
    const bool isTyping = event.type == EventType::keyDown && event.sourceUserData == 0;
    if (isSecret(epoch, now)) {
        if (isTyping) {
            // Of a secret focus this has been told; here what was typed before has lost its end.
            if (secrecy_ == FocusSecrecy::pending && incompleteEpoch_ != epoch)
                outputs_.onFocusChanged(FocusChange::keysMissed);
            incompleteEpoch_ = epoch;
        }
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
    if (isTextRequired_ && !isText_)
        return true;
    return isWithheld() && !(secretEnd_ && now >= *secretEnd_);
}

bool SecureEntryGate::isWithheld() const {
    return secrecy_ == FocusSecrecy::secret || secrecy_ == FocusSecrecy::pending;
}

bool SecureEntryGate::isLongAfterAct(Time now) const {
    return !lastAct_ || now - *lastAct_ > longestEffect;
}

} // namespace kelvora
