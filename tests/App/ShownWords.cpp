#include "ShownWords.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMetaProperty>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QTabBar>
#include <QTextDocumentFragment>
#include <QTextEdit>
#include <QToolButton>
#include <QWindow>

namespace {

QString withoutKeys(const QString& text) {
    QString seen;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'&' && ++i == text.size())
            break;
        seen += text[i];
    }
    return seen;
}

/// Whether the style draws its text, which makes keys of "&".
bool drawsKeys(const QWidget& widget) {
    return qobject_cast<const QPushButton*>(&widget) || qobject_cast<const QToolButton*>(&widget) ||
           qobject_cast<const QCheckBox*>(&widget) || qobject_cast<const QRadioButton*>(&widget) ||
           qobject_cast<const QGroupBox*>(&widget) || qobject_cast<const QMenu*>(&widget);
}

bool isEditor(const QWidget& widget) {
    return qobject_cast<const QLineEdit*>(&widget) || qobject_cast<const QTextEdit*>(&widget) ||
           qobject_cast<const QPlainTextEdit*>(&widget);
}

QString seenProperty(const QWidget& widget, const QString& name, const QString& value) {
    if (name == u"toolTip" || name == u"whatsThis")
        return ShownWords::guessed(value);
    if (name == u"windowTitle")
        return widget.windowHandle() ? widget.windowHandle()->title() : value;
    const auto* label = qobject_cast<const QLabel*>(&widget);
    if (label && name == u"text") {
        const QString words = label->textFormat() == Qt::PlainText ? value
                              : label->textFormat() == Qt::RichText
                                  ? QTextDocumentFragment::fromHtml(value).toPlainText()
                                  : ShownWords::guessed(value);
        return label->buddy() ? withoutKeys(words) : words;
    }
    return drawsKeys(widget) && (name == u"text" || name == u"title") ? withoutKeys(value) : value;
}

/// Other forms of what is visited, or nothing that is shown.
bool isShown(const QWidget& widget, const QString& name) {
    static const QSet<QString> others{QStringLiteral("objectName"),     QStringLiteral("accessibleName"),
                                      QStringLiteral("styleSheet"),     QStringLiteral("accessibleDescription"),
                                      QStringLiteral("windowFilePath"), QStringLiteral("windowIconText"),
                                      QStringLiteral("html"),           QStringLiteral("markdown")};
    return !others.contains(name) && !qobject_cast<const QMessageBox*>(&widget); // whose labels are met
}

void visitModel(const QAbstractItemModel* model, const std::function<void(const char*, const QString&)>& visit) {
    constexpr int mostRows = 50;
    for (int row = 0; model && row < std::min(model->rowCount(), mostRows); ++row) {
        for (int column = 0; column < model->columnCount(); ++column) {
            const QModelIndex index = model->index(row, column);
            visit("row", index.data().toString());
            visit("tip of a row", ShownWords::guessed(index.data(Qt::ToolTipRole).toString()));
        }
    }
}

} // namespace

QString ShownWords::guessed(const QString& text) {
    return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
}

void ShownWords::visit(const QWidget& widget, const Visitor& visitor) {
    const QMetaObject& meta = *widget.metaObject();
    const auto show = [&](const char* what, const QString& seen, bool isEdited = false) {
        visitor(QStringLiteral("%1 %2").arg(QLatin1String(meta.className()), QLatin1String(what)), seen, isEdited);
    };
    for (int i = 0; i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        const QString name = QLatin1String(property.name());
        if (property.typeId() == QMetaType::QString && isShown(widget, name))
            show(property.name(), seenProperty(widget, name, property.read(&widget).toString()),
                 isEditor(widget) && name != u"toolTip");
    }
    for (const QAction* action : widget.actions()) {
        show("entry", withoutKeys(action->text()));
        show("tip of an entry", guessed(action->toolTip()));
    }
    if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
        for (int tab = 0; tab < tabs->count(); ++tab) {
            show("tab", withoutKeys(tabs->tabText(tab)));
            show("tip of a tab", guessed(tabs->tabToolTip(tab)));
        }
    }
    const auto showRow = [&](const char* what, const QString& seen) { show(what, seen); };
    if (const auto* view = qobject_cast<const QAbstractItemView*>(&widget))
        visitModel(view->model(), showRow);
    if (const auto* choice = qobject_cast<const QComboBox*>(&widget))
        visitModel(choice->model(), showRow);
}

void ShownWords::visitAll(const Visitor& visitor) {
    const QWidgetList widgets = QApplication::allWidgets();
    for (const QWidget* widget : widgets)
        visit(*widget, visitor);
}
