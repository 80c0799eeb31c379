#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

/// Runs the openssl program in `folder`; true if it succeeded.
inline bool runOpenSSL(const QString& folder, const QStringList& arguments) {
    QProcess program;
    program.setWorkingDirectory(folder);
    program.start(QStringLiteral("openssl"), arguments);
    return program.waitForFinished() && program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0;
}
