#include "PDFUnlocker.h"

#include "PDFDocument.h"

bool PDFUnlocker::promptAndUnlock(PDFDocument& document, const AskPassword& askPassword) {
    while (document.isLocked()) {
        const std::optional<QString> password = askPassword();
        if (!password)
            return false;
        document.unlock(*password);
    }
    return true;
}
