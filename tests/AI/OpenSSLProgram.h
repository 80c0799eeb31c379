#pragma once

#include <QProcess>
#include <QString>

/// Runs the openssl program in `folder`; true if it succeeded.
inline bool runOpenSSL(const QString& folder, const char* arguments) {
    QProcess program;
    program.setWorkingDirectory(folder);
    program.start(QStringLiteral("openssl"), QString::fromLatin1(arguments).split(u' '));
    return program.waitForFinished() && program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0;
}
