#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "QuilloAssert.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <tuple>

/// Reads the input, as UTF-8, as the source of a formula, and does with the formula all that is done before layout.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString source = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    std::optional<MTParseError> error;
    const std::shared_ptr<MTMathList> list = MTMathListBuilder::build(source, error);
    QUILLO_ASSERT((list != nullptr) != error.has_value(), "A source is a formula or has an error.");
    if (!list) {
        QUILLO_ASSERT(!error->message.isEmpty(), "An error says what is wrong.");
        return 0;
    }

    const QString written = list->string();
    QUILLO_ASSERT(MTMathList::copy(list)->string() == written, "A copy is the same formula.");
    const std::shared_ptr<MTMathList> finalized = list->finalized();
    QUILLO_ASSERT(finalized->finalized()->description() == finalized->description(), "Finalizing is done at once.");
    QUILLO_ASSERT(list->string() == written, "Finalizing leaves the formula as it was.");
    std::ignore = MTMathListBuilder::build(written);
    return 0;
}
