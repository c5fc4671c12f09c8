// The loop of saves that the kill test runs in a process of its own and
// then checks the survivors of: save i adds hand "h<i>" to a list of fewer
// than ten, and removes the first hand of a full one.
#pragma once

#include <QString>
#include <QStringList>

#include "settings/settings_store.h"

namespace felthawk::testing {

inline const QString kLoopCells = QStringLiteral("AS,AH,QD,JC,2S,,");

inline QString LoopHandName(int i) {
    return QStringLiteral("h%1").arg(i);
}

// The list after save `i`, from the list before it.
inline QStringList LoopStep(QStringList hands, int i) {
    if (hands.size() == kMaxSavedHands) {
        hands.removeFirst();
    } else {
        hands << LoopHandName(i) + QLatin1Char(':') + kLoopCells;
    }
    return hands;
}

}  // namespace felthawk::testing
