#include "AIProviderError.h"
#include "AIModelPreference.h"

#include <gtest/gtest.h>

TEST(AIModelPreference, IsFoundByItsExactRawValueOnly) {
    for (const AIModelPreferenceInfo& row : allAIModelPreferences())
        EXPECT_EQ(aiModelPreferenceFromRawValue(row.rawValue), row.preference);
    for (const QString& text : {u"high perf"_qs, u"HIGH PERF"_qs, u"highPerformance"_qs, u"Fast "_qs, QString()})
        EXPECT_FALSE(aiModelPreferenceFromRawValue(text)) << text.toStdString();
}

TEST(AIProviderError, SaysWhatHappened) {
    EXPECT_STREQ(AIProviderError::missingAPIKey(u"Groq"_qs).what(),
                 "Add your Groq API key in Quillo > Settings… to use Ask.");
    // Marks that look like those of a pattern stay as the service sent them.
    const AIProviderError error = AIProviderError::http(-1, u"100%1 of %2"_qs);
    EXPECT_STREQ(error.what(), "API error (-1): 100%1 of %2");
    EXPECT_EQ(error.status(), -1);
    EXPECT_EQ(error.message(), u"100%1 of %2"_qs);
    EXPECT_STREQ(AIProviderError::malformedResponse().what(), "Received an unexpected response from the AI provider.");
}
