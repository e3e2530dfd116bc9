#pragma once
// The X server's process, as the connection to it tells.

#include <string>

/// Its number; empty where there is no server.
std::string FindXServer();
