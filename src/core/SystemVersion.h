#pragma once
// The system version that chooses between the two interface tools, as a four-hex-digit code
// (0x1049 is 10.4.9). Linux has no such version: we report 10.6.8 so the newer tool is used,
// unless VOCABRIX_SYSTEM_VERSION or the "SystemVersion" setting says otherwise ("10.4.11",
// "10.4" or "0x1049"), which keeps the older tool's path reachable by users and tests.

int gestaltSystemVersion();
// Versions from 10.5 on use the newer tool.
inline bool usesIbtool() { return gestaltSystemVersion() > 0x104F; }
