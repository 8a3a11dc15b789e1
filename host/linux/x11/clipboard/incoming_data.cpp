// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/incoming_data.h"

namespace kelvora {

void IncomingData::takeAnswer(const IncomingProperty& property) {
    if (state_ != State::underWay || isInPieces_)
        return;
    if (isTooLarge(property)) {
        fail();
    } else if (property.type == XCB_ATOM_NONE) {
        refuse(); // the owner says that it gave it, and did not
    } else if (property.type == incr_) {
        isInPieces_ = true;
    } else {
        append(property);
        state_ = State::complete;
    }
}

void IncomingData::takePiece(const IncomingProperty& property) {
    if (state_ != State::underWay || !isInPieces_)
        return;
    if (isTooLarge(property) || isOfAnotherKind(property)) {
        fail();
    } else if (property.type != XCB_ATOM_NONE) { // else notice of a piece that has been taken
        const bool isEnd = property.bytes.empty();
        if (!isEnd || format_ == 0) // of empty data there is nothing but the end
            append(property);
        if (isEnd)
            state_ = State::complete;
    }
}

void IncomingData::refuse() {
    if (state_ == State::underWay)
        state_ = State::refused;
}

void IncomingData::fail() {
    if (state_ == State::underWay)
        state_ = State::failed;
}

bool IncomingData::isTooLarge(const IncomingProperty& property) const {
    return !property.isWhole || property.bytes.size() > bytesLeft();
}

bool IncomingData::isOfAnotherKind(const IncomingProperty& piece) const {
    const bool isFirst = format_ == 0;
    return !isFirst && !piece.bytes.empty() && (piece.type != type_ || piece.format != format_);
}

void IncomingData::append(const IncomingProperty& property) {
    type_ = property.type;
    format_ = property.format;
    bytes_.insert(bytes_.end(), property.bytes.begin(), property.bytes.end());
}

} // namespace kelvora
