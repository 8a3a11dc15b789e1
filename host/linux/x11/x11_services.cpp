// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_services.h"

#include <utility>

namespace kelvora {

std::unique_ptr<X11Services> X11Services::create(const std::string& display, EventLoop& loop,
                                                 SecureEntry& secureEntry,
                                                 std::function<void()> onServerGone) {
    std::unique_ptr<X11Services> services(new X11Services);
    services->onServerGone_ = std::move(onServerGone);
    XcbConnectionPtr forLayouts = connectX11(display.c_str());
    XcbConnectionPtr forPermissions = connectX11(display.c_str());
    XcbConnectionPtr forDisplays = connectX11(display.c_str());
    if (!forLayouts || !forPermissions || !forDisplays)
        return nullptr;
    services->inputSources_ = X11InputSources::create(std::move(forLayouts));
    services->permissions_ = std::make_unique<X11Permissions>(std::move(forPermissions));
    services->workspace_ =
        X11Workspace::create(display.c_str(), DesktopEntries(standardApplicationDirectories()));
    const bool mayPost = services->permissions_->isAccessibilityTrusted();
    if (mayPost)
        services->eventPoster_ = X11EventPoster::create(display, services->marks_);
    services->pasteboard_ = X11Pasteboard::create(display.c_str());
    services->applicationProbe_ = X11ApplicationProbe::create(display.c_str());
    if (!services->inputSources_ || !services->workspace_ || (mayPost && !services->eventPoster_) ||
        !services->pasteboard_ || !services->applicationProbe_)
        return nullptr;
    services->displayEvents_ = std::make_unique<X11DisplayEvents>(std::move(forDisplays), loop);
    services->trayArea_ = std::make_unique<X11TrayArea>(display, loop);
    services->windowActivation_ = std::make_unique<X11WindowActivation>(display);
    X11Services& self = *services;
    services->eventSource_ = std::make_unique<X11EventSource>(
        display, loop, services->marks_,
        X11EventSource::Callbacks{
            .onFocusChanged =
                [&self](FocusChange change) { self.workspace_->notifyFocusChanged(change); },
            .onServerGone = [&self] { self.reportServerGone(); },
        },
        &secureEntry);
    services->layoutWatch_ = loop.watchReadable(self.inputSources_->fileDescriptor(),
                                                [&self] { self.processLayoutNotices(); });
    return services;
}

void X11Services::processLayoutNotices() {
    inputSources_->processEvents();
    // The same changes are told to the others, who do not watch their connections.
    if (eventPoster_)
        eventPoster_->processEvents();
    permissions_->processEvents();
    if (!inputSources_->isConnected()) {
        layoutWatch_.reset();
        reportServerGone();
    }
}

void X11Services::reportServerGone() {
    if (const auto callback = std::exchange(onServerGone_, nullptr))
        callback();
}

} // namespace kelvora
