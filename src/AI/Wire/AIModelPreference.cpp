#include "AIModelPreference.h"

#include "EnumerationTable.h"

std::span<const AIModelPreferenceInfo> allAIModelPreferences() {
    using enum AIModelPreference;
    static const AIModelPreferenceInfo preferences[] = {
        {highPerformance, QStringLiteral("High Perf")},
        {balanced, QStringLiteral("Balanced")},
        {fast, QStringLiteral("Fast")},
    };
    return preferences;
}

const AIModelPreferenceInfo& info(AIModelPreference preference) {
    return EnumerationTable::row(allAIModelPreferences(), &AIModelPreferenceInfo::preference, preference);
}

std::optional<AIModelPreference> aiModelPreferenceFromRawValue(QStringView rawValue) {
    return EnumerationTable::fromRawValue(allAIModelPreferences(), &AIModelPreferenceInfo::preference, rawValue);
}
