// The program of ConverterProcessTest.cpp.

#include "ConverterServer.h"

#include <QFile>

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QFile::decodeName(argv[i]);
    return ConverterServer::run(argv[0], arguments);
}
