#include "OfficeConverter.h"

#include <QCoreApplication>

#include <cstdio>

/// office_bench SOURCE DESTINATION: turns a Word or rich text document into a PDF.
int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("Usage: office_bench SOURCE DESTINATION\n", stderr);
        return 2;
    }
    return OfficeConverter::convert(arguments[1], arguments[2], {}) == OfficeConverter::Outcome::converted ? 0 : 1;
}
