#pragma once

#include "FormFixture.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFFormField.h"
#include "PDFPage.h"
#include "PDFView.h"

#include <QApplication>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

/// The form of `FormFixture` in a view on the screen, and what people do to it. `View` is PDFView or a kind of it.
template <typename View>
class ShownForm {
public:
    explicit ShownForm(int rotation = 0, double scale = 1) : ShownForm(FormFixture::bytes(rotation), scale) {}
    ShownForm(const QByteArray& file, double scale) : document(PDFDocument::fromData(file)) {
        view.resize(700, 700);
        view.setDocument(document);
        view.setScaleFactor(scale);
        view.show();
        view.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
        view.setFocus(Qt::MouseFocusReason);
    }

    [[nodiscard]] std::shared_ptr<PDFAnnotation> widget(const QRectF& rect, int page = 0) const {
        return document->page(page)->annotation(rect.center());
    }
    [[nodiscard]] QStringList value(const QRectF& rect, int page = 0) const {
        const auto field = PDFFormField::of(widget(rect, page));
        return field ? field->value() : QStringList(QStringLiteral("no field"));
    }
    [[nodiscard]] QRectF onScreen(const QRectF& rect, int page = 0) const {
        return view.convertFromPage(rect, *document->page(page));
    }
    /// Scrolled into sight first.
    QPoint middle(const QRectF& rect, int page = 0) {
        view.reveal(*widget(rect, page));
        return onScreen(rect, page).center().toPoint();
    }
    void click(const QRectF& rect, int page = 0) { clickAt(middle(rect, page)); }
    void clickAt(QPoint point, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, point);
        QCoreApplication::processEvents();
    }
    /// To whatever has the keyboard, as a person's keys go.
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* const popup = QApplication::activePopupWidget();
        QTest::keyClick(popup ? popup : QApplication::focusWidget(), key, modifiers);
        returnFromPopup();
    }
    /// A click on a row of the list that hangs from a combo box.
    void choose(int row) {
        QListWidget* const list = choices();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(row)).center());
        returnFromPopup();
    }
    static void type(const QString& text) {
        QTest::keyClicks(QApplication::focusWidget(), text);
        QCoreApplication::processEvents();
    }
    /// Null when none is open.
    [[nodiscard]] QWidget* editor() const {
        const auto editors = view.viewport()->template findChildren<QWidget*>(QStringLiteral("formFieldEditor"));
        for (QWidget* const editor : editors)
            if (editor->isVisible())
                return editor;
        return nullptr;
    }
    [[nodiscard]] static QListWidget* choices() {
        return qobject_cast<QListWidget*>(QApplication::activePopupWidget());
    }

    std::shared_ptr<PDFDocument> document;
    View view;

private:
    /// Windows that pop up are active ones on the screen of tests, and leave none behind.
    void returnFromPopup() {
        QCoreApplication::processEvents();
        if (QApplication::activePopupWidget() || QApplication::focusWidget())
            return;
        view.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
    }
};
