#pragma once

#include <QString>

/// What the sidebar tells of a command: that it failed, had nothing to do, or what came of it.
struct PageAlert {
    QString title;
    QString message;

    bool operator==(const PageAlert&) const = default;
};
