#include "PrintJob.h"

#include "FolderTest.h"

#include <QScopeGuard>
#include <QTest>

#include <optional>

namespace {

class PrintJobTest : public FolderTest {
protected:
    PrintJobTest() { m_job.printer = QStringLiteral("Office"); }

    /// Submits with a program `lp` of ours, a shell script; without a script there is none.
    std::string submit(const std::optional<QByteArray>& script) const {
        QFile::remove(path("lp"));
        if (script) {
            makeFile("lp", "#!/bin/sh\ncd \"$(dirname \"$0\")\"\n" + *script);
            QFile::setPermissions(path("lp"), QFile::ReadOwner | QFile::ExeOwner);
        }
        const QByteArray programs = qgetenv("PATH");
        const auto restore = qScopeGuard([&programs] { qputenv("PATH", programs); });
        qputenv("PATH", QFile::encodeName(m_folder.path()) + (script ? ':' + programs : QByteArray()));
        std::optional<QString> answer;
        QObject owner;
        m_job.submit(m_pdf, &owner, [&answer](const QString& failure) { answer = failure; });
        EXPECT_TRUE(QTest::qWaitFor([&answer] { return answer.has_value(); }, 30'000));
        return answer.value_or(QStringLiteral("no answer")).toStdString();
    }

    PrintJob m_job;
    const QByteArray m_pdf = QByteArray(3'000'000, 'p'); ///< more than a pipe holds
};

TEST_F(PrintJobTest, HandsTheFileAndItsOptionsToThePrintService) {
    m_job.title = QStringLiteral("-o two words; $(touch x).pdf"); // words for the queue, nothing else
    m_job.copies = 3;
    m_job.options = {{QStringLiteral("sides"), QStringLiteral("one-sided")}, {QStringLiteral("fit-to-page"), {}}};
    EXPECT_EQ(submit("printf '%s\\n' \"$@\" > arguments; cat > file\n"), "");
    EXPECT_EQ(contentOf("arguments"), "-d\nOffice\n-n\n3\n-t\n-o two words; $(touch x).pdf\n-o\nsides=one-sided\n"
                                      "-o\nfit-to-page\n");
    EXPECT_EQ(contentOf("file"), m_pdf);
}

TEST_F(PrintJobTest, SaysWhyItFailed) {
    const std::pair<std::optional<QByteArray>, const char*> cases[] = {
        {"echo 'lp: The printer or class does not exist.' >&2; exit 1\n",
         "The print service didn't take it: The printer or class does not exist."},
        {"exec 0<&-; exit 1\n", "The print service didn't take it."}, // it reads nothing
        {"kill -9 $$\n", "The print service didn't take it."},
        {std::nullopt, "This computer has no print service."},
    };
    for (const auto& [script, sentence] : cases)
        EXPECT_EQ(submit(script), sentence);
}

} // namespace
