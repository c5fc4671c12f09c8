// Talking to a running felthawk-table: it prints "ready <window id>" once a
// deal is on the screen, or "error <message>" for a deal it refuses.
#pragma once

#include <QProcess>

#include "capture/window_system.h"

namespace felthawk {

// Reads the table's lines until it says "ready"; its window id, or 0 when
// it refuses, ends, or stays silent for `timeoutMs`.
WindowId WaitForTableReady(QProcess& table, int timeoutMs);

}  // namespace felthawk
