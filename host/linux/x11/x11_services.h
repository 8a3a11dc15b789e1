// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/event_loop.h"
#include "host/linux/x11/absent_event_poster.h"
#include "host/linux/x11/clipboard/x11_pasteboard.h"
#include "host/linux/x11/x11_application_probe.h"
#include "host/linux/x11/x11_display_events.h"
#include "host/linux/x11/x11_event_poster.h"
#include "host/linux/x11/x11_event_source.h"
#include "host/linux/x11/x11_input_sources.h"
#include "host/linux/x11/x11_permissions.h"
#include "host/linux/x11/x11_posting_marks.h"
#include "host/linux/x11/x11_tray_area.h"
#include "host/linux/x11/x11_window_activation.h"
#include "host/linux/x11/x11_workspace.h"
#include "host/linux/xkb/key_layout_data.h"

#include <functional>
#include <memory>
#include <string>

namespace kelvora {

/// Every service that one X server gives. Main thread only, but for the
/// poster, the pasteboard and the probe.
class X11Services {
public:
    /// `onServerGone` is called once, on the main thread. Null when the server cannot be reached or
    /// lacks XKB or XFIXES. Without XTEST there is no permission to post, and nothing is posted.
    /// The loop and the secure entry outlive the services.
    [[nodiscard]] static std::unique_ptr<X11Services> create(const std::string& display,
                                                             EventLoop& loop,
                                                             SecureEntry& secureEntry,
                                                             std::function<void()> onServerGone);

    [[nodiscard]] EventSource& eventSource() { return *eventSource_; }
    [[nodiscard]] EventPoster& eventPoster() {
        return eventPoster_ ? static_cast<EventPoster&>(*eventPoster_) : absentPoster_;
    }
    [[nodiscard]] InputSources& inputSources() { return *inputSources_; }
    [[nodiscard]] KeyTranslator& keyTranslator() { return keyTranslator_; }
    [[nodiscard]] Workspace& workspace() { return *workspace_; }
    [[nodiscard]] Permissions& permissions() { return *permissions_; }
    [[nodiscard]] Pasteboard& pasteboard() { return *pasteboard_; }
    [[nodiscard]] ApplicationProbe& applicationProbe() { return *applicationProbe_; }
    [[nodiscard]] DisplayEvents& displayEvents() { return *displayEvents_; }
    [[nodiscard]] TrayArea& trayArea() { return *trayArea_; }
    [[nodiscard]] WindowActivation& windowActivation() { return *windowActivation_; }

private:
    X11Services() = default;
    void processLayoutNotices();
    void reportServerGone();

    X11PostingMarks marks_;
    KeyLayoutReader keyTranslator_;
    std::unique_ptr<X11EventSource> eventSource_;
    AbsentEventPoster absentPoster_;
    std::unique_ptr<X11EventPoster> eventPoster_; ///< null without XTEST
    std::unique_ptr<X11InputSources> inputSources_;
    std::unique_ptr<X11Workspace> workspace_;
    std::unique_ptr<X11Permissions> permissions_;
    std::unique_ptr<X11Pasteboard> pasteboard_;
    std::unique_ptr<X11ApplicationProbe> applicationProbe_;
    std::unique_ptr<X11DisplayEvents> displayEvents_;
    std::unique_ptr<X11TrayArea> trayArea_;
    std::unique_ptr<X11WindowActivation> windowActivation_;
    std::function<void()> onServerGone_;
    std::unique_ptr<DescriptorWatch> layoutWatch_;
};

} // namespace kelvora
