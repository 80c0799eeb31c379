#pragma once

#include "DocumentController.h"
#include "PDFEditorDocument.h"
#include "SilentPresenter.h"
#include "TestPdf.h"
#include "ThumbnailCache.h"
#include "UserDefaults.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

/// What a view needs around it: a folder for files, settings, and a controller without windows.
class ViewTest : public testing::Test {
protected:
    ViewTest() { FileReading::patience = std::chrono::minutes(1); }
    void SetUp() override { ThumbnailCache::removeAll(); }

    /// A file of these bytes in the folder.
    [[nodiscard]] QUrl written(const QByteArray& bytes, const QString& name) const {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size());
        return QUrl::fromLocalFile(file.fileName());
    }

    /// A document that has been opened, without a window.
    std::shared_ptr<PDFEditorDocument> opened(const QUrl& url) {
        std::shared_ptr<Document> document;
        m_controller.openDocument(url, false,
                                  [&document](const auto& result, bool, const QString&) { document = result; });
        return std::dynamic_pointer_cast<PDFEditorDocument>(document);
    }

    /// Shows a widget and waits until it is on the screen.
    static void show(QWidget& widget, QSize size = {800, 600}) {
        widget.resize(size);
        widget.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
        widget.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&widget));
    }

    /// Finds a widget by the name of the object, and fails when there is none.
    template <typename Widget>
    static Widget* find(const QWidget& parent, const QString& name) {
        auto* found = parent.findChild<Widget*>(name);
        EXPECT_NE(found, nullptr) << name.toStdString();
        return found;
    }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
    SilentPresenter m_presenter;
    DocumentController m_controller{[] { return std::make_shared<PDFEditorDocument>(); }, m_presenter, m_defaults};
};
