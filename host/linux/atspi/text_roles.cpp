// SPDX-License-Identifier: MIT
#include "host/linux/atspi/text_roles.h"

namespace kelvora {
namespace {

/// The roles that matter here (AtspiRole).
enum Role : std::uint32_t {
    invalid = 0,
    canvas = 6,
    drawingArea = 18,
    filler = 20,
    frame = 23,
    glassPane = 24,
    internalFrame = 28,
    layeredPane = 30,
    list = 31,
    listItem = 32,
    panel = 39,
    passwordText = 40,
    rootPane = 46,
    scrollPane = 49,
    spinButton = 52,
    table = 55,
    tableCell = 56,
    terminal = 60,
    text = 61,
    tree = 65,
    treeTable = 66,
    unknown = 67,
    viewport = 68,
    window = 69,
    extended = 70,
    paragraph = 73,
    application = 75,
    autocomplete = 76,
    embedded = 78,
    entry = 79,
    heading = 83,
    section = 85,
    tableRow = 90,
    treeItem = 91,
    documentSpreadsheet = 92,
    listBox = 98,
    blockQuote = 105,
};

} // namespace

TextRole textRoleOf(std::uint32_t role, AtspiStates states, TextRole unmarkedText) {
    switch (role) {
    case Role::passwordText:
        return TextRole::password;
    case Role::terminal:
        return TextRole::terminal;
    // A spreadsheet calls its table editable, but what one types goes into a field that opens then.
    case Role::list:
    case Role::listItem:
    case Role::table:
    case Role::tableCell:
    case Role::tree:
    case Role::treeTable:
    case Role::tableRow:
    case Role::treeItem:
    case Role::documentSpreadsheet:
    case Role::listBox:
        return TextRole::notEditable;
    default:
        break;
    }
    if (states.has(AtspiState::editable) && !states.has(AtspiState::readOnly)) {
        if (states.has(AtspiState::multiLine))
            return TextRole::multiLine;
        if (states.has(AtspiState::singleLine))
            return TextRole::singleLine;
        switch (role) {
        case Role::entry:
        case Role::autocomplete:
        case Role::spinButton:
            return TextRole::singleLine;
        case Role::text:
            return unmarkedText;
        default:
            return TextRole::multiLine;
        }
    }
    switch (role) {
    // What a program draws itself shows itself as one of these, whatever one can do in it.
    case Role::invalid:
    case Role::canvas:
    case Role::drawingArea:
    case Role::filler:
    case Role::frame:
    case Role::glassPane:
    case Role::internalFrame:
    case Role::layeredPane:
    case Role::panel:
    case Role::rootPane:
    case Role::scrollPane:
    case Role::unknown:
    case Role::viewport:
    case Role::window:
    case Role::extended:
    case Role::application:
    case Role::embedded:
        return TextRole::unknown;
    default:
        return TextRole::notEditable;
    }
}

bool isPartOfDocument(std::uint32_t role) {
    switch (role) {
    case Role::paragraph:
    case Role::heading:
    case Role::section:
    case Role::blockQuote:
    case Role::listItem:
        return true;
    default:
        return false;
    }
}

} // namespace kelvora
