// SPDX-License-Identifier: MIT
#include "tests/soak/typed_line.h"

#include <array>

namespace kelvora::soak {

namespace {

constexpr std::string_view keys = "qwertyuiop[]asdfghjkl;'zxcvbnm,.";
constexpr std::string_view capitalKeys = "QWERTYUIOPASDFGHJKLZXCVBNM";
constexpr std::array<std::string_view, keys.size()> letters{
    "й", "ц", "у", "к", "е", "н", "г", "ш", "щ", "з", "х", "ъ", "ф", "ы", "в", "а",
    "п", "р", "о", "л", "д", "ж", "э", "я", "ч", "с", "м", "и", "т", "ь", "б", "ю"};
constexpr std::array<std::string_view, capitalKeys.size()> capitals{
    "Й", "Ц", "У", "К", "Е", "Н", "Г", "Ш", "Щ", "З", "Ф", "Ы", "В",
    "А", "П", "Р", "О", "Л", "Д", "Я", "Ч", "С", "М", "И", "Т", "Ь"};

std::string cyrillic(char key) {
    if (const std::size_t place = keys.find(key); place != std::string_view::npos) {
        return std::string(letters.at(place));
    }
    if (const std::size_t place = capitalKeys.find(key); place != std::string_view::npos) {
        return std::string(capitals.at(place));
    }
    return {key};
}

} // namespace

std::string nameOf(Layout layout) {
    return layout == Layout::us ? "us" : "ru";
}

std::string TypedLine::text() const {
    std::string text;
    for (const Cell& cell : cells_) {
        text += cell.layout == Layout::us ? std::string{cell.key} : cyrillic(cell.key);
    }
    return text;
}

void TypedLine::type(char key, Layout layout) {
    cells_.push_back({key, layout});
    ++known_;
}

void TypedLine::deleteBackward() {
    cells_.pop_back();
    known_ -= known_ > 0 ? 1 : 0;
}

bool TypedLine::convertLastWord(bool canReadLine, Layout& layout) {
    return convertAmong(known_, layout) || (canReadLine && convertAmong(cells_.size(), layout));
}

bool TypedLine::convertAmong(std::size_t last, Layout& layout) {
    const std::size_t start = cells_.size() - last;
    std::size_t end = cells_.size();
    while (end > start && cells_[end - 1].key == ' ') {
        --end;
    }
    if (end == start) {
        return false;
    }
    layout = other(cells_[end - 1].layout);
    for (; end > start && cells_[end - 1].key != ' '; --end) {
        cells_[end - 1].layout = layout;
    }
    return true;
}

void TypedLine::clear() {
    cells_.clear();
    known_ = 0;
}

} // namespace kelvora::soak
