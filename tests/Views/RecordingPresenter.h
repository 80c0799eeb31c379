#pragma once

#include "DocumentPresenter.h"

#include <QStringList>

#include <vector>

/// A presenter without windows: notes what it is told.
class RecordingPresenter : public DocumentPresenter {
public:
    void show(const std::shared_ptr<Document>& document) override { shown.push_back(document); }
    void bringForward(const std::shared_ptr<Document>& document) override { broughtForward.push_back(document); }
    SaveAnswer askToSave(const std::shared_ptr<Document>&) override { return SaveAnswer::Cancel; }
    SaveAllAnswer askToSaveAll(const std::vector<std::shared_ptr<Document>>&) override { return {}; }
    ChangedFileAnswer askAboutChangedFile(const std::shared_ptr<Document>&) override {
        return ChangedFileAnswer::Cancel;
    }
    bool askToReload(const std::shared_ptr<Document>&) override { return false; }
    void presentNotice(const std::shared_ptr<Document>&, const QString&) override {}
    bool askToRevert(const std::shared_ptr<Document>&) override { return false; }
    bool offerSaveAs(const std::shared_ptr<Document>&, const QString& title, const QString& sentence) override {
        presentError(title, sentence);
        return false;
    }
    std::optional<QString> chooseSaveLocation(const std::shared_ptr<Document>&, const QString&) override {
        return std::nullopt;
    }
    void presentError(const QString& title, const QString& sentence) override { errors.append(title + sentence); }
    void didClose(const std::shared_ptr<Document>&) override {}

    std::vector<std::shared_ptr<Document>> shown;
    std::vector<std::shared_ptr<Document>> broughtForward;
    QStringList errors;
};
