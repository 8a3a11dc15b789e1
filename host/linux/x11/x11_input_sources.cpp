// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_input_sources.h"

#include "host/linux/x11/xcb_xkb.h"
#include "host/linux/xkb/key_layout_data.h"
#include "host/linux/xkb/keysym_text.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace kelvora {
namespace {

constexpr std::string_view rulesNamesProperty = "_XKB_RULES_NAMES";
constexpr std::uint32_t maximumPropertyWords = 4096; // 16 KB; real ones have some 50 bytes
constexpr int maximumRefreshes = 4;

} // namespace

std::unique_ptr<X11InputSources> X11InputSources::create(XcbConnectionPtr connection) {
    if (!connection)
        return nullptr;
    auto keymap = X11Keymap::create(connection.get());
    if (!keymap)
        return nullptr;
    std::unique_ptr<X11InputSources> sources(
        new X11InputSources(std::move(connection), std::move(keymap)));
    if (!sources->watchRulesNames())
        return nullptr;
    return sources;
}

X11InputSources::X11InputSources(XcbConnectionPtr connection, std::unique_ptr<X11Keymap> keymap)
    : connection_(std::move(connection)), keymap_(std::move(keymap)),
      composeContext_(xkb_context_new(XKB_CONTEXT_NO_FLAGS)) {
    if (composeContext_) {
        xkb_context_set_log_level(composeContext_.get(), XKB_LOG_LEVEL_CRITICAL);
        composeTable_ = loadComposeTable(composeContext_.get());
    }
}

bool X11InputSources::watchRulesNames() {
    rootWindow_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_.get(), rootWindow_, XCB_CW_EVENT_MASK, &mask);
    const XcbPtr<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection_.get(),
        xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(rulesNamesProperty.size()),
                        rulesNamesProperty.data()),
        nullptr));
    if (!atom)
        return false;
    rulesNamesAtom_ = atom->atom;
    return true;
}

bool X11InputSources::synchronize() {
    // The answer to this request comes after every notice of what happened before it.
    if (!keymap_->synchronizeState())
        return false;
    catchUp();
    return isConnected();
}

void X11InputSources::catchUp() {
    processEvents();
    // Fetching may bring in notices of further changes; whoever never stops changing is not
    // awaited.
    for (int round = 0; areSourcesStale_ && round < maximumRefreshes; ++round) {
        refreshSources();
        processEvents();
    }
}

void X11InputSources::processEvents() {
    const std::uint64_t version = keymap_->version();
    bool isChanged = false;
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
        if (keymap_->handleEvent(event.get()))
            continue;
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY &&
            reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->atom ==
                rulesNamesAtom_)
            isChanged = areRulesStale_ = true;
    }
    if (isChanged || keymap_->version() != version)
        areSourcesStale_ = true;
}

void X11InputSources::refreshSources() {
    if (areRulesStale_)
        readRulesNames();
    xkb_keymap* keymap = keymap_->keymap();
    areSourcesStale_ = !keymap_->isCurrent();
    std::vector<LayoutName> names = layoutNames(rules_, keymap, registry_);
    sources_.clear();
    for (std::size_t group = 0; group < names.size(); ++group)
        sources_.push_back({true, std::move(names[group].id), std::move(names[group].name),
                            makeKeyLayoutData(keymap, static_cast<xkb_layout_index_t>(group),
                                              composeTable_.get())});
}

void X11InputSources::readRulesNames() {
    areRulesStale_ = false;
    rules_ = {};
    const XcbPtr<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection_.get(),
                               xcb_get_property(connection_.get(), 0, rootWindow_, rulesNamesAtom_,
                                                XCB_ATOM_STRING, 0, maximumPropertyWords),
                               nullptr));
    if (!reply || reply->format != 8)
        return;
    rules_ =
        parseRulesNames({static_cast<const char*>(xcb_get_property_value(reply.get())),
                         static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))});
}

std::optional<std::vector<InputSource>> X11InputSources::enabledSources() {
    if (!synchronize())
        return std::nullopt;
    return sources_;
}

std::optional<std::vector<InputSource>> X11InputSources::knownSources() {
    catchUp();
    return isConnected() ? std::optional(sources_) : std::nullopt;
}

const InputSource* X11InputSources::activeSource() const {
    if (sources_.empty())
        return nullptr;
    // After a change to fewer groups the server reports the old group until the next key, whose
    // meaning it takes from the group wrapped into range.
    return &sources_[keymap_->group() % sources_.size()];
}

std::optional<InputSource> X11InputSources::currentSource() {
    const InputSource* active = synchronize() ? activeSource() : nullptr;
    return active != nullptr ? std::optional(*active) : std::nullopt;
}

bool X11InputSources::select(const InputSource& source) {
    if (!source.id || !synchronize())
        return false;
    const auto isActive = [&] {
        const InputSource* active = activeSource();
        return active != nullptr && active->id == source.id;
    };
    if (isActive())
        return true;
    const auto found = std::ranges::find(sources_, source.id, &InputSource::id);
    if (found == sources_.end())
        return false;
    const auto group = static_cast<std::uint8_t>(found - sources_.begin());
    xcb_xkb_latch_lock_state(connection_.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
    return synchronize() && isActive();
}

std::uint32_t X11InputSources::keyboardType() {
    return synchronize() ? keyboardTypeForModel(rules_.model) : keyboardTypeCode::unknown;
}

bool X11InputSources::isConnected() const {
    return xcb_connection_has_error(connection_.get()) == 0;
}

int X11InputSources::fileDescriptor() const {
    return xcb_get_file_descriptor(connection_.get());
}

} // namespace kelvora
