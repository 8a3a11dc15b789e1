// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_window_process.h"

#include "host/linux/x11/x11_property.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <climits>
#include <string_view>
#include <unistd.h>

namespace kelvora {

namespace {

/// Longer names are no names.
constexpr std::uint32_t maximumNameBytes = 1024;

bool isSameHost(std::string_view one, std::string_view other) {
    // Some clients give the full domain name, others the short one.
    one = one.substr(0, one.find('.'));
    other = other.substr(0, other.find('.'));
    return std::ranges::equal(one, other, [](unsigned char a, unsigned char b) {
        return std::tolower(a) == std::tolower(b);
    });
}

/// True also when the application does not tell, as many do.
bool isOfThisMachine(xcb_connection_t* connection, xcb_window_t window) {
    const auto machine =
        readTextProperty(connection, window, XCB_ATOM_WM_CLIENT_MACHINE, maximumNameBytes);
    std::array<char, HOST_NAME_MAX + 1> name{};
    if (!machine || gethostname(name.data(), name.size() - 1) != 0)
        return true;
    const std::string_view host = std::string_view(*machine).substr(0, machine->find('\0'));
    return host.empty() || isSameHost(host, "localhost") || isSameHost(host, name.data());
}

} // namespace

std::int64_t processOfWindow(xcb_connection_t* connection, xcb_window_t window,
                             xcb_atom_t processIdentifier) {
    const auto process =
        readListProperty(connection, window, processIdentifier, XCB_ATOM_CARDINAL, 1);
    if (!process || process->empty() || process->front() > INT_MAX ||
        !isOfThisMachine(connection, window))
        return 0;
    return process->front();
}

} // namespace kelvora
