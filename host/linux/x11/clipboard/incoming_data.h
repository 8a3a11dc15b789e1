// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kelvora {

/// A property as the selection's owner wrote it. Type XCB_ATOM_NONE: there is no such property.
struct IncomingProperty {
    xcb_atom_t type = XCB_ATOM_NONE;
    std::uint8_t format = 0; ///< 8, 16 or 32 where there is one
    std::span<const std::byte> bytes;
    bool isWhole = true; ///< false: more bytes follow that were not fetched
};

/// What has come of one target, at once or in pieces (INCR), put together from the properties that
/// its owner wrote. The owner is another program: any order of any properties is safe.
class IncomingData {
public:
    enum class State {
        underWay,
        complete,
        refused, ///< the owner does not give this target, or there is no owner
        failed,  ///< too large, or against the protocol
    };

    /// At most `maximumBytes` are taken. `incr` is the type that announces pieces.
    IncomingData(xcb_atom_t incr, std::size_t maximumBytes)
        : incr_(incr), maximumBytes_(maximumBytes) {}

    // Each does nothing once the state is not `underWay`.

    /// The property that the owner's answer names.
    void takeAnswer(const IncomingProperty& property);
    /// The next of the pieces. One that is not there has been taken already.
    void takePiece(const IncomingProperty& property);
    /// The owner answered that it gives nothing.
    void refuse();
    /// The server did not hand the property out.
    void fail();

    [[nodiscard]] State state() const { return state_; }
    /// True once pieces are announced: they are awaited instead of an answer.
    [[nodiscard]] bool isInPieces() const { return isInPieces_; }
    /// What the next property may have.
    [[nodiscard]] std::size_t bytesLeft() const { return maximumBytes_ - bytes_.size(); }

    // Once complete:
    [[nodiscard]] xcb_atom_t type() const { return type_; }
    [[nodiscard]] std::uint8_t format() const { return format_; }
    [[nodiscard]] const std::vector<std::byte>& bytes() const { return bytes_; }
    [[nodiscard]] std::vector<std::byte>& bytes() { return bytes_; }

private:
    [[nodiscard]] bool isTooLarge(const IncomingProperty& property) const;
    /// Whether this is no piece of what has come so far.
    [[nodiscard]] bool isOfAnotherKind(const IncomingProperty& piece) const;
    void append(const IncomingProperty& property);

    xcb_atom_t incr_;
    std::size_t maximumBytes_;
    State state_ = State::underWay;
    bool isInPieces_ = false;
    xcb_atom_t type_ = XCB_ATOM_NONE;
    std::uint8_t format_ = 0;
    std::vector<std::byte> bytes_;
};

} // namespace kelvora
