#include "PrintJob.h"

#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <optional>

namespace {

/// Submits with a program `lp` of ours, a shell script; without a script there is none.
QString submit(const PrintJob& job, const QByteArray& pdf, const QTemporaryDir& folder,
               const std::optional<QByteArray>& script) {
    if (script) {
        QFile program(folder.filePath(QStringLiteral("lp")));
        EXPECT_TRUE(program.open(QIODevice::WriteOnly));
        program.write("#!/bin/sh\ncd \"$(dirname \"$0\")\"\n" + *script);
        program.close();
        program.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }
    const QByteArray path = qgetenv("PATH");
    const auto restore = qScopeGuard([&path] { qputenv("PATH", path); });
    qputenv("PATH", script ? QFile::encodeName(folder.path()) + ':' + path : QFile::encodeName(folder.path()));
    std::optional<QString> answer;
    QObject owner;
    job.submit(pdf, &owner, [&answer](const QString& failure) { answer = failure; });
    EXPECT_TRUE(QTest::qWaitFor([&answer] { return answer.has_value(); }, 30'000));
    return answer.value_or(QStringLiteral("no answer"));
}

QByteArray content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
}

TEST(PrintJob, HandsTheFileAndItsOptionsToThePrintService) {
    const QTemporaryDir folder;
    PrintJob job;
    job.printer = QStringLiteral("Office");
    job.title = QStringLiteral("-o two words; $(touch x).pdf"); // words for the queue, nothing else
    job.copies = 3;
    job.options = {{QStringLiteral("sides"), QStringLiteral("one-sided")}, {QStringLiteral("fit-to-page"), {}}};
    const QByteArray pdf = QByteArray(3'000'000, 'p'); // more than a pipe holds
    EXPECT_EQ(submit(job, pdf, folder, "printf '%s\\n' \"$@\" > arguments; cat > file\n"), QString());
    EXPECT_EQ(content(folder.filePath(QStringLiteral("arguments"))).toStdString(),
              "-d\nOffice\n-n\n3\n-t\n-o two words; $(touch x).pdf\n-o\nsides=one-sided\n-o\nfit-to-page\n");
    EXPECT_EQ(content(folder.filePath(QStringLiteral("file"))), pdf);
}

TEST(PrintJob, SaysWhyItFailed) {
    const struct {
        std::optional<QByteArray> script;
        const char* sentence;
    } cases[] = {
        {"echo 'lp: The printer or class does not exist.' >&2; exit 1\n",
         "The print service didn't take it: The printer or class does not exist."},
        {"exec 0<&-; exit 1\n", "The print service didn't take it."}, // it reads nothing
        {"kill -9 $$\n", "The print service didn't take it."},
        {std::nullopt, "This computer has no print service."},
    };
    for (const auto& each : cases) {
        const QTemporaryDir folder;
        PrintJob job;
        job.printer = QStringLiteral("Office");
        EXPECT_EQ(submit(job, QByteArray(3'000'000, 'p'), folder, each.script).toStdString(), each.sentence);
    }
}

} // namespace
