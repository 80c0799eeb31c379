#pragma once

#include "RecoveryDescription.h"

#include <QImage>
#include <QString>

/// A document that was open, with changes that weren't saved, in a process that ended without closing it.
struct LostDocument {
    /// What became of the file that it was.
    enum class Original { none, unchanged, changed, missing };

    QString id;
    RecoveryDescription description;
    Original original = Original::none;
    QImage picture; ///< of the page that the reader was on; null when there is none
};
