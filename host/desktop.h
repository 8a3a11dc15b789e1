// SPDX-License-Identifier: MIT
#pragma once

#include "host/accessibility.h"
#include "host/application_probe.h"
#include "host/dispatch.h"
#include "host/event_poster.h"
#include "host/event_source.h"
#include "host/input_sources.h"
#include "host/key_translator.h"
#include "host/log.h"
#include "host/pasteboard.h"
#include "host/permissions.h"
#include "host/secure_input.h"
#include "host/workspace.h"

#include <string>

namespace kelvora {

/// One desktop's services, as the program is handed them. All outlive the program's own objects.
struct Desktop {
    Dispatch& dispatch;
    LogSink& log;
    EventSource& eventSource;
    EventPoster& eventPoster;
    InputSources& inputSources;
    KeyTranslator& keyTranslator;
    Workspace& workspace;
    Permissions& permissions;
    Accessibility& accessibility;
    Pasteboard& pasteboard;
    ApplicationProbe& applicationProbe;
    SecureInput& secureInput;
    /// What of the session is out of reach, for the listener's status; empty when nothing is.
    /// UTF-8.
    std::string sessionLimit = {};
};

} // namespace kelvora
