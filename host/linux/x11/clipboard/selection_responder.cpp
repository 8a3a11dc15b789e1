// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/selection_responder.h"

#include "host/linux/x11/clipboard/clipboard_formats.h"

#include <algorithm>

namespace kelvora {
namespace {

constexpr std::uint32_t maximumPairs = 256;

bool isBefore(xcb_timestamp_t time, xcb_timestamp_t other) {
    return static_cast<std::int32_t>(time - other) < 0; // the server's clock wraps around
}

} // namespace

SelectionResponder::Result SelectionResponder::answer(const xcb_selection_request_event_t& request,
                                                      const ClipboardClaim& claim) {
    // Clients from before ICCCM name no property; the target then names it.
    const bool isOldClient = request.property == XCB_ATOM_NONE;
    const xcb_atom_t property = isOldClient ? request.target : request.property;
    // Nobody has a reason to name our own window, and serving it would change what it listens to.
    const bool isOfThisClaim =
        claim.contents && request.selection == client_.atoms().clipboard &&
        request.requestor != client_.window() &&
        (request.time == XCB_CURRENT_TIME || !isBefore(request.time, claim.time));

    Result result = Result::nothing;
    if (isOfThisClaim && request.target == client_.atoms().multiple) {
        if (!isOldClient)
            result = convertMultiple(request.requestor, property, claim);
    } else if (isOfThisClaim) {
        result = convert(request.requestor, request.target, property, claim);
    }

    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = result == Result::nothing ? xcb_atom_t{XCB_ATOM_NONE} : property;
    xcb_send_event(client_.connection(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&notify));
    return result;
}

SelectionResponder::Result SelectionResponder::convert(xcb_window_t requestor, xcb_atom_t target,
                                                       xcb_atom_t property,
                                                       const ClipboardClaim& claim) {
    const ClipboardAtoms& atoms = client_.atoms();
    const auto describe = [&](xcb_atom_t type, std::uint32_t count, const void* items) {
        xcb_change_property(client_.connection(), XCB_PROP_MODE_REPLACE, requestor, property, type,
                            32, count, items);
        return Result::description;
    };
    if (target == atoms.targets) {
        writeTargets(requestor, property, *claim.contents);
        return Result::description;
    }
    if (target == atoms.timestamp)
        return describe(XCB_ATOM_INTEGER, 1, &claim.time);
    if (target == atoms.saveTargets && !claim.contents->isSecret)
        return describe(atoms.null, 0, nullptr);
    for (const ClipboardTarget& each : claim.contents->targets)
        if (each.target == target) {
            transfers_.give(requestor, property, each);
            return isText(each.data.type) ? Result::text : Result::data;
        }
    return Result::nothing;
}

SelectionResponder::Result SelectionResponder::convertMultiple(xcb_window_t requestor,
                                                               xcb_atom_t property,
                                                               const ClipboardClaim& claim) {
    struct Pair {
        xcb_atom_t target;
        xcb_atom_t property;
    };
    const XcbPtr<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(client_.connection(),
                               xcb_get_property(client_.connection(), 0, requestor, property,
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, 2 * maximumPairs),
                               nullptr));
    if (!reply || reply->format != 32 || reply->bytes_after != 0)
        return Result::nothing;
    const auto* first = static_cast<const Pair*>(xcb_get_property_value(reply.get()));
    const auto count =
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / sizeof(Pair);
    std::vector<Pair> pairs(first, first + count);
    Result result = Result::description;
    bool isChanged = false;
    for (Pair& pair : pairs) {
        Result each = Result::nothing;
        if (pair.property != XCB_ATOM_NONE && pair.property != property &&
            pair.target != client_.atoms().multiple)
            each = convert(requestor, pair.target, pair.property, claim);
        result = std::max(result, each);
        if (each == Result::nothing && pair.property != XCB_ATOM_NONE) {
            pair.property = XCB_ATOM_NONE;
            isChanged = true;
        }
    }
    if (isChanged)
        xcb_change_property(client_.connection(), XCB_PROP_MODE_REPLACE, requestor, property,
                            reply->type, 32, static_cast<std::uint32_t>(2 * pairs.size()),
                            pairs.data());
    return result;
}

void SelectionResponder::writeTargets(xcb_window_t requestor, xcb_atom_t property,
                                      const ClipboardContents& contents) {
    const ClipboardAtoms& atoms = client_.atoms();
    std::vector<xcb_atom_t> list{atoms.targets, atoms.timestamp, atoms.multiple};
    if (!contents.isSecret && !contents.targets.empty())
        list.push_back(atoms.saveTargets);
    for (const ClipboardTarget& each : contents.targets)
        list.push_back(each.target);
    xcb_change_property(client_.connection(), XCB_PROP_MODE_REPLACE, requestor, property,
                        XCB_ATOM_ATOM, 32, static_cast<std::uint32_t>(list.size()), list.data());
}

} // namespace kelvora
