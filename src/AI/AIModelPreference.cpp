#include "AIModelPreference.h"

#include "EnumerationTable.h"

std::span<const AIModelPreferenceInfo> allAIModelPreferences() {
    using enum AIModelPreference;
    static const AIModelPreferenceInfo preferences[] = {
        {highPerformance, u"High Perf"_qs},
        {balanced, u"Balanced"_qs},
        {fast, u"Fast"_qs},
    };
    return preferences;
}

const AIModelPreferenceInfo& info(AIModelPreference preference) {
    return EnumerationTable::row(allAIModelPreferences(), &AIModelPreferenceInfo::preference, preference);
}

std::optional<AIModelPreference> aiModelPreferenceFromRawValue(QStringView rawValue) {
    return EnumerationTable::fromRawValue(allAIModelPreferences(), &AIModelPreferenceInfo::preference, rawValue);
}
