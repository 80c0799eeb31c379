#pragma once

#include "DocumentPresenter.h"

#include <QStringList>

#include <vector>

/// A presenter without windows, for a controller that nobody looks at: gives up what can be given up, cancels nothing.
class SilentPresenter : public DocumentPresenter {
public:
    using Shown = std::shared_ptr<Document>;

    void show(const Shown& document) override { shown.push_back(document); }
    void bringForward(const Shown& document) override { broughtForward.push_back(document); }
    SaveAnswer askToSave(const Shown&) override { return SaveAnswer::DontSave; }
    SaveAllAnswer askToSaveAll(const std::vector<Shown>&) override { return {SaveAnswer::DontSave, {}}; }
    OverwriteAnswer askAboutChangedFile(const Shown&) override { return OverwriteAnswer::Overwrite; }
    OverwriteAnswer askAboutSignatures(const Shown&) override { return OverwriteAnswer::Overwrite; }
    bool askToReload(const Shown&) override { return true; }
    void presentNotice(const Shown&, const QString&) override {}
    bool askToRevert(const Shown&) override { return true; }
    std::optional<QString> chooseSaveLocation(const Shown&, const QString&) override { return saveLocation; }
    void presentError(const QString& title, const QString& sentence) override { errors.append(title + sentence); }
    bool offerSaveAs(const Shown&, const QString& title, const QString& sentence) override {
        presentError(title, sentence);
        return false;
    }
    void didClose(const Shown&) override {}

    std::optional<QString> saveLocation;
    std::vector<Shown> shown;
    std::vector<Shown> broughtForward;
    QStringList errors;
};
