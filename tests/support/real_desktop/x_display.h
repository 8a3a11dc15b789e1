// SPDX-License-Identifier: MIT
#pragma once

// Xlib's name for the type of a connection; its headers define words such as None and Success, so
// they are kept out of ours.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
struct _XDisplay;
