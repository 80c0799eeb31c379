#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>

class ChoiceList;
class PDFFormField;
class PageSurface;
class QListWidgetItem;

/// The list that drops down from a combo box: a click or Return chooses, Escape and a click beside it close it. Main
/// thread only.
class ChoicePopup : public QObject {
    Q_OBJECT

public:
    explicit ChoicePopup(PageSurface& view);
    ~ChoicePopup() override;

    /// Shows the choices of a field at `fieldRect` (view points), above or below as the screen has space. `typed` is
    /// looked for at once.
    void open(const PDFFormField& field, const QRect& fieldRect, const QString& typed = {});
    void close();
    [[nodiscard]] bool isOpen() const;

Q_SIGNALS:
    /// The list is closed already.
    void chosen(const QString& exportValue, const QString& label);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place(const QRect& fieldRect);
    void choose(const QListWidgetItem* item);

    PageSurface& m_view;
    QPointer<ChoiceList> m_list; // a window of its own
};
