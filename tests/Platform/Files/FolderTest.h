#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

/// A test with files in a folder of its own. Names are relative to it.
class FolderTest : public testing::Test {
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString path(const char* name) const { return path(QString::fromUtf8(name)); }
    QUrl url(const char* name) const { return QUrl::fromLocalFile(path(name)); }

    QUrl makeFile(const char* name, const QByteArray& bytes = "text") const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()) << name;
        return url(name);
    }

    void makeFolder(const char* name) const { ASSERT_TRUE(QDir(m_folder.path()).mkpath(QString::fromUtf8(name))); }

    template <typename Name>
    QByteArray contentOf(const Name& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }

    /// Of everything in `folder`, hidden things too.
    std::string names(const char* folder = "") const {
        constexpr auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
        return QDir(path(folder)).entryList(all).join(u' ').toStdString();
    }

    const QTemporaryDir m_folder;
};
