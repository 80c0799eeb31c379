#pragma once

#include "DocumentPresenter.h"

#include <QString>

#include <optional>

class QWidget;

/// The questions and messages of the program. `parent` is the window that they belong to; null where there is none.
/// The asking ones block; the telling ones return at once. Main thread only.
class DocumentDialogs {
public:
    virtual ~DocumentDialogs();

    /// Whether to save the changes of the document with that name, which is about to be closed.
    virtual DocumentPresenter::SaveAnswer askToSave(QWidget* parent, const QString& documentName);

    /// Where to save to, starting from `suggestedPath`; whether a file that is there may be replaced has been asked.
    virtual std::optional<QString> chooseSaveLocation(QWidget* parent, const QString& suggestedPath);

    virtual std::optional<QString> askPassword(QWidget* parent);

    /// Whether Quillo should become the default viewer.
    virtual bool askToBecomeDefault(QWidget* parent);

    virtual void presentMessage(QWidget* parent, const QString& title, const QString& sentence);
    virtual void presentError(QWidget* parent, const QString& title, const QString& sentence);
};
