#include "AppActions.h"

static QAction* makeAction(QObject* owner, const QString& name, const QString& text, const QKeySequence& keys = {}) {
    auto* action = new QAction(text, owner);
    action->setObjectName(name);
    action->setShortcut(keys);
    action->setMenuRole(QAction::NoRole);
    return action;
}

AppActions::AppActions(QObject* parent)
    : QObject(parent), newTab(makeAction(this, u"newTab"_qs, u"&New Tab"_qs, Qt::CTRL | Qt::Key_T)),
      open(makeAction(this, u"open"_qs, u"&Open…"_qs, Qt::CTRL | Qt::Key_O)),
      quit(makeAction(this, u"quit"_qs, u"&Quit"_qs, Qt::CTRL | Qt::Key_Q)),
      settings(makeAction(this, u"settings"_qs, u"Se&ttings…"_qs, Qt::CTRL | Qt::Key_Comma)),
      about(makeAction(this, u"about"_qs, u"&About Quillo"_qs)),
      makeDefault(makeAction(this, u"makeDefault"_qs, u"&Make Quillo the Default PDF Viewer…"_qs)) {}

AppActions::~AppActions() = default;
