#include "AIProviderError.h"
#include "AIModelPreference.h"

#include <gtest/gtest.h>

TEST(AIModelPreference, IsFoundByItsExactRawValueOnly) {
    for (const AIModelPreferenceInfo& row : allAIModelPreferences())
        EXPECT_EQ(aiModelPreferenceFromRawValue(row.rawValue), row.preference);
    for (const QString& text : {QStringLiteral("high perf"), QStringLiteral("HIGH PERF"),
                                QStringLiteral("highPerformance"), QStringLiteral("Fast "), QString()})
        EXPECT_FALSE(aiModelPreferenceFromRawValue(text)) << text.toStdString();
}

TEST(AIProviderError, SaysWhatHappened) {
    EXPECT_STREQ(AIProviderError::missingAPIKey(QStringLiteral("Groq")).what(),
                 "Add your Groq API key in Quillo > Settings… to use Ask.");
    // Marks that look like those of a pattern stay as the service sent them.
    const AIProviderError error = AIProviderError::http(-1, QStringLiteral("100%1 of %2"));
    EXPECT_STREQ(error.what(), "API error (-1): 100%1 of %2");
    EXPECT_EQ(error.status(), -1);
    EXPECT_EQ(error.message(), QStringLiteral("100%1 of %2"));
    EXPECT_STREQ(AIProviderError::malformedResponse().what(), "Received an unexpected response from the AI provider.");
}
