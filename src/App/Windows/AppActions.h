#pragma once

#include <QAction>
#include <QObject>

/// The commands that don't depend on a window's document. Every menu bar and toolbar shows the same objects; the
/// application connects them.
class AppActions : public QObject {
    Q_OBJECT

public:
    explicit AppActions(QObject* parent = nullptr);
    ~AppActions() override;

    QAction* const newTab;
    QAction* const open;
    QAction* const quit;
    QAction* const settings;
    QAction* const about;
    QAction* const makeDefault;
};
