#include "AIMessage.h"

#include <utility>

AIMessage AIMessage::userText(QString text) {
    return {AIRole::user, {AIContentPart::text(std::move(text))}};
}
