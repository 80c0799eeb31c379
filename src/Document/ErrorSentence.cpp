#include "ErrorSentence.h"

#include "DocumentError.h"
#include "FileError.h"
#include "Logging.h"
#include "PDFError.h"

#include <new>

QString sentenceOfCurrentError(const char* step) {
    qCWarning(Logging::document) << step << "failed:" << Logging::currentCauses();
    try {
        throw;
    } catch (const FileError& error) {
        return error.sentence();
    } catch (const PDFError& error) {
        return error.sentence();
    } catch (const DocumentError& error) {
        return error.sentence();
    } catch (const std::bad_alloc&) {
        return QStringLiteral("There isn't enough memory.");
    } catch (const std::exception& error) {
        return QStringLiteral("Something unexpected happened: %1.").arg(QString::fromLocal8Bit(error.what()));
    } catch (...) {
        return QStringLiteral("Something unexpected happened.");
    }
}
