#include "Shortcuts.h"

#include <QHash>

#include <gtest/gtest.h>

TEST(Shortcuts, everyKeyBelongsToOneCommand) {
    QHash<QString, QString> owners;
    for (const QString& command : Shortcuts::commands()) {
        for (const QKeySequence& key : Shortcuts::of(command)) {
            const QString text = key.toString(QKeySequence::PortableText);
            EXPECT_FALSE(text.isEmpty()) << command.toStdString();
            EXPECT_FALSE(owners.contains(text))
                << text.toStdString() << ": " << command.toStdString() << " and " << owners.value(text).toStdString();
            owners.insert(text, command);
        }
    }
    EXPECT_GT(owners.size(), 30);
}
