#include "tools/table/table_process.h"

namespace felthawk {

WindowId WaitForTableReady(QProcess& table, int timeoutMs) {
    while (true) {
        while (table.canReadLine()) {
            const QString line = QString::fromUtf8(table.readLine()).trimmed();
            if (line.startsWith(QLatin1String("ready "))) return line.mid(6).toUInt(nullptr, 16);
            if (line.startsWith(QLatin1String("error "))) return 0;
        }
        if (table.state() != QProcess::Running || !table.waitForReadyRead(timeoutMs)) return 0;
    }
}

}  // namespace felthawk
