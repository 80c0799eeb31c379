#pragma once

#include "ThumbnailList.h"
#include "ThumbnailModel.h"
#include "ThumbnailSidebar.h"
#include "UndoManager.h"
#include "WorkspaceTest.h"

#include <QApplication>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QTimer>

/// A workspace with its page sidebar, and what a person does there.
class SidebarTest : public WorkspaceTest {
protected:
    void openPages(int count) {
        openWorkspace({.pageCount = count});
        adopt();
    }
    void adopt() {
        m_workspace->setWindowFilePath(m_document->fileURL().toLocalFile());
        m_sidebar = &m_workspace->sidebar();
        m_list = &m_sidebar->list();
    }

    /// The numbers that the pages say, such as "3 1 2".
    static QString order(const PDFDocument& pdf) {
        QString numbers;
        for (int i = 0; i < pdf.pageCount(); ++i)
            numbers += pdf.page(i)->string().simplified().remove(QStringLiteral("Page "));
        return numbers;
    }
    QString order() const { return order(*m_document->pdfDocument()); }
    static QString order(const QString& path) {
        return QFile::exists(path) ? order(*PDFDocument::fromFile(path)) : QStringLiteral("no file");
    }

    QString selected() const {
        QString rows;
        for (const int row : m_sidebar->selection())
            rows += QString::number(row);
        return rows;
    }
    /// In the viewport; of a row that is brought into sight.
    QPoint middle(int row) const {
        m_list->scrollTo(m_list->model().index(row));
        return m_list->visualRect(m_list->model().index(row)).center();
    }
    void click(int row, Qt::KeyboardModifiers modifiers = {}) const {
        const QPoint at = middle(row);
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, modifiers, at);
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const { QTest::keyClick(m_list, key, modifiers); }
    void undo() const {
        QCoreApplication::processEvents();
        m_document->undoManager()->undo();
        QCoreApplication::processEvents();
    }

    /// Drops it into the gap, as the desktop would; whether the list took it.
    bool drop(QMimeData& data, int gap) const {
        const QPointF at = gapPlace(gap);
        QDragEnterEvent enter(at.toPoint(), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(m_list->viewport(), &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(m_list->viewport(), &event);
        return event.isAccepted();
    }
    QPoint gapPlace(int gap) const {
        const bool isEnd = gap == m_list->model().rowCount();
        const QModelIndex index = m_list->model().index(isEnd ? gap - 1 : gap);
        m_list->scrollTo(index);
        const QRect rect = m_list->visualRect(index);
        return {rect.center().x(), isEnd ? rect.bottom() - 3 : rect.top() + 3};
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }

    /// Answers the dialog of that name when it comes up.
    template <typename Dialog, typename Answer>
    static void answer(const QString& name, Answer answer) {
        auto* timer = new QTimer(qApp);
        QObject::connect(timer, &QTimer::timeout, timer, [timer, name, answer] {
            auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
            if (!dialog || dialog->objectName() != name)
                return;
            timer->deleteLater();
            timer->stop();
            answer(*dialog);
        });
        timer->start(5);
    }
    static void accept(QFileDialog& dialog, const QString& typed) {
        auto* field = find<QLineEdit>(dialog, QStringLiteral("fileNameEdit"));
        field->selectAll();
        field->insert(typed); // as by hand, which drops what is selected in the list
        static_cast<QDialog&>(dialog).accept();
    }
    static void choose(const QString& name, const QStringList& paths) {
        answer<QFileDialog>(name, [paths](QFileDialog& dialog) {
            if (paths.isEmpty()) {
                dialog.reject();
                return;
            }
            dialog.setDirectory(QFileInfo(paths.constFirst()).path());
            QStringList names;
            for (const QString& path : paths)
                names.append(u'"' + path + u'"');
            accept(dialog, paths.size() == 1 ? paths.constFirst() : names.join(u' '));
        });
    }
    /// What the next alert says, which is then dismissed.
    std::string alert() const {
        EXPECT_TRUE(QTest::qWaitFor([this] { return m_sidebar->pendingAlert().has_value(); }));
        const auto alert = m_sidebar->pendingAlert().value_or(PageAlert());
        for (auto* box : m_workspace->window()->findChildren<QMessageBox*>(QStringLiteral("pageAlert")))
            box->accept();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_FALSE(m_sidebar->pendingAlert());
        return (alert.title + QStringLiteral(": ") + alert.message).toStdString();
    }

    ThumbnailSidebar* m_sidebar = nullptr;
    ThumbnailList* m_list = nullptr;
};
