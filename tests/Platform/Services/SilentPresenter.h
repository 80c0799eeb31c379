#pragma once

#include "DocumentPresenter.h"

#include <QStringList>

#include <vector>

/// A presenter without windows, for a controller that nobody looks at: gives up what can be given up, cancels nothing.
class SilentPresenter : public DocumentPresenter {
public:
    void show(const std::shared_ptr<Document>& document) override { shown.push_back(document); }
    void bringForward(const std::shared_ptr<Document>& document) override { broughtForward.push_back(document); }
    SaveAnswer askToSave(const std::shared_ptr<Document>&) override { return SaveAnswer::DontSave; }
    SaveAllAnswer askToSaveAll(const std::vector<std::shared_ptr<Document>>&) override {
        return {SaveAnswer::DontSave, {}};
    }
    OverwriteAnswer askAboutChangedFile(const std::shared_ptr<Document>&) override {
        return OverwriteAnswer::Overwrite;
    }
    OverwriteAnswer askAboutSignatures(const std::shared_ptr<Document>&) override { return OverwriteAnswer::Overwrite; }
    bool askToReload(const std::shared_ptr<Document>&) override { return true; }
    void presentNotice(const std::shared_ptr<Document>&, const QString&) override {}
    bool askToRevert(const std::shared_ptr<Document>&) override { return true; }
    std::optional<QString> chooseSaveLocation(const std::shared_ptr<Document>&, const QString&) override {
        return saveLocation;
    }
    void presentError(const QString& title, const QString& sentence) override { errors.append(title + sentence); }
    bool offerSaveAs(const std::shared_ptr<Document>&, const QString& title, const QString& sentence) override {
        errors.append(title + sentence);
        return false;
    }
    void didClose(const std::shared_ptr<Document>&) override {}

    std::optional<QString> saveLocation;
    std::vector<std::shared_ptr<Document>> shown;
    std::vector<std::shared_ptr<Document>> broughtForward;
    QStringList errors;
};
