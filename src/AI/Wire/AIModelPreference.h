#pragma once

#include <QString>

#include <optional>
#include <span>

/// Whether the user wants the better answer or the faster one.
enum class AIModelPreference { highPerformance, balanced, fast };

struct AIModelPreferenceInfo {
    AIModelPreference preference;
    QString rawValue; ///< also its title in the menu, and what the built-in service is told
};

/// Every preference once, in the order of the menu.
[[nodiscard]] std::span<const AIModelPreferenceInfo> allAIModelPreferences();
[[nodiscard]] const AIModelPreferenceInfo& info(AIModelPreference preference);
/// None for any other text; upper and lower case count.
[[nodiscard]] std::optional<AIModelPreference> aiModelPreferenceFromRawValue(QStringView rawValue);
